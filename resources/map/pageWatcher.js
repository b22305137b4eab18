// Runs in every map page before its own scripts, in a world of its own.

// Tells the program by `readyWord` that the document is there, and the user when the map service's
// script cannot be had: the page itself would just stay empty.
function watchPage(readyWord) {
  'use strict';

  const failure = '地図サービスに接続できません';
  let note = null;

  function showNote() {
    if (note && document.body && !note.isConnected) {
      document.body.append(note);
    }
  }

  window.addEventListener('error', event => {
    if (!(event.target instanceof HTMLScriptElement) || note) {
      return;
    }
    note = document.createElement('div');
    note.textContent = failure;
    note.style.cssText = 'position: absolute; z-index: 1000; top: 12px; left: 50%;' +
        'transform: translateX(-50%); padding: 5px 12px; border-radius: 4px; white-space: nowrap;' +
        'font: 13px "Noto Sans CJK JP", "Noto Sans JP", sans-serif; color: #333;' +
        'background: #fff; box-shadow: 0 1px 4px rgba(0, 0, 0, 0.3);';
    showNote();
  }, true);

  document.addEventListener('DOMContentLoaded', () => {
    showNote();
    console.info(readyWord);
  });
}
