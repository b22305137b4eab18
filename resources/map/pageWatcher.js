// Runs in every page before its own scripts, in a world of its own.

// Tells the program by `readyWord` that the document is there, and the user when the map service's
// script cannot be had: the page itself would just stay empty. Only the scripts that stand in the
// page's text, `html`, count: what a service loads besides may fail without harm to the map.
function watchPage(readyWord, html) {
  'use strict';

  const failure = '地図サービスに接続できません';
  const silenceAfter = 10000;  // ms
  const needed = new Set([...new DOMParser().parseFromString(html, 'text/html').scripts]
      .map(script => script.getAttribute('src')).filter(address => address));
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

  function isNeeded(script) {
    return script instanceof HTMLScriptElement && needed.has(script.getAttribute('src'));
  }

  function silent() {
    return [...document.scripts].some(script => isNeeded(script) && !answered.has(script));
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
    if (isNeeded(event.target)) {
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
