// Stands in for both map services and writes down, in window.calls, what a page asks of them:
// "Marker1 = Marker({...})" for a construction, "Marker1.setMap(null)" for a call.
(function() {
  'use strict';
  window.calls = [];

  function show(value) {
    if (value === null || typeof value !== 'object') {
      return typeof value === 'function' ? 'function' : JSON.stringify(value);
    }
    if (value instanceof HTMLElement) {
      return '#' + value.id;
    }
    if (value.recordedAs) {
      return value.recordedAs;
    }
    if (Array.isArray(value)) {
      return '[' + value.map(show).join(' ') + ']';
    }
    return '{' + Object.keys(value).map(key => key + ':' + show(value[key])).join(' ') + '}';
  }

  function note(line, args) {
    window.calls.push(line + '(' + args.map(show).join(', ') + ')');
  }

  function recorded(name) {
    let count = 0;
    return function(...args) {
      const id = name + ++count;
      note(id + ' = ' + name, args);
      return new Proxy({recordedAs: id}, {
        get: (target, key) => target[key] || ((...callArgs) => {
          note(id + '.' + String(key), callArgs);
          callArgs.filter(arg => typeof arg === 'function').forEach(callback => callback());
        })
      });
    };
  }

  function api(given) {
    return new Proxy(given, {
      get: (target, key) => target[key] = target[key] || recorded(String(key))
    });
  }

  // Positions are values: only what they hold counts.
  function LatLng(lat, lng) {
    return {recordedAs: `(${lat},${lng})`, lat: () => lat, lng: () => lng};
  }
  function LngLat(lng, lat) {
    return {recordedAs: `(${lng} ${lat})`, lng, lat};
  }

  window.google = {maps: api({LatLng, SymbolPath: {FORWARD_CLOSED_ARROW: 1}})};
  window.AMap = api({LngLat});
})();
