// Runs in every map page before its own scripts, in a world of its own.

// Tells the program by `readyWord` that the document is there, and the user when the map service's
// script cannot be had: the page itself would just stay empty.
function watchPage(readyWord) {
  'use strict';

  const failure = '地図サービスに接続できません';
  const silenceAfter = 10000;  // ms
  const answered = new WeakSet();
  let note = null;
  let failed = false;

  function showNote(place) {
    if (note && place && !note.isConnected) {
      place.append(note);
    }
  }

  function makeNote(place) {
    if (note) {
      return;
    }
    note = document.createElement('div');
    note.textContent = failure;
    note.style.cssText = 'position: absolute; z-index: 1000; top: 12px; left: 50%;' +
        'transform: translateX(-50%); padding: 5px 12px; border-radius: 4px; white-space: nowrap;' +
        'font: 13px "Noto Sans CJK JP", "Noto Sans JP", sans-serif; color: #333;' +
        'background: #fff; box-shadow: 0 1px 4px rgba(0, 0, 0, 0.3);';
    showNote(place);
  }

  function silent() {
    return [...document.scripts].some(script => script.src && !answered.has(script));
  }

  // Of loads, unlike errors, the window does not hear.
  document.addEventListener('load', event => {
    answered.add(event.target);
    if (note && !failed && !silent()) {
      note.remove();
      note = null;
    }
  }, true);

  window.addEventListener('error', event => {
    if (event.target instanceof HTMLScriptElement) {
      answered.add(event.target);
      failed = true;
      makeNote(document.body);
    }
  }, true);

  setTimeout(() => {
    if (silent()) {
      // A script that holds the page may be in front of the body.
      makeNote(document.body || document.documentElement);
    }
  }, silenceAfter);

  document.addEventListener('DOMContentLoaded', () => {
    showNote(document.body);
    console.info(readyWord);
  });
}
