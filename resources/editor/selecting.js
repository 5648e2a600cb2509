// SPDX-License-Identifier: GPL-3.0-or-later
// What the selection of a page stands in and touches.
window.tmSelecting = (() => {
  const body = document.body;
  const selection = window.getSelection();
  const element = node => node && (node.nodeType === Node.ELEMENT_NODE ? node : node.parentElement);

  function around(selector) {
    const found = element(selection.anchorNode)?.closest(selector);
    return found && body.contains(found) ? found : null;
  }
  // Of elements in each other those count that have a text of their own in the selection, and the nearest one.
  function touched(selector) {
    if (!selection.rangeCount) return [];
    const range = selection.getRangeAt(0);
    const found = [...body.querySelectorAll(selector)].filter(e => range.intersectsNode(e));
    const nearest = around(selector);
    return found.filter(e => e === nearest || !found.some(inner => inner !== e && e.contains(inner)) ||
                             [...e.childNodes].some(n => n.nodeType === Node.TEXT_NODE && n.data.trim() &&
                                                         range.intersectsNode(n)));
  }
  const within = (nodes, selector) =>
    nodes.flatMap(node => [...(node.matches(selector) ? [node] : []), ...node.querySelectorAll(selector)]);

  function keepingSelection(action) {
    const {anchorNode, anchorOffset, focusNode, focusOffset} = selection;
    action();
    if (anchorNode?.isConnected && focusNode?.isConnected)
      selection.setBaseAndExtent(anchorNode, anchorOffset, focusNode, focusOffset);
  }
  const caretIn = node => selection.collapse(node, 0);

  // The texts that are selected, each with the part of it.
  function texts() {
    if (!selection.rangeCount) return [];
    const range = selection.getRangeAt(0);
    const walker = document.createTreeWalker(element(range.commonAncestorContainer), NodeFilter.SHOW_TEXT);
    const found = [];
    while (walker.nextNode()) {
      const node = walker.currentNode;
      if (!range.intersectsNode(node)) continue;
      const from = node === range.startContainer ? range.startOffset : 0;
      const to = node === range.endContainer ? range.endOffset : node.length;
      if (node.data.slice(from, to).trim()) found.push({node, from, to});
    }
    return found;
  }
  return {around, touched, within, keepingSelection, caretIn, texts};
})();
