// The panels of the selected metabolite: its trace with every metabolite peak labelled and its own
// marked, the combined trace, its spectrum, its candidates and correlation rows; and the sample's
// fragment analysis and the parent's structure. Panels keep their size while data loads.

import { get } from "./api.js";
import { el, section, table } from "./dom.js";
import { renderFragments } from "./fragments.js";
import { plot, strongestLabels } from "./plots.js";
import { canEdit, send } from "./review.js";
import { renderStructure } from "./structure.js";

const width = () => Math.round(Math.min(2000, Math.max(400, window.innerWidth * 0.6)));
let shown = { sample: null };
let shownRoute = null;

export async function renderDetails(box, route, options) {
  const sampleKey = `${route.report}/${route.sample}`;
  if (shown.sample !== sampleKey) {
    shown = { sample: sampleKey, combined: "all" };
    box.replaceChildren(box.firstChild, panels());
    renderCombined(route, options);
    renderFragments(document.getElementById("fragments-panel"), route);
    renderStructure(document.getElementById("structure-panel"), route);
  } else if (options.redraw) {
    renderCombined(route, options);
  }
  shownRoute = route;
  if (route.metabolite === null) return;
  try {
    const detail = await get(`samples/${route.sample}/metabolites/${route.metabolite}`, route.report);
    await Promise.all([renderTrace(route, detail, options), renderSpectrum(route, detail, options), renderTables(route)]);
  } catch (error) {
    document.getElementById("status").textContent = error.message;
  }
}

function panels() {
  const combinedKind = el("select", { id: "combined-kind", "aria-label": "Combined trace" },
    ["expected", "all", "unexpected"].map((k) => el("option", { value: k, selected: k === "all" }, k)));
  return el("div", { class: "details" },
    section("Trace", el("p", { id: "trace-title", class: "muted" }, "Select a metabolite."), el("div", { id: "trace-plot", class: "plot" })),
    section("Spectrum", el("p", { id: "spectrum-title", class: "muted" }), el("div", { id: "spectrum-plot", class: "plot" })),
    section("Combined trace of the found metabolites", combinedKind, el("div", { id: "combined-plot", class: "plot" })),
    el("div", { class: "pair" },
      section("Elemental candidates", el("div", { id: "candidates", class: "scroll small", tabindex: "0", onkeydown: candidateKey }),
        canEdit() ? el("button", { id: "delete-candidate", disabled: true, title: "Delete the selected candidate (Delete)", onclick: deleteCandidate }, "Delete candidate") : null),
      section("MS/MS correlation", el("div", { id: "correlation", class: "scroll small" }))),
    el("div", { class: "pair" },
      section("Fragment analysis", el("div", { id: "fragments-panel" })),
      section("Parent structure", el("div", { id: "structure-panel", class: "structure" }))));
}

// Labels of the listed peaks with a metabolite, at the top of the trace near each peak's time; a
// label within 3% of the time range of a taller one is left out so that names do not pile up.
// The peak of keep is always labelled.
function peakLabels(points, peaks, keep = null) {
  const near = (t) => {
    let best = 0;
    for (let i = 0; i < points.x.length; i++) if (Math.abs(points.x[i] - t) < Math.abs(points.x[best] - t)) best = i;
    return points.y[best] ?? 0;
  };
  const all = peaks.filter((p) => p.metabolite)
    .map((p) => ({ x: p.time_min, y: near(p.time_min), text: p.metabolite, peak: p.peak_id }))
    .sort((a, b) => (b.peak === keep) - (a.peak === keep) || b.y - a.y);
  const span = (points.x[points.x.length - 1] ?? 0) - (points.x[0] ?? 0) || 1;
  const shown = [];
  for (const label of all) if (!shown.some((s) => Math.abs(s.x - label.x) < 0.03 * span)) shown.push(label);
  return shown;
}

async function renderTrace(route, detail, options) {
  const box = document.getElementById("trace-plot");
  const title = document.getElementById("trace-title");
  const m = detail.metabolite;
  if (detail.plot_trace === null) {
    title.textContent = `${m.name}: no chromatographic peak`;
    box.replaceChildren();
    return;
  }
  const answer = await get(`samples/${route.sample}/traces/${detail.plot_trace}`, route.report, { width: width() });
  title.textContent = `${m.name}, trace ${answer.trace.trace}: ${answer.trace.description}`;
  const labels = peakLabels(answer.points, answer.peaks, m.peak_id);
  plot(box, answer.points, {
    xLabel: "Retention time (min)", yLabel: "Intensity (counts)", percent: options.percent,
    labels, marks: labels.filter((l) => l.peak === m.peak_id),
  });
}

async function renderSpectrum(route, detail, options) {
  const box = document.getElementById("spectrum-plot");
  const title = document.getElementById("spectrum-title");
  if (detail.spectrum_function === null) {
    title.textContent = "No spectrum at this metabolite's peak.";
    box.replaceChildren();
    return;
  }
  const peak = detail.metabolite.peak_id;
  const answer = await get(`samples/${route.sample}/spectra/${peak}`, route.report,
    { function: detail.spectrum_function, width: width() });
  title.textContent = `Peak ${peak} at ${answer.spectrum.time_min} min, ${answer.points.total} masses`;
  const wavelengths = answer.x_axis === "wavelength_nm";
  plot(box, answer.points, {
    xLabel: wavelengths ? "Wavelength (nm)" : "m/z",
    yLabel: wavelengths ? "Absorbance" : answer.relative_intensity ? "Relative intensity (%)" : "Intensity (counts)",
    stick: !wavelengths, percent: options.percent,
    labels: strongestLabels(answer.points, 6, wavelengths ? 0 : 4), decimals: wavelengths ? 0 : 4,
  });
}

async function renderCombined(route, options) {
  const select = document.getElementById("combined-kind");
  select.onchange = () => renderCombined(route, options);
  const answer = await get(`samples/${route.sample}/combined/${select.value}`, route.report, { width: width() });
  const box = document.getElementById("combined-plot");
  if (!answer.points.y.some((v) => v > 0)) {
    box.replaceChildren(el("p", { class: "muted" }, "No found metabolites to combine."));
    return;
  }
  plot(box, answer.points, {
    xLabel: "Retention time (min)", yLabel: "Intensity (counts)", percent: options.percent,
    labels: peakLabels(answer.points, answer.peaks),
  });
}

const candidateColumns = [
  { key: "formula", label: "Formula" }, { key: "calc_mz", label: "Calc m/z", decimals: 4 },
  { key: "mDa", label: "mDa", decimals: 1 }, { key: "ppm", label: "ppm", decimals: 1 },
  { key: "dbe", label: "DBE", decimals: 1 }, { key: "i_fit", label: "i-FIT", decimals: 2 },
];

// The elemental candidates of the selected metabolite; a click selects one for Delete.
export function drawCandidates(route, candidates) {
  const button = document.getElementById("delete-candidate");
  if (button) button.disabled = true;
  document.getElementById("candidates").replaceChildren(candidates.length
    ? table(candidateColumns, candidates, {
      onRow: (row, tr) => {
        tr.dataset.candidate = row.candidate;
        tr.classList.add("link");
        tr.addEventListener("click", () => {
          tr.parentNode.querySelectorAll("tr.selected").forEach((other) => other.classList.remove("selected"));
          tr.classList.add("selected");
          if (button) button.disabled = false;
          document.getElementById("candidates").focus({ preventScroll: true });
        });
      },
    })
    : el("p", { class: "muted" }, "None."));
}

function deleteCandidate() {
  const selected = document.querySelector("#candidates tr.selected");
  const route = shownRoute;
  if (!selected || !canEdit() || route.metabolite === null) return;
  send("DELETE", `samples/${route.sample}/metabolites/${route.metabolite}/candidates/${selected.dataset.candidate}`);
}

function candidateKey(event) {
  if (event.key !== "Delete" && event.key !== "Backspace") return;
  event.preventDefault();
  deleteCandidate();
}

async function renderTables(route) {
  const base = `samples/${route.sample}/metabolites/${route.metabolite}`;
  const [candidates, correlation] = await Promise.all([
    get(`${base}/candidates`, route.report), get(`${base}/correlation`, route.report)]);
  drawCandidates(route, candidates.candidates);
  const list = (v) => (v ?? []).map((n) => n.toFixed(4)).join(", ");
  document.getElementById("correlation").replaceChildren(correlation.correlation.length
    ? table([
      { key: "entry", label: "#", decimals: 0 },
      { label: "Masses matched", value: (r) => list(r.masses_matched) },
      { label: "Neutral losses", value: (r) => list(r.neutral_losses_matched) },
      { label: "Common losses", value: (r) => list(r.common_neutral_losses) },
    ], correlation.correlation)
    : el("p", { class: "muted" }, "None."));
}
