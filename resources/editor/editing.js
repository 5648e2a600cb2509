// SPDX-License-Identifier: GPL-3.0-or-later
// What the formatted editor does inside of a page. Runs in a world of its own, out of the page's reach, and leaves
// nothing in the document: a page is made editable as a whole, so that no element bears an attribute for it.
// Each call from outside ends with tm.report(), which tells what changed since the last one.
window.tm = (() => {
  const body = document.body;
  const selection = window.getSelection();
  const blocks = 'ul, ol, table, blockquote, pre, div, hr, h1, h2, h3, h4, h5, h6, p';
  const {place, goTo} = window.tmHistory;
  const {around, touched, within, keepingSelection, caretIn} = window.tmSelecting;
  const lists = window.tmLists;
  let contents = false;
  let untold = false; // a change that was not told yet
  let told = [];      // what history.js keeps of each part of the page, as it was when it was told

  // -- steps
  function note(kind) {
    if (window.tmHistory.note(kind, tidy)) untold = true;
  }
  function tidy(nodes) {
    const changed = nodes.filter(node => node.nodeType === Node.ELEMENT_NODE);
    markBoxes(changed);
    dropSpelledOutStyles(changed);
    dropSecondNames(changed);
    nestLists(changed);
    liftBlocks(changed.filter(node => node.isConnected));
    if (contents) writeContents();
  }
  // Typing is undone by words: a step ends where a word begins, and where writing turns into deleting.
  let lastInput = '';
  let lastWasBlank = false;
  document.addEventListener('beforeinput', event => {
    const kind = event.inputType.startsWith('delete') ? 'delete' : 'insert';
    const isBlank = kind === 'insert' && !(event.data ?? '').trim();
    if (kind !== lastInput || (lastWasBlank && !isBlank)) {
      note('typing');
      window.tmHistory.endStep();
    }
    lastInput = kind;
    lastWasBlank = isBlank;
  });
  document.addEventListener('input', event => {
    if (event.inputType === 'insertParagraph') lists.newItem();
  });

  // The engine spells out the style sheet's looks where it joins or moves paragraphs, gives a colour that is none where
  // one is taken away, and goes on in the black of a highlight behind it; they are nobody's formatting.
  function dropSpelledOutStyles(nodes) {
    const spelled = within(nodes, '[style=""], [style*="var(--"], [style*="text-align: initial"], ' +
                                  'span[style*="transparent"], ' +
                                  'font[style*="transparent"], font[color^="rgba(0, 0, 0, 0"], font[color="#000000"]');
    if (spelled.length) keepingSelection(() => spelled.forEach(dropSpelledOutStyle));
  }
  function dropSpelledOutStyle(each) {
    if (each.getAttribute('style')?.includes('var(--')) each.removeAttribute('style');
    if (each.style.textAlign === 'initial') each.style.removeProperty('text-align');
    if (each.style.backgroundColor === 'transparent') each.style.removeProperty('background-color');
    if (each.getAttribute('color')?.startsWith('rgba(0, 0, 0, 0') || (each.color === '#000000' && !hasMark(each)))
      each.removeAttribute('color');
    dropIfBare(each);
  }
  function dropIfBare(each) {
    if (!each.getAttribute('style')) each.removeAttribute('style');
    if (each.matches('span, font') && !each.attributes.length) each.replaceWith(...each.childNodes);
  }
  // A heading that is cut in two is known by its name once.
  function dropSecondNames(nodes) {
    for (const each of within(nodes, '[id]'))
      if (each.previousElementSibling?.id === each.id) each.removeAttribute('id');
  }
  // Who leaves an inner list finds it beside its item.
  function nestLists(nodes) {
    const loose = within(nodes, 'ul > ul, ul > ol, ol > ul, ol > ol').filter(e => e.previousElementSibling?.tagName === 'LI');
    if (loose.length) keepingSelection(() => loose.forEach(list => list.previousElementSibling.append(list)));
  }
  // It also puts lists and tables into paragraphs and headings, where markup has no place for them.
  function partsOf(paragraph) {
    const parts = [];
    let own = null;
    for (const node of [...paragraph.childNodes]) {
      if (node.nodeType === Node.ELEMENT_NODE && node.matches(blocks)) {
        parts.push(node);
        own = null;
      } else if (own || node.nodeType !== Node.TEXT_NODE || node.data.trim()) {
        if (!own) parts.push(own = paragraph.cloneNode(false));
        own.append(node);
        paragraph.removeAttribute('id'); // which the first part has now
      }
    }
    return parts;
  }
  function liftBlocks(nodes) {
    const wrong = within(nodes, 'p, h1, h2, h3, h4, h5, h6').filter(e => [...e.children].some(c => c.matches(blocks)));
    if (wrong.length)
      keepingSelection(() => wrong.forEach(paragraph => paragraph.replaceWith(...partsOf(paragraph))));
  }

  // A box that was clicked says so in its markup, which alone is kept.
  function markBoxes(nodes) {
    for (const box of within(nodes, 'input[type=checkbox]'))
      if (box.checked !== box.hasAttribute('checked')) box.toggleAttribute('checked', box.checked);
  }

  // -- the mouse
  function click(x, y) {
    const item = window.tmBoxes.at(x, y);
    if (item) lists.toggleBox(item);
    return Boolean(item);
  }
  function caretAt(x, y) {
    const range = document.caretRangeFromPoint(x, y);
    if (range && body.contains(range.startContainer)) selection.collapse(range.startContainer, range.startOffset);
    return report();
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
    } else if (!lists.indent(back) && !back) document.execCommand('insertText', false, '\t');
  }

  // -- marks around the selection
  const characters = text => [...new Intl.Segmenter().segment(text)].length;
  // Between two paragraphs a selection tells an empty line that is none.
  function enclose(leading, trailing) {
    const selected = selection.toString();
    const text = around('pre') ? selected : selected.replaceAll('\n\n', '\n');
    document.execCommand('insertText', false, leading + text + trailing);
    for (let i = characters(trailing); i > 0; --i) selection.modify('move', 'backward', 'character');
    for (let i = characters(text); i > 0; --i) selection.modify('extend', 'backward', 'character');
  }
  function enclosed({node, from, to}) {
    const part = from > 0 ? node.splitText(from) : node;
    if (to - from < part.length) part.splitText(to - from);
    const made = document.createElement('code');
    part.replaceWith(made);
    made.append(part);
    return part;
  }
  function code() {
    const present = around('code');
    if (present && !around('pre')) return keepingSelection(() => present.replaceWith(...present.childNodes));
    const parts = window.tmSelecting.texts().map(enclosed);
    const last = parts[parts.length - 1];
    if (last) selection.setBaseAndExtent(parts[0], 0, last, last.length);
  }
  function clearFormat() {
    keepingSelection(() => {
      for (const each of touched('[style]')) {
        each.removeAttribute('style');
        dropIfBare(each);
      }
    });
    document.execCommand('removeFormat');
  }
  // Where a caret stands in a link all of it is meant.
  function wholeLink() {
    const link = around('a[href]');
    if (link && selection.isCollapsed) selection.selectAllChildren(link);
  }

  // -- the contents table
  function writeContents() {
    let table = document.getElementById('TOC');
    const saved = place();
    const shift = table ? 0 : 1;
    const headings = [...body.querySelectorAll('h1, h2, h3, h4, h5, h6')].filter(h => !h.closest('#TOC') &&
                                                                                     h.textContent.trim());
    const list = document.createElement('ul');
    headings.forEach((heading, index) => {
      if (!heading.id) heading.id = `tm_heading_${index + 1}_${Date.now().toString(36)}`;
      const item = document.createElement('li');
      item.className = `tm_level_${heading.tagName[1]}`;
      item.style.marginLeft = `${(heading.tagName[1] - 1) * 1.2}em`;
      const link = document.createElement('a');
      link.href = `#${heading.id}`;
      link.textContent = heading.textContent.trim();
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
  // The engine's own answer is that of the whole page where more than one paragraph is selected.
  function hasMark(node) {
    for (let e = node; e && e !== body; e = e.parentElement)
      if (e.tagName === 'MARK' || (e.matches?.('span, font') && e.style.backgroundColor)) return true;
    return false;
  }
  function isMarked() {
    const nodes = selection.isCollapsed ? [selection.anchorNode] : window.tmSelecting.texts().map(text => text.node);
    return nodes.length > 0 && nodes.every(hasMark);
  }
  const stateOf = names => Object.fromEntries(names.map(name => [name, document.queryCommandState(name)]));
  // The markup that gives the same page again: the first line end of such elements is not read, and a carriage return
  // that stands as itself is read as a line end.
  const losesLine = e => e.firstChild?.nodeType === Node.TEXT_NODE && e.firstChild.data.startsWith('\n');
  const losing = node => node.querySelectorAll ? within([node], 'pre, textarea, listing').filter(losesLine) : [];
  function markupOf(node) {
    let source = node;
    if (losing(node).length) {
      source = node.cloneNode(true);
      for (const each of losing(source)) each.firstChild.insertData(0, '\n');
    }
    if (source.outerHTML === undefined) {
      const holder = document.createElement('div');
      holder.append(source.cloneNode(true));
      return holder.innerHTML.replaceAll('\r', '&#13;');
    }
    return source.outerHTML.replaceAll('\r', '&#13;');
  }
  // What was not told yet: the parts that stand where `removed` told ones stood, `known` being all that were told.
  const breaksOf = node => !node.matches?.(blocks) ? 0 : node.tagName === 'P' ? 2 : 1;
  const textOf = node => node.innerText ?? (node.nodeType === Node.TEXT_NODE ? node.data : '');
  function news() {
    const parts = window.tmHistory.parts();
    let [from, end, toldEnd] = [0, parts.length, told.length];
    while (from < end && parts[from] === told[from]) ++from;
    while (end > from && toldEnd > from && parts[end - 1] === told[toldEnd - 1]) { --end; --toldEnd; }
    const added = parts.slice(from, end).map(({live}) => [markupOf(live), textOf(live), breaksOf(live)]);
    const answer = {known: told.length, from, removed: toldEnd - from, added};
    told = parts;
    return answer;
  }
  const paragraph = () => around('p, li, h1, h2, h3, h4, h5, h6, td, th, pre, dt, dd, div');
  function report() {
    if (document.designMode === 'on') note('typing');
    const changes = untold ? news() : null;
    untold = false;
    return {
      changes,
      state: stateOf(['bold', 'italic', 'underline', 'strikeThrough', 'insertUnorderedList', 'insertOrderedList']),
      block: document.queryCommandValue('formatblock'), marked: isMarked(),
      list: lists.kind(), inTable: Boolean(around('td, th')), contents, paragraph: paragraph()?.innerText || '',
      selected: selection.toString().slice(0, 1000),
    };
  }
  function run(action) {
    if (document.designMode !== 'on') return report();
    note('typing');
    if (!selection.rangeCount || !body.contains(selection.anchorNode)) selection.collapse(body, 0);
    try {
      action();
    } finally {
      note('command');
    }
    lastInput = '';
    return report();
  }
  function step(go) {
    note('typing');
    if (go()) untold = true;
    contents = Boolean(document.getElementById('TOC'));
    lastInput = '';
    return report();
  }
  const undo = () => step(window.tmHistory.undo);
  const redo = () => step(window.tmHistory.redo);

  // An empty page gets the paragraph that typing goes to.
  if (!body.firstElementChild && !body.textContent.trim()) body.innerHTML = '<p><br></p>';
  function begin(keepsContents) {
    told = []; // answers to one that stopped editing are lost
    if (document.designMode === 'on') return report();
    contents = keepsContents;
    document.getElementById('tm_long_page')?.remove(); // what is not laid out has no text
    const saved = place();
    document.designMode = 'on';
    document.execCommand('defaultParagraphSeparator', false, 'p');
    window.tmHistory.begin();
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
  function start() {
    return {html: [...body.childNodes].map(markupOf).join(''), text: body.innerText,
            hasSteps: window.tmHistory.hasSteps()};
  }
  // The document as another view of it left it, as one step; the caret stays where it is.
  function take(page) {
    note('typing');
    document.designMode = 'off';
    window.tmHistory.replaceBy([...new DOMParser().parseFromString(page, 'text/html').body.childNodes]);
    window.tmHistory.note('command', () => {});
    lastInput = '';
    untold = false;
    told = [];
    return start();
  }
  return {begin, start, text: () => body.innerText, take, report, run, undo, redo, click, caretAt, tab, insertTable,
          insertRow, removeRows, insertColumn, removeColumns, enclose, code, clearFormat, wholeLink, setContents, restyle,
          toggleList: lists.toggle, setList: lists.set, toggleBoxes: lists.toggleBoxes, toggleDone: lists.toggleDone,
          indent: lists.indent, setBlock: lists.setBlock,
          replaceAll: window.tmReplacing.replaceAll, replaceNext: window.tmReplacing.replaceNext,
          linkAt: (x, y) => document.elementFromPoint(x, y)?.closest('a[href]')?.href || ''};
})();
