// SPDX-License-Identifier: GPL-3.0-or-later
// The check boxes of a page, whether it can be edited or not.
window.tmBoxes = (() => {
  const selector = 'li.tm_checkbox, li.tm_checkbox_done';
  const all = () => [...document.body.querySelectorAll(selector)];

  // The box stands in front of the item's own text, in the first line.
  function at(x, y) {
    return all().find(item => {
      const place = item.getBoundingClientRect();
      const style = getComputedStyle(item);
      const size = parseFloat(style.fontSize) * 1.6;
      const away = style.direction === 'rtl' ? x - place.right : place.left - x;
      return away > 0 && away < size && y >= place.top && y < place.top + (parseFloat(style.lineHeight) || 20);
    }) || null;
  }
  // Which of all boxes stands there, null for none.
  function told(x, y) {
    const items = all();
    const item = at(x, y);
    return item && {number: items.indexOf(item), count: items.length, done: item.classList.contains('tm_checkbox_done')};
  }
  return {selector, all, at, told};
})();
