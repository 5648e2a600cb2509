// SPDX-License-Identifier: GPL-3.0-or-later
// What the formatted editor does inside of a page. Runs in a world of its own, out of the page's reach, and leaves
// nothing in the document: a page is made editable as a whole, so that no element bears an attribute for it.
// Each call from outside ends with tm.report(), which tells what changed since the last one.
window.tm = (() => {
  const body = document.body;
  const selection = window.getSelection();
  const maximumHistory = 64 * 1024 * 1024; // characters in all steps together
  const typingPause = 1000; // milliseconds; a longer one begins another step
  const boxes = window.tmBoxes.selector;
  const blocks = 'ul, ol, table, blockquote, pre, div, hr, h1, h2, h3, h4, h5, h6, p';
  let dirty = false;
  let contents = false;
  const observer = new MutationObserver(() => { dirty = true; });
  const watched = {childList: true, subtree: true, characterData: true, attributes: true};

  // -- places: a node as the way to it from the body, so that a place outlives a restored page
  function wayTo(node) {
    const way = [];
    for (; node && node !== body; node = node.parentNode)
      way.unshift([...node.parentNode.childNodes].indexOf(node));
    return way;
  }
  function nodeAt(way) {
    let node = body;
    for (const index of way) node = node.childNodes[index] || node;
    return node;
  }
  function place() {
    if (!body.contains(selection.anchorNode)) return null;
    return [wayTo(selection.anchorNode), selection.anchorOffset, wayTo(selection.focusNode), selection.focusOffset];
  }
  const lengthOf = node => node.nodeType === Node.TEXT_NODE ? node.length : node.childNodes.length;
  function goTo(saved) {
    if (!saved) return;
    const [from, to] = [nodeAt(saved[0]), nodeAt(saved[2])];
    selection.setBaseAndExtent(from, Math.min(saved[1], lengthOf(from)), to, Math.min(saved[3], lengthOf(to)));
  }
  function caretIn(node) { selection.collapse(node, 0); }

  // -- history: the whole body before and after each command; typing without a pause is one step
  const steps = [];
  let at = 0;
  let html = '';
  const copyOfBody = () => { const copy = new DocumentFragment(); copy.append(...body.cloneNode(true).childNodes); return copy; };
  const step = kind => ({nodes: copyOfBody(), size: html.length, place: place(), kind, time: Date.now()});
  function note(kind) {
    dirty = observer.takeRecords().length > 0 || dirty;
    if (!dirty) {
      if (steps[at]) steps[at].place = place() || steps[at].place;
      return false;
    }
    dirty = false;
    markBoxes();
    dropSpelledOutStyles();
    liftBlocks();
    if (contents) writeContents();
    observer.takeRecords();
    const now = body.innerHTML;
    if (now === html) return false;
    html = now;
    const last = steps[at];
    const joins = kind === 'typing' && last.kind === 'typing' && Date.now() - last.time < typingPause;
    steps.length = joins ? at : at + 1;
    steps.push(step(kind));
    at = steps.length - 1;
    for (let size = steps.reduce((sum, s) => sum + s.size, 0); size > maximumHistory && at > 1; --at)
      size -= steps.shift().size;
    return true;
  }
  function moveTo(index) {
    at = index;
    body.replaceChildren(steps[at].nodes.cloneNode(true));
    goTo(steps[at].place);
    observer.takeRecords();
    dirty = false;
    html = body.innerHTML;
    steps[at].kind = 'restored';
    changed = true;
  }
  let changed = false;

  function keepingSelection(action) {
    const {anchorNode, anchorOffset, focusNode, focusOffset} = selection;
    action();
    if (anchorNode?.isConnected && focusNode?.isConnected)
      selection.setBaseAndExtent(anchorNode, anchorOffset, focusNode, focusOffset);
  }
  // The engine spells out the style sheet's looks where it joins or moves paragraphs; they are nobody's formatting.
  function dropSpelledOutStyles() {
    const spelled = [...body.querySelectorAll('[style*="var(--"]')];
    if (spelled.length) keepingSelection(() => {
      for (const each of spelled) {
        each.removeAttribute('style');
        if (each.tagName === 'SPAN' && !each.attributes.length) each.replaceWith(...each.childNodes);
      }
    });
  }
  // It also puts lists and tables into paragraphs, where markup has no place for them.
  function liftBlocks() {
    const wrong = [...body.querySelectorAll('p')].filter(p => [...p.children].some(e => e.matches(blocks)));
    if (wrong.length) keepingSelection(() => wrong.forEach(paragraph => {
      const parts = [];
      for (const node of [...paragraph.childNodes]) {
        if (node.nodeType === Node.ELEMENT_NODE && node.matches(blocks)) parts.push(node);
        else {
          if (parts[parts.length - 1]?.tagName !== 'P') parts.push(paragraph.cloneNode(false));
          parts[parts.length - 1].append(node);
        }
      }
      paragraph.replaceWith(...parts);
    }));
  }

  // A box that was clicked says so in its markup, which alone is kept.
  function markBoxes() {
    for (const box of body.querySelectorAll('input[type=checkbox]'))
      if (box.checked !== box.hasAttribute('checked')) box.toggleAttribute('checked', box.checked);
  }

  // -- where the selection is
  const element = node => node && (node.nodeType === Node.ELEMENT_NODE ? node : node.parentElement);
  function around(selector) {
    const found = element(selection.anchorNode)?.closest(selector);
    return found && body.contains(found) ? found : null;
  }
  function touched(selector) {
    if (!selection.rangeCount) return [];
    const range = selection.getRangeAt(0);
    const found = [...body.querySelectorAll(selector)].filter(e => range.intersectsNode(e));
    const nearest = around(selector);
    return found.filter(e => e === nearest || !found.some(inner => inner !== e && e.contains(inner)) ||
                             [...e.childNodes].some(n => n.nodeType === Node.TEXT_NODE && n.data.trim() &&
                                                         range.intersectsNode(n)));
  }
  const paragraph = () => around('p, li, h1, h2, h3, h4, h5, h6, td, th, pre, dt, dd, div');

  // -- lists: bullets, numbers, check boxes, none
  function inList() {
    const list = around('ul, ol');
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
    item.classList.add('tm_checkbox');
    if (item.querySelector(':scope > input')) return;
    const box = document.createElement('input');
    box.type = 'checkbox';
    item.prepend(box);
    if (selection.anchorNode === item && selection.isCollapsed && selection.anchorOffset === 0)
      selection.collapse(item, 1);
  }
  function toggleList() {
    const now = inList();
    if (now === '') document.execCommand('insertUnorderedList');
    else if (now === 'bullets') renameList('ol');
    else if (now === 'numbers') toggleBoxes();
    else {
      touched('li').forEach(plainItem);
      document.execCommand('insertUnorderedList');
    }
  }
  function renameList(tag) {
    keepingSelection(() => {
      const list = around('ul, ol');
      const renamed = document.createElement(tag);
      for (const {name, value} of list.attributes) renamed.setAttribute(name, value);
      renamed.append(...list.childNodes);
      list.replaceWith(renamed);
    });
  }
  // A list of one kind becomes the other; the kind that it is already goes.
  function setList(ordered) {
    const now = inList();
    const command = ordered ? 'insertOrderedList' : 'insertUnorderedList';
    if (now === '' || now === (ordered ? 'numbers' : 'bullets')) return document.execCommand(command);
    touched('li').forEach(plainItem);
    if (around('ul, ol').tagName !== (ordered ? 'OL' : 'UL')) renameList(ordered ? 'ol' : 'ul');
  }
  function toggleBoxes() {
    const now = inList();
    if (now === 'boxes') return touched('li').forEach(plainItem);
    if (now === 'numbers') renameList('ul');
    else if (now === '') document.execCommand('insertUnorderedList');
    touched('li').forEach(boxedItem);
  }
  function setBox(item, done) {
    item.classList.toggle('tm_checkbox', !done);
    item.classList.toggle('tm_checkbox_done', done);
    const box = item.querySelector(':scope > input[type=checkbox]');
    if (box) { box.checked = done; box.toggleAttribute('checked', done); }
  }
  const toggleDone = () => touched(boxes).forEach(item => setBox(item, item.classList.contains('tm_checkbox')));
  function click(x, y) {
    const item = window.tmBoxes.at(x, y);
    if (item) setBox(item, item.classList.contains('tm_checkbox'));
    return Boolean(item);
  }
  // A new item does not take over that the one before it is done.
  function newItem() {
    const item = around(boxes);
    if (!item || item.textContent.trim()) return;
    setBox(item, false);
    boxedItem(item);
  }

  // -- tables
  function insertTable(rows, columns) {
    const row = '<tr>' + '<td><br></td>'.repeat(columns) + '</tr>';
    const id = Date.now();
    document.execCommand('insertHTML', false,
                         `<table tmtableid="${id}"><tbody>${row.repeat(rows)}</tbody></table><p><br></p>`);
    const table = body.querySelector(`table[tmtableid="${id}"]`);
    if (table) caretIn(table.rows[0].cells[0]);
  }
  function insertRow(below) {
    const chosen = touched('td, th');
    return chosen.length ? window.tmTables.insertRow(chosen, below) : null;
  }
  function insertColumn(after) {
    const chosen = touched('td, th');
    if (chosen.length) window.tmTables.insertColumn(chosen, after);
  }
  function removeTable(table) {
    const left = document.createElement('p');
    left.append(document.createElement('br'));
    table.replaceWith(left);
    caretIn(left);
  }
  function removeCells(remove) {
    const chosen = touched('td, th');
    if (!chosen.length) return;
    const table = chosen[0].closest('table');
    const next = remove(chosen);
    if (next) caretIn(next);
    else removeTable(table);
  }
  const removeRows = () => removeCells(window.tmTables.removeRows);
  const removeColumns = () => removeCells(window.tmTables.removeColumns);
  // The tabulator walks through a table and indents in a list; false where it is a character.
  function tab(back) {
    const cell = around('td, th');
    if (cell) {
      const all = [...cell.closest('table').querySelectorAll('td, th')];
      const next = all[all.indexOf(cell) + (back ? -1 : 1)];
      if (next) caretIn(next);
      else if (!back) { const row = insertRow(true); caretIn(row.cells[0] || row); }
    } else if (around('li')) document.execCommand(back ? 'outdent' : 'indent');
    else if (!back) document.execCommand('insertText', false, '\t');
  }

  // -- marks around the selection
  const characters = text => [...new Intl.Segmenter().segment(text)].length;
  function enclose(leading, trailing) {
    const text = selection.toString();
    document.execCommand('insertText', false, leading + text + trailing);
    for (let i = characters(trailing); i > 0; --i) selection.modify('move', 'backward', 'character');
    for (let i = characters(text); i > 0; --i) selection.modify('extend', 'backward', 'character');
  }
  function code() {
    const made = document.createElement('code');
    made.textContent = selection.toString();
    if (made.textContent) document.execCommand('insertHTML', false, made.outerHTML);
  }
  function clearFormat() {
    for (const each of touched('[style]')) each.removeAttribute('style');
    document.execCommand('removeFormat');
  }

  // -- the contents table
  function writeContents() {
    let table = document.getElementById('TOC');
    const saved = place();
    const shift = table ? 0 : 1;
    const headings = [...body.querySelectorAll('h1, h2, h3, h4, h5, h6')].filter(h => !h.closest('#TOC') &&
                                                                                     h.innerText.trim());
    const list = document.createElement('ul');
    headings.forEach((heading, index) => {
      if (!heading.id) heading.id = `tm_heading_${index + 1}_${Date.now().toString(36)}`;
      const item = document.createElement('li');
      item.className = `tm_level_${heading.tagName[1]}`;
      item.style.marginLeft = `${(heading.tagName[1] - 1) * 1.2}em`;
      const link = document.createElement('a');
      link.href = `#${heading.id}`;
      link.textContent = heading.innerText.trim();
      item.append(link);
      list.append(item);
    });
    if (!table) {
      table = document.createElement('div');
      table.id = table.className = 'TOC';
      body.prepend(table);
    }
    if (table.innerHTML === list.outerHTML) return;
    table.replaceChildren(list);
    for (const index of [0, 2]) if (saved && saved[index].length) saved[index][0] += shift;
    goTo(saved);
  }
  function setContents(on) {
    contents = on;
    if (!on) document.getElementById('TOC')?.remove();
    else writeContents();
  }

  // -- talking
  function isMarked() {
    const paper = [body, document.documentElement].map(e => getComputedStyle(e).backgroundColor);
    return !['', 'transparent', 'rgba(0, 0, 0, 0)', ...paper].includes(document.queryCommandValue('backColor'));
  }
  const stateOf = names => Object.fromEntries(names.map(name => [name, document.queryCommandState(name)]));
  function report(afterReturn) {
    if (afterReturn) newItem();
    if (document.designMode === 'on' && note('typing')) changed = true;
    const news = changed;
    changed = false;
    return {
      changed: news, html: news ? html : '', text: news ? body.innerText : '',
      state: stateOf(['bold', 'italic', 'underline', 'strikeThrough', 'insertUnorderedList', 'insertOrderedList']),
      block: document.queryCommandValue('formatblock'), marked: isMarked(),
      list: inList(), inTable: Boolean(around('td, th')), paragraph: paragraph()?.innerText || '',
      selected: selection.toString().slice(0, 1000), canUndo: at > 0, canRedo: at + 1 < steps.length,
    };
  }
  function run(action) {
    if (document.designMode !== 'on') return report();
    if (note('typing')) changed = true;
    if (!selection.rangeCount || !body.contains(selection.anchorNode)) selection.collapse(body, 0);
    action();
    dirty = true;
    if (note('command')) changed = true;
    return report();
  }
  function undo() { if (note('typing')) changed = true; if (at > 0) moveTo(at - 1); return report(); }
  function redo() { if (note('typing')) changed = true; if (at + 1 < steps.length) moveTo(at + 1); return report(); }

  // An empty page gets the paragraph that typing goes to.
  if (!body.firstElementChild && !body.textContent.trim()) body.innerHTML = '<p><br></p>';
  html = body.innerHTML;
  steps.push(step('start'));
  function begin(keepsContents) {
    if (document.designMode === 'on') return report();
    contents = keepsContents;
    const saved = place();
    document.designMode = 'on';
    document.execCommand('defaultParagraphSeparator', false, 'p');
    observer.observe(body, watched);
    // A place that was there before is none to type at until it is set again.
    selection.removeAllRanges();
    window.focus();
    if (saved) goTo(saved);
    else caretIn(body.firstElementChild || body);
    return report();
  }
  function restyle(head, language) {
    document.head.innerHTML = head;
    if (language) document.documentElement.lang = language;
  }
  const start = () => ({html, text: body.innerText});
  return {begin, start, report, run, undo, redo, click, tab, newItem, toggleList, setList, toggleBoxes, toggleDone, insertTable,
          insertRow, removeRows, insertColumn, removeColumns, enclose, code, clearFormat, setContents, restyle,
          replaceAll: window.tmReplacing.replaceAll, replaceNext: window.tmReplacing.replaceNext,
          linkAt: (x, y) => document.elementFromPoint(x, y)?.closest('a[href]')?.href || ''};
})();
