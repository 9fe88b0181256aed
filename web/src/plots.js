// Traces and spectra drawn with uPlot: it draws 100,000 points on a canvas in milliseconds, is
// small (about 50 kB) and zooms by dragging out of the box. Every plot zooms by drag or wheel,
// pans with the wheel held by Shift, shows the value under the cursor in its legend and returns
// to the whole range on double click.

import uPlot from "uplot";

const css = (name) => getComputedStyle(document.documentElement).getPropertyValue(name).trim();

// Wheel zooms the x axis around the cursor; Shift+wheel pans.
function wheelZoom() {
  return {
    hooks: {
      ready(u) {
        u.over.addEventListener(
          "wheel",
          (event) => {
            event.preventDefault();
            const { min, max } = u.scales.x;
            const span = max - min;
            if (event.shiftKey) {
              const shift = (span * Math.sign(event.deltaY)) / 10;
              u.setScale("x", { min: min + shift, max: max + shift });
              return;
            }
            const at = u.posToVal(event.offsetX, "x");
            const factor = event.deltaY < 0 ? 0.8 : 1.25;
            u.setScale("x", { min: at - (at - min) * factor, max: at + (max - at) * factor });
          },
          { passive: false },
        );
      },
    },
  };
}

// Labels at chosen points ({x, y, text}), drawn after the series; marked points get a dot.
function labelPlugin(labels, marks) {
  return {
    hooks: {
      draw(u) {
        const ctx = u.ctx;
        ctx.save();
        ctx.font = `${11 * devicePixelRatio}px system-ui, sans-serif`;
        ctx.fillStyle = css("--fg");
        ctx.textAlign = "center";
        for (const label of labels) {
          if (label.x < u.scales.x.min || label.x > u.scales.x.max) continue;
          const left = u.valToPos(label.x, "x", true);
          const top = u.valToPos(label.y, "y", true);
          ctx.fillText(label.text, left, Math.max(top - 6 * devicePixelRatio, 12 * devicePixelRatio));
        }
        ctx.fillStyle = css("--accent");
        for (const mark of marks) {
          const left = u.valToPos(mark.x, "x", true);
          const top = u.valToPos(mark.y, "y", true);
          ctx.beginPath();
          ctx.arc(left, top, 4 * devicePixelRatio, 0, 2 * Math.PI);
          ctx.fill();
        }
        ctx.restore();
      },
    },
  };
}

// Vertical sticks from zero to each point, for spectra and fragment counts.
function sticks(u, seriesIndex, first, last) {
  const path = new Path2D();
  const xs = u.data[0];
  const ys = u.data[seriesIndex];
  const zero = u.valToPos(0, "y", true);
  for (let i = first; i <= last; i++) {
    if (ys[i] === null) continue;
    const left = Math.round(u.valToPos(xs[i], "x", true));
    path.moveTo(left, zero);
    path.lineTo(left, u.valToPos(ys[i], "y", true));
  }
  return { stroke: path, fill: null };
}

// Large intensities as "2.5e6", so that tick labels fit beside the plot.
const compact = (u, splits) => splits.map((v) => (Math.abs(v) >= 1e5 ? v.toExponential(1) : String(+v.toFixed(6))));

function axis(label, extra = {}) {
  return { label, stroke: css("--muted"), grid: { stroke: css("--grid"), width: 1 }, ticks: { stroke: css("--grid") }, ...extra };
}

// Draws points ({x: [], y: []}) into container, replacing what was there. Options: xLabel,
// yLabel, valueLabel (the legend's name of y), stick (draw sticks), labels, marks, percent
// (y as percent of the highest point), decimals (of x in the legend).
export function plot(container, points, options) {
  container.replaceChildren();
  const top = points.y.reduce((a, b) => Math.max(a, b), 0) || 1;
  const scale = options.percent ? 100 / top : 1;
  const ys = options.percent ? points.y.map((v) => v * scale) : points.y;
  const rescale = (list) => list.map((l) => ({ ...l, y: l.y * scale }));
  const width = Math.max(container.clientWidth, 300);
  const u = new uPlot(
    {
      width,
      height: options.height ?? 220,
      cursor: { drag: { x: true, y: false }, points: { size: 6 } },
      scales: {
        x: { time: false },
        y: options.fromZero === false ? {} : { range: (u, min, max) => [0, max > 0 ? max * 1.12 : 1] },
      },
      axes: [axis(options.xLabel), axis(options.percent ? "Intensity (%)" : options.yLabel, { size: 64, values: compact })],
      legend: { live: true },
      series: [
        { label: options.xLabel, value: (u, v) => (v === null ? "–" : v.toFixed(options.decimals ?? 3)) },
        {
          label: options.percent ? "Intensity (%)" : options.valueLabel ?? "Intensity",
          stroke: css("--series"),
          width: 1,
          points: { show: options.showPoints ?? false },
          value: (u, v) => (v === null ? "–" : options.percent ? v.toFixed(1) : v.toExponential(3)),
          ...(options.stick ? { paths: sticks } : {}),
        },
      ],
      plugins: [wheelZoom(), labelPlugin(rescale(options.labels ?? []), rescale(options.marks ?? []))],
    },
    [points.x, ys],
    container,
  );
  return u;
}

// The strongest points, labelled with their x unless a stronger label stands within 6% of the
// shown range (so that an isotope cluster is not a pile of labels); noise under 5% of the
// strongest point is not labelled, as in the tool's figures.
export function strongestLabels(points, count = 6, decimals = 4) {
  const order = points.x.map((x, i) => i).sort((a, b) => points.y[b] - points.y[a]);
  const span = (points.x[points.x.length - 1] ?? 0) - (points.x[0] ?? 0) || 1;
  const floor = 0.05 * (points.y[order[0]] ?? 0);
  const labels = [];
  for (const i of order) {
    if (labels.length === count || points.y[i] < floor) break;
    if (labels.some((l) => Math.abs(l.x - points.x[i]) < 0.06 * span)) continue;
    labels.push({ x: points.x[i], y: points.y[i], text: points.x[i].toFixed(decimals) });
  }
  return labels;
}

const palette = ["#1d4ed8", "#c2410c", "#15803d", "#7c3aed", "#b45309", "#0e7490", "#be185d", "#4d7c0f", "#9f1239"];

// Several lines over one x axis (lines: [{label, y: []}]), with points, for curves over a few
// time points.
export function plotLines(container, x, lines, options) {
  container.replaceChildren();
  return new uPlot(
    {
      width: Math.max(container.clientWidth, 300),
      height: options.height ?? 220,
      cursor: { drag: { x: true, y: false } },
      scales: { x: { time: false } },
      axes: [axis(options.xLabel), axis(options.yLabel, { size: 64, values: compact })],
      series: [
        { label: options.xLabel },
        ...lines.map((line, i) => ({
          label: line.label, stroke: palette[i % palette.length], width: 1.5, points: { show: true },
          value: (u, v) => (v === null ? "–" : v.toFixed(2)),
        })),
      ],
      plugins: [wheelZoom()],
    },
    [x, ...lines.map((line) => line.y)],
    container,
  );
}
