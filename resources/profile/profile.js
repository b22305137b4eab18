// The page of the profile: it draws what the program hands in and tells what the user does, by its
// title. It decides nothing: which stretch is shown and where the cursor stands is the program's.
(function () {
  'use strict';

  const element = id => document.getElementById(id);
  const chart = element('chart');
  const shown = {pace: true, heart: true, altitude: true};
  let profile = null;  // as drawProfile() takes it
  let mark = null;     // [from, to] on the axis
  let cursor = null;   // as showCursor() takes it
  let graph = null;
  let said = 0;

  // The same words twice are two events: the number makes them differ.
  function tell(...words) {
    document.title = [++said, ...words].join(' ');
  }

  function colour(name) {
    return getComputedStyle(document.body).getPropertyValue(`--${name}`).trim();
  }

  // px; the labels at the axes and the lines are a little smaller than text.
  const labelSize = () => Math.round(parseFloat(getComputedStyle(document.body).fontSize) * 0.85);

  // ---- axes ----

  // The range of an axis with some room, also where all values are one.
  function padded(range, least) {
    const [low, high] = range || [0, least];
    const middle = (low + high) / 2;
    const half = Math.max((high - low) * 0.56, least / 2);
    return [middle - half, middle + half];
  }

  function paceText(seconds) {
    const digits = number => String(number).padStart(2, '0');
    return `${digits(Math.floor(seconds / 60))}'${digits(seconds % 60)}`;
  }

  // The axis is one of speed, so up is faster and a runner who walks does not press all else
  // together. Its labels are whole paces: the roundest first, finer ones where they have room.
  function paceTicks(low, high, pixels) {
    const gap = labelSize() * 1.6;  // px between labels
    const up = pace => (3600 / pace - low) / (high - low) * pixels;
    const paces = [];
    for (const step of [3600, 1800, 600, 300, 60, 30, 15, 5]) {
      if (3600 / low / step > 500) {
        break;  // far finer than any label
      }
      for (let pace = Math.ceil(3600 / high / step) * step; 3600 / pace >= low; pace += step) {
        if (pace > 0 && paces.every(other => Math.abs(up(other) - up(pace)) >= gap)) {
          paces.push(pace);
        }
      }
    }
    return paces.map(pace => ({v: 3600 / pace, label: paceText(pace)}));
  }

  // Ticks at whole multiples of the first step that leaves room for the labels.
  function ticks(low, high, pixels, gap, steps, label) {
    const step = steps.find(s => s * pixels / (high - low) >= gap) || steps[steps.length - 1];
    const all = [];
    for (let i = Math.ceil(low / step); i * step <= high && all.length < 100; ++i) {
      all.push({v: i * step, label: label(i * step, step)});
    }
    return all;
  }

  function placeTicks(low, high, pixels) {
    if (profile.axis === 'distance') {
      const steps = [0.01, 0.02, 0.05, 0.1, 0.2, 0.5, 1, 2, 5, 10, 20, 50, 100, 1000];
      return ticks(low, high, pixels, labelSize() * 6, steps,
          (km, step) => `${km.toFixed(step < 0.1 ? 2 : step < 1 ? 1 : 0)} km`);
    }
    const steps = [1, 5, 10, 30, 60, 120, 300, 600, 900, 1800, 3600, 7200, 18000, 36000, 86400];
    return ticks(low, high, pixels, labelSize() * 6, steps, (seconds, step) => {
      const digits = number => String(number).padStart(2, '0');
      const hours = `${Math.floor(seconds / 3600)}:${digits(Math.floor(seconds / 60) % 60)}`;
      return step < 60 ? `${hours}:${digits(seconds % 60)}` : hours;
    });
  }

  function valueTicks(low, high, pixels) {
    return ticks(low, high, pixels, labelSize() * 1.6, [1, 2, 5, 10, 20, 50, 100, 200, 500, 1000],
        value => String(value));
  }

  // The right axis is the heart rate's; only where that is not drawn, it is the altitude's.
  const rightIsHeart = () => shown.heart && profile.ranges.heart !== null;

  function ranges() {
    const heart = padded(profile.ranges.heart, 20);
    const altitude = padded(profile.ranges.altitude, 20);
    const speed = padded(profile.ranges.speed, 1);
    speed[0] = Math.max(speed[0], 0.3);
    return {speed, altitude, right: rightIsHeart() ? heart : altitude};
  }

  // Behind the heart rate, the altitude takes the lower half.
  function altitudeScale({altitude, right}) {
    if (!rightIsHeart()) {
      return metres => metres;
    }
    const share = 0.5 * (right[1] - right[0]) / (altitude[1] - altitude[0]);
    return metres => right[0] + (metres - altitude[0]) * share;
  }

  // ---- drawing ----

  // The ends of the laps that have room for their numbers, left to right.
  function roomyLaps(context, area, g) {
    let free = area.x;  // right of the last line
    const laps = [];
    for (const [number, , to, isLast] of profile.laps) {
      const end = Math.round(g.toDomXCoord(to));
      if (end - free >= context.measureText(number).width + 6) {
        free = end;
        laps.push({number, end, isLast});
      }
    }
    return laps;
  }

  // Within the area of the curves.
  function drawInside(context, area, work) {
    context.save();
    context.beginPath();
    context.rect(area.x, area.y, area.w, area.h);
    context.clip();
    context.font = `${labelSize() - 1}px ${getComputedStyle(document.body).fontFamily}`;
    context.textAlign = 'right';
    work();
    context.restore();
  }

  function drawUnderlay(context, area, g) {
    const x = place => g.toDomXCoord(place);
    for (const [from, to] of profile.pauses) {
      context.fillStyle = colour('pause');
      context.fillRect(x(from), area.y, x(to) - x(from), area.h);
      // Over the distance a pause has no length.
      context.fillStyle = colour('quiet');
      const middle = Math.round((x(from) + x(to)) / 2);
      for (const left of [middle - 3, middle + 1]) {
        context.fillRect(left, area.y + area.h - 9, 2, 7);
      }
    }
    context.fillStyle = colour('lap');
    for (const {end, isLast} of roomyLaps(context, area, g)) {
      context.fillRect(end, area.y, isLast ? 0 : 1, area.h);
    }
  }

  function drawLabels(context, area, g) {
    for (const {number, end} of roomyLaps(context, area, g)) {
      drawText(context, number, end - 3, area.y + labelSize() - 1);
    }
    if (shown.altitude && profile.ranges.altitude && rightIsHeart()) {
      drawAltitudeLabels(context, area, g);
    }
  }

  // Over the curves, unlike the lines behind them.
  const labels = {
    activate: () => ({
      didDrawChart: ({drawingContext: context, dygraph: g}) =>
          drawInside(context, g.getArea(), () => drawLabels(context, g.getArea(), g))
    })
  };

  // Stands out from what it crosses.
  function drawText(context, text, x, y) {
    context.strokeStyle = colour('base');
    context.lineWidth = 3;
    context.strokeText(text, x, y);
    context.fillStyle = colour('quiet');
    context.fillText(text, x, y);
  }

  function drawAltitudeLabels(context, area, g) {
    const scale = altitudeScale(ranges());
    const [low, high] = profile.ranges.altitude;
    for (const metres of low === high ? [low] : [low, high]) {
      const y = g.toDomYCoord(scale(metres), 1);
      drawText(context, `${metres} m`, area.x + area.w - 4, y - 3);
    }
  }

  function file(scale) {
    const {x, speed, heart, altitude} = profile;
    return x.map((place, i) => [place, altitude[i] === null ? null : scale(altitude[i]), speed[i],
                                heart[i]]);
  }

  function options() {
    const all = ranges();
    const hasLeft = shown.pace && profile.ranges.speed !== null;
    const hasRight = rightIsHeart() || (shown.altitude && profile.ranges.altitude !== null);
    // An axis without a curve keeps its room: dygraphs leaves remains of the picture beside an area
    // that becomes smaller, and curves that stay should stay where they are.
    const axis = ticker => ({
      axisLabelFontSize: labelSize(), axisLabelWidth: labelSize() * 4, ticker,
      axisLineColor: colour('grid'), gridLineColor: colour('grid')
    });
    const noTicks = () => [];
    return {
      file: file(altitudeScale(all)),
      labels: ['x', 'altitude', 'pace', 'heart'],
      visibility: [shown.altitude && profile.ranges.altitude !== null, hasLeft, rightIsHeart()],
      dateWindow: profile.window,
      series: {
        altitude: {axis: 'y2', color: colour('altitude'), fillGraph: true, fillAlpha: 0.45,
                   strokeWidth: 1},
        pace: {axis: 'y', color: colour('pace'), strokeWidth: 1.5},
        heart: {axis: 'y2', color: colour('heart'), strokeWidth: 1.5}
      },
      axes: {
        x: {...axis(placeTicks), drawGrid: false, axisLabelWidth: labelSize() * 6},
        y: {...axis(hasLeft ? paceTicks : noTicks), valueRange: all.speed, drawGrid: true},
        y2: {...axis(hasRight ? valueTicks : noTicks), valueRange: all.right, drawGrid: !hasLeft,
             independentTicks: true}
      }
    };
  }

  function draw() {
    if (!profile) {
      chart.hidden = true;
      placeMark();
      placeCursor();
      return;
    }
    chart.hidden = false;
    if (graph) {
      graph.updateOptions(options());
    } else {
      const {file: data, ...rest} = options();
      graph = new Dygraph(chart, data, {
        ...rest,
        legend: 'never',
        highlightCircleSize: 0,
        interactionModel: {},  // ours is below
        underlayCallback: (context, area, g) =>
            drawInside(context, area, () => drawUnderlay(context, area, g)),
        plugins: [labels],
        xRangePad: 0
      });
    }
    placeMark();
    placeCursor();
  }

  // Over the picture, which need not be drawn again for it.
  function placeMark() {
    const box = element('mark');
    box.hidden = !(mark && graph && profile);
    if (!box.hidden) {
      const area = graph.getArea();
      const inside = place => Math.min(Math.max(graph.toDomXCoord(place), area.x), area.x + area.w);
      const [from, to] = mark.map(inside);
      Object.assign(box.style, {left: `${chart.offsetLeft + from}px`, width: `${to - from}px`,
        top: `${chart.offsetTop + area.y}px`, height: `${area.h}px`});
    }
  }

  function placeDot(dot, value, axis, isShown) {
    dot.hidden = value === null || !isShown;
    if (!dot.hidden) {
      dot.style.left = `${chart.offsetLeft + graph.toDomXCoord(cursor.x)}px`;
      dot.style.top = `${chart.offsetTop + graph.toDomYCoord(value, axis)}px`;
    }
  }

  function placeCursor() {
    const [from, to] = profile ? profile.window : [0, 0];
    const isShown = Boolean(cursor && graph && profile && cursor.x >= from && cursor.x <= to);
    for (const id of ['line', 'values', 'paceDot', 'heartDot']) {
      element(id).hidden = !isShown;
    }
    if (!isShown) {
      return;
    }
    const area = graph.getArea();
    const x = chart.offsetLeft + graph.toDomXCoord(cursor.x);
    Object.assign(element('line').style,
        {left: `${x}px`, top: `${chart.offsetTop + area.y}px`, height: `${area.h}px`});
    placeDot(element('paceDot'), cursor.speed, 0, shown.pace);
    placeDot(element('heartDot'), cursor.heart, 1, rightIsHeart());
    const values = element('values');
    values.textContent = cursor.text;
    const left = x + 8 + values.offsetWidth < document.body.clientWidth ? x + 8 :
        x - 8 - values.offsetWidth;
    values.style.left = `${Math.max(left, 2)}px`;
  }

  // ---- what the program calls; every argument is JSON ----

  window.drawProfile = text => {
    profile = JSON.parse(text);
    if (profile && profile.window[0] === profile.window[1]) {
      profile.window = [profile.window[0] - 0.5, profile.window[1] + 0.5];  // a single place
    }
    draw();
  };
  window.showCurves = text => {
    Object.assign(shown, JSON.parse(text));
    draw();
  };
  window.markStretch = text => {
    mark = JSON.parse(text);
    placeMark();
  };
  window.showCursor = text => {
    cursor = JSON.parse(text);
    placeCursor();
  };
  window.setLook = text => {
    for (const [name, value] of Object.entries(JSON.parse(text))) {
      document.documentElement.style.setProperty(`--${name}`, value);
    }
    draw();
  };

  // ---- what the user does ----

  const least = 4;  // px that make a drag
  let dragFrom = null;

  const inChart = event => event.clientX - chart.offsetLeft;
  const place = event => graph.toDataXCoord(inChart(event));

  function clamped(event) {
    const area = graph.getArea();
    return Math.min(Math.max(inChart(event), area.x), area.x + area.w);
  }

  chart.addEventListener('pointerdown', event => {
    if (graph && event.button === 0) {
      dragFrom = clamped(event);
      chart.setPointerCapture(event.pointerId);
    }
  });
  chart.addEventListener('pointermove', event => {
    if (!graph) {
      return;
    }
    const to = clamped(event);
    const stretch = element('stretch');
    stretch.hidden = dragFrom === null || Math.abs(to - dragFrom) < least;
    if (!stretch.hidden) {
      const area = graph.getArea();
      Object.assign(stretch.style, {
        left: `${chart.offsetLeft + Math.min(dragFrom, to)}px`, width: `${Math.abs(to - dragFrom)}px`,
        top: `${chart.offsetTop + area.y}px`, height: `${area.h}px`
      });
    }
    tell('point', place(event));
  });
  chart.addEventListener('pointerup', event => {
    const to = graph ? clamped(event) : 0;
    if (dragFrom !== null && Math.abs(to - dragFrom) >= least) {
      const ends = [dragFrom, to].map(x => graph.toDataXCoord(x)).sort((a, b) => a - b);
      tell('zoom', ...ends);
    }
    dragFrom = null;
    element('stretch').hidden = true;
  });
  chart.addEventListener('pointercancel', () => {
    dragFrom = null;
    element('stretch').hidden = true;
  });
  chart.addEventListener('pointerleave', () => tell('leave'));
  chart.addEventListener('dblclick', () => tell('all'));
  chart.addEventListener('keydown', event => {
    const step = {ArrowLeft: -1, ArrowRight: 1}[event.key];
    if (step) {
      tell('step', step);
      event.preventDefault();
    }
  });
  window.addEventListener('resize', () => requestAnimationFrame(() => {
    if (graph) {
      graph.resize();
      placeMark();
      placeCursor();
    }
  }));
  chart.hidden = true;
})();
