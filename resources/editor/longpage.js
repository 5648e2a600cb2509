// SPDX-License-Identifier: GPL-3.0-or-later
// A long page comes with the rule that what is not to be seen is not laid out. That is taken back bit by bit while the
// person reads, so that places in the page are exact after a while.
window.tmLongPage = (() => {
  const bit = 400; // elements
  const style = document.getElementById('tm_long_page');
  const elements = document.body.children;
  let laidOut = 0;

  function layOut(count) {
    laidOut = count;
    style.textContent = count >= elements.length ? '' : `body > :nth-child(n+${count + 1}) ` +
                                                        '{ content-visibility: auto; contain-intrinsic-size: auto 4em; }';
  }
  // True while there is more to do.
  function goOn() {
    if (!style?.isConnected || laidOut >= elements.length) return false;
    layOut(laidOut + bit);
    return true;
  }
  // What is above a place decides where it is.
  function scrollTo(offset) {
    while (style?.isConnected && laidOut < elements.length) {
      const last = elements[laidOut - 1];
      if (last && last.offsetTop >= offset + window.innerHeight) break;
      layOut(Math.max(bit, laidOut * 2));
    }
    window.scrollTo(0, offset);
  }
  return {goOn, scrollTo};
})();
