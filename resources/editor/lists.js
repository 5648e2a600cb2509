// SPDX-License-Identifier: GPL-3.0-or-later
// Lists of a page: bullets, numbers and check boxes, and the levels of their items.
window.tmLists = (() => {
  const selection = window.getSelection();
  const boxes = window.tmBoxes.selector;
  const {around, touched, keepingSelection, caretIn} = window.tmSelecting;
  const lists = 'ul, ol';
  const inner = 'p, h1, h2, h3, h4, h5, h6, pre, blockquote, div';
  const isItem = node => node?.tagName === 'LI';

  // -- kinds
  function kind() {
    const list = around(lists);
    if (!list) return '';
    if (list.tagName === 'OL') return 'numbers';
    return around('li')?.matches(boxes) ? 'boxes' : 'bullets';
  }
  function plainItem(item) {
    item.classList.remove('tm_checkbox', 'tm_checkbox_done');
    if (!item.classList.length) item.removeAttribute('class');
    item.querySelector(':scope > input[type=checkbox]')?.remove();
  }
  function boxedItem(item) {
    if (!item.matches(boxes)) item.classList.add('tm_checkbox');
    if (item.querySelector(':scope > input')) return;
    const box = document.createElement('input');
    box.type = 'checkbox';
    item.prepend(box);
    if (selection.anchorNode === item && selection.isCollapsed && selection.anchorOffset === 0)
      selection.collapse(item, 1);
  }
  function rename(tag) {
    keepingSelection(() => {
      const list = around(lists);
      const renamed = document.createElement(tag);
      for (const {name, value} of list.attributes) renamed.setAttribute(name, value);
      renamed.append(...list.childNodes);
      list.replaceWith(renamed);
    });
  }
  function joinWith(list, other, before) {
    if (other?.tagName !== list.tagName) return list;
    if (before) other.append(...list.childNodes);
    else other.prepend(...list.childNodes);
    list.remove();
    return other;
  }
  // Paragraphs become items, of one list where they follow each other. The engine does the same to text that stands in
  // no paragraph, but puts the caret in front of it.
  function begin(ordered) {
    const tag = ordered ? 'ol' : 'ul';
    const paragraphs = touched('p, h1, h2, h3, h4, h5, h6, div').filter(e => !e.querySelector(`table, ${lists}, ${inner}`));
    if (!paragraphs.length) return document.execCommand(ordered ? 'insertOrderedList' : 'insertUnorderedList');
    const holder = selection.isCollapsed ? selection.anchorNode : null;
    let list = null;
    let withCaret = null;
    keepingSelection(() => {
      for (const paragraph of paragraphs) {
        const item = document.createElement('li');
        item.append(...paragraph.childNodes);
        if (list && list.nextElementSibling === paragraph) paragraph.remove();
        else paragraph.replaceWith(list = document.createElement(tag));
        list.append(item);
        if (paragraph === holder) withCaret = item;
      }
      list = joinWith(list, list.previousElementSibling, true);
      joinWith(list, list.nextElementSibling, false);
    });
    if (withCaret) caretIn(withCaret);
  }

  // Bullets become numbers, numbers boxes, boxes plain paragraphs, and those bullets.
  function toggle() {
    const now = kind();
    if (now === '') begin(false);
    else if (now === 'bullets') rename('ol');
    else if (now === 'numbers') toggleBoxes();
    else unlist();
  }
  // A list of one kind becomes the other; the kind that it is already goes.
  function set(ordered) {
    const now = kind();
    if (now === '') return begin(ordered);
    if (now === (ordered ? 'numbers' : 'bullets')) return unlist();
    touched('li').forEach(plainItem);
    if (around(lists).tagName !== (ordered ? 'OL' : 'UL')) rename(ordered ? 'ol' : 'ul');
  }
  function toggleBoxes() {
    const now = kind();
    if (now === 'boxes') return touched('li').forEach(plainItem);
    if (now === 'numbers') rename('ul');
    else if (now === '') begin(false);
    touched('li').forEach(boxedItem);
  }
  function setBox(item, done) {
    item.classList.toggle('tm_checkbox', !done);
    item.classList.toggle('tm_checkbox_done', done);
    const box = item.querySelector(':scope > input[type=checkbox]');
    if (box) { box.checked = done; box.toggleAttribute('checked', done); }
  }
  const toggleBox = item => setBox(item, item.classList.contains('tm_checkbox'));
  const toggleDone = () => touched(boxes).forEach(toggleBox);
  // A new item has a box where the one above has, and does not take over that it is done.
  function newItem() {
    const item = around('li');
    if (!item || item.textContent.trim()) return;
    if (!item.matches(boxes) && !item.previousElementSibling?.matches(boxes)) return;
    setBox(item, false);
    boxedItem(item);
  }

  // -- levels
  // Items go with those below them, so an item in another one that is touched needs no move of its own.
  function movable() {
    const items = touched('li');
    return items.filter(item => !items.some(other => other !== item && other.contains(item)));
  }
  // The list of the items below, made like the one that the item stands in.
  function sublistOf(item) {
    const last = item.lastElementChild;
    if (last?.matches(lists)) return last;
    const made = document.createElement(item.parentElement.tagName);
    item.append(made);
    return made;
  }
  function indentItem(item) {
    const above = item.previousElementSibling;
    if (isItem(above)) sublistOf(above).append(item);
  }
  // One level up; the items behind it stay where they are, below it.
  function outdentItem(item) {
    const list = item.parentElement;
    const behind = [...list.children].slice([...list.children].indexOf(item) + 1);
    if (behind.length) sublistOf(item).append(...behind);
    (isItem(list.parentElement) ? list.parentElement : list).after(item);
    if (!list.children.length) list.remove();
  }
  const isNested = item => item.parentElement.parentElement.matches(`li, ${lists}`);

  // Of an item on the first level: its text as a paragraph, and what else is in it.
  function unlistItem(item) {
    plainItem(item);
    const list = item.parentElement;
    const behind = list.cloneNode(false);
    behind.append(...[...list.childNodes].slice([...list.childNodes].indexOf(item) + 1));
    const text = document.createElement('p');
    while (item.firstChild && !item.firstChild.matches?.(`table, ${lists}, ${inner}`)) text.append(item.firstChild);
    if (!text.textContent && !text.firstElementChild && !item.childNodes.length)
      text.replaceChildren(document.createElement('br'));
    const parts = [...(text.childNodes.length ? [text] : []), ...item.childNodes];
    const holdsCaret = selection.isCollapsed && selection.anchorNode === item;
    list.after(...parts, ...(behind.children.length ? [behind] : []));
    item.remove();
    if (!list.children.length) list.remove();
    if (holdsCaret) caretIn(parts[0]);
  }
  function unlist() {
    keepingSelection(() => {
      for (const item of touched('li').reverse()) {
        while (isNested(item)) outdentItem(item);
        unlistItem(item);
      }
    });
  }
  // True where the selection is in a list.
  function indent(back) {
    const items = movable();
    if (!items.length) return false;
    keepingSelection(() => {
      if (!back) items.forEach(indentItem);
      else for (const item of items.reverse()) {
        if (isNested(item)) outdentItem(item);
        else unlistItem(item);
      }
    });
    return true;
  }

  // -- paragraph styles
  // The item stays one; what it says becomes a heading, or text again.
  function styleItem(item, tag) {
    const first = [...item.childNodes].find(node => !node.matches?.('input') && (node.data ?? 'x').trim());
    if (first?.matches?.(inner)) {
      const styled = document.createElement(tag);
      styled.append(...first.childNodes);
      if (tag === 'p') first.replaceWith(...styled.childNodes);
      else first.replaceWith(styled);
    } else if (tag !== 'p') {
      const styled = document.createElement(tag);
      item.insertBefore(styled, first ?? null);
      while (styled.nextSibling && !styled.nextSibling.matches?.(`table, ${lists}, ${inner}`))
        styled.append(styled.nextSibling);
      if (!styled.firstChild) styled.append(document.createElement('br'));
    }
  }
  // True where the selection is in a list.
  function setBlock(tag) {
    const items = touched('li');
    keepingSelection(() => items.forEach(item => styleItem(item, tag)));
    return items.length > 0;
  }
  return {kind, toggle, set, toggleBoxes, toggleBox, toggleDone, newItem, indent, setBlock};
})();
