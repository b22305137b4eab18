// Runs in every page and frame before its own scripts, in their world: takes from them WebRTC, which
// would connect past the rules for requests. The engine itself sends no datagrams for it and has no
// WebTransport; a window that a page opens runs no scripts.

// A frame that is still empty has no scripts of its own, and the page may use it at once. So it is
// guarded in the moment in which it comes: when it is put into the document, or when it is asked
// for its window. The guard is on its own with what it needs, since the page may change everything.
(function guard(window) {
  'use strict';

  const connecting = ['RTCPeerConnection', 'webkitRTCPeerConnection'];
  for (let i = 0; i < connecting.length; ++i) {
    delete window[connecting[i]];
  }

  const {apply, defineProperty, getOwnPropertyDescriptor} = window.Reflect;
  const {addEventListener} = window.EventTarget.prototype;
  const {add, has} = window.WeakSet.prototype;
  const guarded = new window.WeakSet();

  function guardFrame(frame) {
    try {
      const sign = frame.Reflect;  // of this document's; the next one has its own
      if (!apply(has, guarded, [sign])) {
        guard(frame);
        apply(add, guarded, [sign]);
      }
    } catch {
      // A frame of another origin is out of reach for the page as well.
    }
  }

  function guardFrames() {
    for (let i = 0; window[i]; ++i) {
      guardFrame(window[i]);
    }
  }

  // Lets `visit` see what the property, or the function that it holds, answers.
  function watch(object, name, part, visit) {
    const property = getOwnPropertyDescriptor(object, name);
    if (!property) {
      return;
    }
    const inner = property[part];
    property[part] = function(...given) {
      const answer = apply(inner, this, given);
      visit(answer);
      return answer;
    };
    property.configurable = false;
    defineProperty(object, name, property);
  }

  function listen() {
    apply(addEventListener, window, ['DOMNodeInserted', guardFrames, true]);
    apply(addEventListener, window.document, ['load', guardFrames, true]);  // of the page's text
    guardFrames();
  }

  const holders = ['HTMLIFrameElement', 'HTMLFrameElement', 'HTMLObjectElement',
                   'HTMLEmbedElement'];
  for (let i = 0; i < holders.length; ++i) {
    const holder = window[holders[i]].prototype;
    const guardDocument = held => held && guardFrame(held.defaultView);
    watch(holder, 'contentWindow', 'get', guardFrame);
    watch(holder, 'contentDocument', 'get', guardDocument);
    watch(holder, 'getSVGDocument', 'value', guardDocument);
  }
  // A document that is written anew hears nothing any more.
  const writers = ['open', 'write', 'writeln'];
  for (let i = 0; i < writers.length; ++i) {
    watch(window.Document.prototype, writers[i], 'value', listen);
  }
  listen();
})(window);
