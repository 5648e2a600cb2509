// SPDX-License-Identifier: GPL-3.0-or-later
// What was done to a page, to be undone. A step keeps the nodes right below the body that it changed, before and after,
// so that a key in a long page costs no more than in a short one.
window.tmHistory = (() => {
  const body = document.body;
  const selection = window.getSelection();
  const maximumSize = 64 * 1024 * 1024; // characters in all steps together
  const typingPause = 1000; // milliseconds; a longer one begins another step
  const watched = {childList: true, subtree: true, characterData: true, attributes: true};
  const steps = [];
  let at = 0;         // so many steps are done
  let shadow = [];    // each node below the body with a copy of it as it was after the last step
  let touched = new Set();
  let listChanged = false;
  let isKept = false; // from the first time on that the page is edited
  let joins = false;  // typing may still become part of the last step
  let lastPlace = null;

  // -- places: a node as the way to it from the body, so that a place outlives a restored page
  function wayTo(node) {
    const way = [];
    for (; node && node !== body; node = node.parentNode) way.unshift(Array.prototype.indexOf.call(node.parentNode.childNodes, node));
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

  // -- what changed
  const observer = new MutationObserver(take);
  function take(records) {
    for (const {target} of records) {
      let node = target;
      while (node && node !== body && node.parentNode !== body) node = node.parentNode;
      if (node === body) listChanged = true;
      else if (node) touched.add(node);
    }
  }
  function forget() {
    observer.takeRecords();
    touched = new Set();
    listChanged = false;
  }
  const copyOf = node => node.cloneNode(true);
  const shadowOf = (nodes, copies) => nodes.map((live, i) => ({live, copy: copies[i]}));
  function replaceShadow(from, end, nodes, copies) {
    shadow = [...shadow.slice(0, from), ...shadowOf(nodes, copies), ...shadow.slice(end)];
  }
  // From the first to the last node that is another, or was changed: in the page, and in the copies of it.
  function changedPart() {
    take(observer.takeRecords());
    const live = [...body.childNodes];
    const same = (s, l) => s && s.live === l && !touched.has(l);
    let from = 0;
    while (from < live.length && same(shadow[from], live[from])) ++from;
    let end = live.length;
    let shadowEnd = shadow.length;
    while (end > from && shadowEnd > from && same(shadow[shadowEnd - 1], live[end - 1])) { --end; --shadowEnd; }
    return {from, shadowEnd, nodes: live.slice(from, end)};
  }
  const sourceOf = node => node.outerHTML ?? node.data ?? '';
  const sizeOf = nodes => nodes.reduce((sum, node) => sum + sourceOf(node).length, 0);
  // How a text is cut into nodes is nothing that a person could undo.
  const areSame = (a, b) => a.isEqualNode(b) || (a.nodeType === b.nodeType && sourceOf(a) === sourceOf(b));

  // -- steps
  function push(step) {
    step.size = sizeOf(step.before) + sizeOf(step.after);
    steps.length = at;
    steps.push(step);
    for (let size = steps.reduce((sum, s) => sum + s.size, 0); size > maximumSize && steps.length > 1;)
      size -= steps.shift().size;
    at = steps.length;
  }
  // Takes what happened since the last look as a step of that kind, `tidy` having a chance to mend the changed nodes.
  // False when nothing did.
  function note(kind, tidy) {
    if (!isKept) return false;
    take(observer.takeRecords());
    if (!touched.size && !listChanged) {
      lastPlace = place() || lastPlace;
      return false;
    }
    tidy(changedPart().nodes);
    const {from, shadowEnd, nodes} = changedPart();
    forget();
    const before = shadow.slice(from, shadowEnd).map(s => s.copy);
    const after = nodes.map(copyOf);
    replaceShadow(from, shadowEnd, nodes, after);
    if (before.length === after.length && before.every((node, i) => areSame(node, after[i]))) return false;
    const now = place();
    const last = steps[at - 1];
    if (kind === 'typing' && joins && last.kind === kind && Date.now() - last.time < typingPause &&
        last.from === from && last.after.length === before.length) {
      Object.assign(last, {after, placeAfter: now, time: Date.now()});
    } else {
      push({kind, from, before, after, placeBefore: lastPlace, placeAfter: now, time: Date.now()});
    }
    joins = kind === 'typing';
    lastPlace = now || lastPlace;
    return true;
  }
  function put(from, count, copies, where) {
    const nodes = copies.map(copyOf);
    const behind = body.childNodes[from + count] || null;
    [...body.childNodes].slice(from, from + count).forEach(node => node.remove());
    nodes.forEach(node => body.insertBefore(node, behind));
    replaceShadow(from, from + count, nodes, copies);
    forget();
    goTo(where);
    lastPlace = place();
    joins = false;
  }
  function undo() {
    if (at === 0) return false;
    const step = steps[--at];
    put(step.from, step.after.length, step.before, step.placeBefore);
    return true;
  }
  function redo() {
    if (at === steps.length) return false;
    const step = steps[at++];
    put(step.from, step.before.length, step.after, step.placeAfter);
    return true;
  }
  // Puts the nodes in place of the page's own, of which those stay that are the same, and the caret with them.
  function replaceBy(fresh) {
    const live = [...body.childNodes];
    let from = 0;
    while (from < live.length && from < fresh.length && live[from].isEqualNode(fresh[from])) ++from;
    let end = live.length;
    let freshEnd = fresh.length;
    while (end > from && freshEnd > from && live[end - 1].isEqualNode(fresh[freshEnd - 1])) { --end; --freshEnd; }
    const gone = live.slice(from, end);
    const isHit = gone.some(node => node.contains(selection.anchorNode) || node.contains(selection.focusNode));
    const saved = isHit ? place() : null;
    gone.forEach(node => node.remove());
    fresh.slice(from, freshEnd).forEach(node => body.insertBefore(node, live[end] ?? null));
    goTo(saved);
  }
  // Steps are kept from here on.
  function begin() {
    if (isKept) return;
    isKept = true;
    const nodes = [...body.childNodes];
    shadow = shadowOf(nodes, nodes.map(copyOf));
    observer.observe(body, watched);
  }
  // One record for each node right below the body, the same one as long as nothing in the node changed.
  const parts = () => shadow;
  return {begin, note, undo, redo, replaceBy, place, goTo, parts, endStep: () => { joins = false; },
          hasSteps: () => steps.length > 0};
})();
