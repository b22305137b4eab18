// Stands in for both map services. window.shown() tells what the page's map shows: its view, then
// markers with image and place and lines with their points, in the order of their making.
(function() {
  'use strict';
  const overlays = [];

  function show(value) {
    return Array.isArray(value) ? '[' + value.map(show).join(' ') + ']'
                                : `(${value.lat},${value.lng})`;
  }

  class Overlay {
    constructor(options) {
      Object.assign(this, options);
      overlays.push(this);
    }
    setMap(map) { this.map = map; }
  }
  class Marker extends Overlay {
    toString() {
      const {anchor, url} = typeof this.icon === 'string' ? {url: this.icon} : this.icon;
      const shift = this.offset || anchor;
      return url.replace(/.*mapfiles\//, '') + show(this.position) +
          (shift ? `${shift.x},${shift.y}` : '');
    }
  }
  class Polyline extends Overlay {
    // As it is now: the pages use their lists again.
    constructor(options) { super({...options, path: [...options.path]}); }
    toString() {
      return `${this.strokeColor} ${this.strokeWeight} ${this.strokeDasharray || 'solid'} ` +
          show(this.path);
    }
  }
  class Map {
    constructor(element, options) { this.view = options.center ? show(options.center) : ''; }
    fitBounds(bounds) { this.view = show(bounds.places); }
    setFitView() { this.view = 'all'; }
    setZoomAndCenter(zoom, place) { this.view = zoom + show(place); }
    plugin(names, ready) { ready(); }
    addControl() {}
    setLang() {}
  }
  class LatLngBounds {
    constructor() { this.places = []; }
    extend(place) { this.places.push(place); }
  }
  const value = number => Object.assign(() => number, {toString: () => String(number)});
  const LatLng = function(lat, lng) { return {lat: value(lat), lng: value(lng)}; };
  const LngLat = function(lng, lat) { return {lat, lng}; };
  const Point = function(x, y) { return {x, y}; };
  const MarkerImage = function(url, size, origin, anchor) { return {url, size, origin, anchor}; };
  const SymbolPath = {FORWARD_CLOSED_ARROW: 1};
  window.google = {maps: {LatLng, LatLngBounds, Map, Marker, MarkerImage, Point, Polyline,
                          Size: Point, SymbolPath}};
  window.AMap = {LngLat, Map, Marker, Polyline, ToolBar: Object, MapType: Object};
  window.shown = () => {
    const there = window.map instanceof Map ? window.map : window.mapObj;
    return there ? [there.view, ...overlays.filter(one => one.map === there)].join(' ') : 'no map';
  };
})();
