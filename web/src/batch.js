// The batch view: the samples table, the found counts of the expected metabolites across samples
// as a heat table, and the metabolic stability of each incubation series.

import { get } from "./api.js";
import { el, fmt, section, table } from "./dom.js";
import { plot, plotLines } from "./plots.js";
import { go } from "./route.js";

const sampleColumns = [
  { key: "sample", label: "Sample", decimals: 0 },
  { key: "id", label: "ID" },
  { key: "type", label: "Type" },
  { key: "time", label: "Time (min)", decimals: 1 },
  { key: "control", label: "Control", decimals: 0 },
  { key: "functions", label: "Functions", decimals: 0 },
  { label: "Metabolites", decimals: 0, value: (r) => r.expected + r.unexpected + r.msms },
  { key: "found", label: "Found", decimals: 0 },
];

export async function renderBatch(view, route) {
  const batch = await get("batch", route.report);
  const samples = table(sampleColumns, batch.samples, {
    onRow: (row, tr) => {
      tr.tabIndex = 0;
      tr.classList.add("link");
      const open = () => go({ report: route.report, sample: row.sample });
      tr.addEventListener("click", open);
      tr.addEventListener("keydown", (e) => e.key === "Enter" && open());
    },
  });
  samples.id = "samples-table";
  view.replaceChildren(
    el(
      "div",
      { class: "batch" },
      problemsNotice(batch.problem_count ?? 0, batch.problems ?? []),
      section(`Samples (${batch.samples.length})`, samples),
      section("Found expected metabolites by sample", heatTable(batch)),
      batch.stability.length ? stabilitySection(batch.stability) : null,
    ),
  );
}

function heatTable(batch) {
  const most = Math.max(1, ...batch.summary.flatMap((r) => r.counts));
  const head = el("tr", {}, el("th", {}, "Metabolite"), el("th", {}, "Shift"),
    batch.samples.map((s) => el("th", { class: "num", title: s.id }, s.sample)));
  const rows = batch.summary.map((r) =>
    el("tr", {}, el("td", {}, r.metabolite), el("td", {}, r.shift),
      r.counts.map((c) => el("td", { class: "num heat", style: `--share:${c / most}` }, c || ""))));
  return el("div", { class: "scroll" }, el("table", { class: "grid", id: "heat-table" }, el("thead", {}, head), el("tbody", {}, rows)));
}

function stabilitySection(series) {
  const panels = series.map((s) => {
    const fit = s.half_life_min === null ? "no half-life" :
      `t½ ${fmt(s.half_life_min, 1)} min (95%: ${fmt(s.half_life_low_min, 1)}–${s.half_life_high_min === null ? "∞" : fmt(s.half_life_high_min, 1)}), ` +
      `CLint ${fmt(s.clint_ul_min_mg, 1)} µL/min/mg, r² ${fmt(s.r_squared, 3)}`;
    const plotBox = el("div", { class: "plot" });
    const points = s.points.filter((p) => p.percent_remaining > 0);
    requestAnimationFrame(() => points.length && plot(plotBox, {
      x: points.map((p) => p.time_min), y: points.map((p) => Math.log(p.percent_remaining)),
    }, { xLabel: "Time (min)", yLabel: "ln(% remaining)", valueLabel: "ln(% remaining)", height: 180,
         fromZero: false, showPoints: true,
         decimals: 1 }));
    const curves = el("div", { class: "plot" });
    const initial = s.points[0]?.amount;
    if (initial > 0 && s.formation.length)
      requestAnimationFrame(() => plotLines(curves, s.points.map((p) => p.time_min),
        s.formation.map((f) => ({ label: `${f.name} ${f.shift}`, y: f.amount_at_time.map((a) => (a * 100) / initial) })),
        { xLabel: "Time (min)", yLabel: "% of parent at t0" }));
    const formation = table([
      { key: "name", label: "Metabolite" }, { key: "shift", label: "Shift" },
      { key: "time_of_maximum_min", label: "Max at (min)", decimals: 1 },
      { key: "maximum_percent_of_parent", label: "Max (% of parent)", decimals: 1 },
    ], s.formation);
    return el("div", { class: "series" }, el("h3", {}, `${s.parent} ${s.flags ? `(${s.flags})` : ""}`),
      el("p", {}, fit), el("div", { class: "pair" }, plotBox, curves), formation);
  });
  return section("Metabolic stability", panels);
}

// A damaged report is shown as far as it could be read, never silently: what reading passed over
// or took as a default, as `quillon check` lists it.
function problemsNotice(count, problems) {
  if (!count) return null;
  return el(
    "details",
    { class: "panel problems", id: "read-problems" },
    el("summary", { class: "error" },
      `This report is damaged: reading found ${count} problem${count === 1 ? "" : "s"}. ` +
      "Results below may be incomplete."),
    el("ul", {}, problems.map((p) => el("li", {}, p))),
  );
}
