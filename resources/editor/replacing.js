// SPDX-License-Identifier: GPL-3.0-or-later
// Replacing words in a page, also those that tags stand in.
window.tmReplacing = (() => {
  const inline = 'a, abbr, b, bdi, bdo, cite, code, data, del, dfn, em, font, i, ins, kbd, label, mark, q, s, samp, small, ' +
                 'span, strike, strong, sub, sup, time, tt, u, var';

  // Words without capitals are meant in either case, and a blank is any white space.
  function finding(words) {
    const pattern = words.replace(/[.*+?^${}()|[\]\\\/]/g, '\\$&').replace(/\s+/g, '\\s+');
    return new RegExp(pattern, words === words.toLowerCase() ? 'gui' : 'gu');
  }
  function blockOf(node) {
    let block = node.parentElement;
    while (block !== document.body && block.matches(inline)) block = block.parentElement;
    return block;
  }
  // The texts that a reader sees as one: what stands between two blocks or line ends, whatever tags are in it.
  function runs() {
    const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT | NodeFilter.SHOW_ELEMENT);
    const found = [];
    let block = null;
    for (let node = walker.nextNode(); node; node = walker.nextNode()) {
      if (node.nodeType === Node.ELEMENT_NODE) {
        if (!node.matches(inline)) block = null;
        continue;
      }
      const own = blockOf(node);
      if (own.matches('script, style, textarea')) continue;
      if (own !== block) found.push({text: '', parts: []});
      block = own;
      const run = found[found.length - 1];
      run.parts.push({node, start: run.text.length});
      run.text += node.data;
    }
    return found;
  }
  const partAt = (run, at) => run.parts.findLast(part => part.start <= at);

  // Tags that held nothing but what was replaced go with it.
  function dropEmpty(node) {
    let parent = node.parentNode;
    if (node.data) return;
    node.remove();
    while (parent.matches(inline) && !parent.childNodes.length) {
      const outer = parent.parentNode;
      parent.remove();
      parent = outer;
    }
  }
  // The new words look like the first letter of the old ones.
  function replaceAt(run, from, to, words) {
    const first = partAt(run, from);
    for (const part of run.parts.filter(p => p !== first && p.start < to && p.start + p.node.length > from).reverse()) {
      part.node.deleteData(0, Math.min(to - part.start, part.node.length));
      dropEmpty(part.node);
    }
    const length = Math.min(to - first.start, first.node.length) - (from - first.start);
    first.node.replaceData(from - first.start, length, words);
    return {node: first.node, offset: from - first.start + words.length};
  }
  function replaceAll(words, by) {
    if (!words) return;
    for (const run of runs())
      for (const match of [...run.text.matchAll(finding(words))].reverse()) {
        const end = replaceAt(run, match.index, match.index + match[0].length, by);
        dropEmpty(end.node);
      }
  }
  // The first place from the caret on, or from the start of the page.
  function replaceNext(words, by) {
    const selection = window.getSelection();
    if (!words) return;
    const places = runs().flatMap(run => [...run.text.matchAll(finding(words))].map(match => ({run, match})));
    const caret = selection.rangeCount ? selection.getRangeAt(0) : null;
    const isAhead = ({run, match}) => {
      const part = partAt(run, match.index);
      return caret.comparePoint(part.node, match.index - part.start) >= 0;
    };
    const place = (caret && places.find(isAhead)) || places[0];
    if (!place) return;
    const end = replaceAt(place.run, place.match.index, place.match.index + place.match[0].length, by);
    selection.collapse(end.node, end.offset);
    dropEmpty(end.node);
  }
  return {replaceAll, replaceNext};
})();
