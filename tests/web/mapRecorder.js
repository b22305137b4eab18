// Stands in for both map services and writes down, in window.calls, what a page asks of them:
// "Marker1 = Marker({...})" for a construction, "Marker1.setMap(null)" for a call. Positions are
// values, shown as "(lat,lng)": only what they hold counts.
(function() {
  'use strict';
  window.calls = [];

  function show(value) {
    if (value === null || typeof value !== 'object') {
      return {function: 'function', string: `'${value}'`}[typeof value] || String(value);
    }
    if (value instanceof HTMLElement) {
      return '#' + value.id;
    }
    if (Array.isArray(value)) {
      return '[' + value.map(show).join(' ') + ']';
    }
    if ('lat' in value) {
      return `(${value.lat},${value.lng})`;
    }
    return value.recordedAs ||
        '{' + Object.keys(value).map(key => key + ':' + show(value[key])).join(' ') + '}';
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

  const api = given => new Proxy(given, {
    get: (target, key) => target[key] = target[key] || recorded(String(key))
  });
  const number = value => Object.assign(() => value, {toString: () => String(value)});
  const LatLng = function(lat, lng) { return {lat: number(lat), lng: number(lng)}; };
  const LngLat = function(lng, lat) { return {lat, lng}; };
  window.google = {maps: api({LatLng, SymbolPath: {FORWARD_CLOSED_ARROW: 1}})};
  window.AMap = api({LngLat});
})();
