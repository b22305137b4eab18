// The part of the Google Maps interface that the map page uses, on Leaflet. The program answers the
// request for the Maps script with Leaflet, this file and a call of startBundledMap(), so that a
// machine without a key shows tracks with the very same page.

// tileAddress: template of the tiles' addresses; styleSheet: Leaflet's style sheet, as text.
function startBundledMap(tileAddress, styleSheet) {
  'use strict';

  const attribution =
      '&copy; <a href="https://www.openstreetmap.org/copyright">OpenStreetMap</a> contributors';
  const tileFailure = '地図タイルを読み込めません';
  const offline = '（オフライン）';
  const retryAfter = 30000;  // ms
  const silenceAfter = 10000;  // ms without any answer from the tiles' server
  const maxZoom = 19;        // of the tiles
  const maxFitZoom = 18;     // a track of one point still shows where it is
  const framing = 32;        // px around a track that is fitted in
  // Drawing a run begins with a map at its default place. Its tiles would be asked for in vain, so
  // the default place only appears when no fitBounds() follows within this time.
  const patience = 200;      // ms

  const ownStyle = `
    .leaflet-container { background-color: #eceee6; background-image:
        linear-gradient(#dfe3d8 1px, transparent 1px),
        linear-gradient(90deg, #dfe3d8 1px, transparent 1px); background-size: 32px 32px; }
    .trakko-note { position: absolute; z-index: 1000; top: 12px; left: 50%;
        transform: translateX(-50%); padding: 5px 12px; border-radius: 4px; white-space: nowrap;
        font: 13px "Noto Sans CJK JP", "Noto Sans JP", sans-serif; color: #333;
        background: rgba(255, 255, 255, 0.9); box-shadow: 0 1px 4px rgba(0, 0, 0, 0.3); }
    .leaflet-container a:focus-visible { outline: 3px solid #0b57d0; outline-offset: -3px; }
    .leaflet-container:focus-visible::after { content: ''; position: absolute; inset: 0;
        z-index: 1100; pointer-events: none; border: 3px solid #0b57d0; }
    .trakko-marker img { position: absolute; max-width: none; }
    .trakko-dot { position: absolute; width: 10px; height: 10px; margin: -7px 0 0 -7px;
        border: 2px solid #fff; border-radius: 50%; background: #222; }`;

  class LatLng {
    constructor(lat, lng) {
      this.lat_ = Math.min(Math.max(finite(lat), -90), 90);
      const turns = finite(lng);
      this.lng_ = turns >= -180 && turns <= 180 ? turns : ((turns + 180) % 360 + 360) % 360 - 180;
    }
    lat() { return this.lat_; }
    lng() { return this.lng_; }
  }

  function finite(value) {
    const number = Number(value);
    if (!Number.isFinite(number)) {
      throw new Error('not a number');
    }
    return number;
  }

  // A LatLng from one or from a literal {lat, lng}.
  function toLatLng(place) {
    return place instanceof LatLng ? place : new LatLng(place.lat, place.lng);
  }

  function toLeaflet(place) {
    const position = toLatLng(place);
    return L.latLng(position.lat(), position.lng());
  }

  class LatLngBounds {
    constructor() { this.box = L.latLngBounds([]); }
    extend(place) {
      this.box.extend(toLeaflet(place));
      return this;
    }
  }

  class Point {
    constructor(x, y) { this.x = x; this.y = y; }
  }

  class Size {
    constructor(width, height) { this.width = width; this.height = height; }
  }

  class MarkerImage {
    constructor(url, size, origin, anchor) { Object.assign(this, {url, size, origin, anchor}); }
  }

  // Shows tiles, and says so when they cannot be had.
  class Ground {
    constructor(leaflet) {
      this.leaflet = leaflet;
      this.failures = 0;
      this.note = L.DomUtil.create('div', 'trakko-note', leaflet.getContainer());
      this.note.hidden = true;
      this.tiles = L.tileLayer(tileAddress, {attribution, maxZoom});
      this.tiles.on('loading', () => {
        this.failures = 0;
        this.awaitAnswer();
      });
      this.tiles.on('tileerror', () => this.failed());
      this.tiles.on('tileload', () => {
        this.note.hidden = this.failures === 0;
        this.awaitAnswer();
      });
      this.tiles.on('load', () => {
        clearTimeout(this.silence);
        this.note.hidden = this.failures === 0;
      });
      window.addEventListener('online', () => this.tiles.redraw());
    }
    show() { this.tiles.addTo(this.leaflet); }
    // A server may also accept and never answer.
    awaitAnswer() {
      clearTimeout(this.silence);
      this.silence = setTimeout(() => this.showNote(), silenceAfter);
    }
    showNote() {
      this.note.textContent = tileFailure + (navigator.onLine ? '' : offline);
      this.note.hidden = false;
    }
    failed() {
      this.failures++;
      this.showNote();
      clearTimeout(this.retry);
      this.retry = setTimeout(() => this.tiles.redraw(), retryAfter);
    }
  }

  function createLeaflet(element, options) {
    const leaflet = L.map(element, {
      maxZoom,
      renderer: L.canvas({padding: 0.5}),
      worldCopyJump: true,
      zoomControl: false
    });
    L.control.zoom({zoomInTitle: '拡大', zoomOutTitle: '縮小'}).addTo(leaflet);
    leaflet.attributionControl.setPrefix('<a href="https://leafletjs.com">Leaflet</a>');
    element.setAttribute('aria-label', '地図');
    if (options.scaleControl) {
      L.control.scale({imperial: false}).addTo(leaflet);
    }
    leaflet.setView(toLeaflet(options.center), options.zoom);
    leaflet.ground = new Ground(leaflet);
    return leaflet;
  }

  const mapsByElement = new WeakMap();

  // A new map in an element replaces the one before with all that was drawn on it. The Leaflet map
  // below stays, so the tiles that it shows do not have to be loaded again.
  class Map {
    constructor(element, options) {
      const before = mapsByElement.get(element);
      if (before) {
        before.overlays.remove();
        clearTimeout(before.defaultView);
      }
      this.leaflet = before ? before.leaflet : createLeaflet(element, options);
      this.overlays = L.layerGroup().addTo(this.leaflet);
      this.defaultView = setTimeout(() => this.moveTo(() => {
        this.leaflet.setView(toLeaflet(options.center), options.zoom, {animate: false});
      }), patience);
      mapsByElement.set(element, this);
    }
    fitBounds(bounds) {
      clearTimeout(this.defaultView);
      this.moveTo(() => this.leaflet.fitBounds(
          bounds.box, {padding: [framing, framing], maxZoom: maxFitZoom, animate: false}));
    }
    // In a window that is not shown yet there is nothing to fit into: the place is taken again as
    // soon as there is.
    moveTo(place) {
      const leaflet = this.leaflet;
      place();
      // Given no listener to take away, Leaflet takes away everyone's.
      if (leaflet.placeAgain) {
        leaflet.off('resize', leaflet.placeAgain);
      }
      if (leaflet.getSize().x === 0) {
        leaflet.placeAgain = () => this.moveTo(place);
        leaflet.on('resize', leaflet.placeAgain);
        return;
      }
      leaflet.ground.show();
    }
  }

  // Something drawn on a map: its Leaflet layer is made by the subclass.
  class Overlay {
    setMap(map) {
      this.layer.remove();
      if (this.group) {
        this.group.removeLayer(this.layer);
      }
      this.group = map ? map.overlays : null;
      if (this.group) {
        this.group.addLayer(this.layer);
      }
    }
  }

  function markerImage(icon) {
    const image = document.createElement('img');
    image.alt = '';
    if (icon.size) {
      image.width = icon.size.width;
      image.height = icon.size.height;
    }
    if (icon.anchor) {
      image.style.left = `${-icon.anchor.x}px`;
      image.style.top = `${-icon.anchor.y}px`;
    } else {
      image.style.transform = 'translate(-50%, -100%)';  // the middle of the lower edge
    }
    image.onerror = () => {
      const dot = document.createElement('div');
      dot.className = 'trakko-dot';
      image.replaceWith(dot);
    };
    image.src = icon.url;
    return image;
  }

  class Marker extends Overlay {
    constructor(options) {
      super();
      const icon = typeof options.icon === 'string' ? {url: options.icon} : options.icon;
      const html = markerImage(icon);
      // A piece between two breaks may be without any point: its mark is nowhere.
      this.layer = !options.position ? L.layerGroup() : L.marker(toLeaflet(options.position), {
        icon: L.divIcon({className: 'trakko-marker', html, iconSize: [0, 0]}),
        // Start, end and arrow come from the service and stay in sight before the many piece marks.
        zIndexOffset: /^https?:/.test(icon.url) ? 1000 : 0,
        interactive: false,
        keyboard: false
      });
      this.setMap(options.map);
    }
  }

  class Polyline extends Overlay {
    constructor(options) {
      super();
      const path = options.path.map(toLeaflet);
      this.layer = !path.length ? L.layerGroup() : L.polyline(path, {
        color: options.strokeColor,
        opacity: options.strokeOpacity,
        weight: options.strokeWeight,
        smoothFactor: 0.5,
        interactive: false
      });
      this.setMap(options.map);
    }
  }

  const SymbolPath = {
    CIRCLE: 0,
    FORWARD_CLOSED_ARROW: 1,
    FORWARD_OPEN_ARROW: 2,
    BACKWARD_CLOSED_ARROW: 3,
    BACKWARD_OPEN_ARROW: 4
  };

  const style = document.createElement('style');
  style.textContent = styleSheet + ownStyle;
  document.head.append(style);
  window.google = {
    maps: {LatLng, LatLngBounds, Map, Marker, MarkerImage, Point, Polyline, Size, SymbolPath}
  };
  const callback = new URL(document.currentScript.src).searchParams.get('callback');
  if (callback) {
    window[callback]();
  }
}
