// The sample's fragment analysis: run on demand with a progress bar and a cancel button (in a
// snapshot its result is shown as it was written), then its fragment list and neutral losses, and
// the fragments as sticks by the number of spectra holding them.

import { change, get, isSnapshot } from "./api.js";
import { el, table } from "./dom.js";
import { plot } from "./plots.js";

let polling = null;

export async function renderFragments(box, route) {
  clearTimeout(polling);
  const path = `samples/${route.sample}/fragments`;
  const run = el("button", { id: "fragments-run", hidden: isSnapshot }, "Run fragment analysis");
  const cancel = el("button", { id: "fragments-cancel", hidden: true }, "Cancel");
  const bar = el("progress", { max: 1, value: 0, hidden: true });
  const result = el("div", { id: "fragments-result" });
  box.replaceChildren(el("div", { class: "row" }, run, bar, cancel), result);

  const show = (job) => {
    bar.hidden = cancel.hidden = job.state !== "running";
    bar.value = job.progress;
    run.disabled = job.state === "running";
    if (job.state === "done") drawResult(result, job.result);
    else if (job.state === "failed") result.replaceChildren(el("p", { class: "error" }, job.error));
    else if (job.state === "cancelled") result.replaceChildren(el("p", { class: "muted" }, "Cancelled."));
  };
  const poll = async () => {
    if (!box.isConnected) return;
    const job = await get(path, route.report);
    show(job);
    if (job.state === "running") polling = setTimeout(poll, 150);
  };
  run.addEventListener("click", async () => { show(await change("POST", path, route.report)); poll(); });
  cancel.addEventListener("click", async () => { await change("DELETE", path, route.report); poll(); });
  try {
    await poll();
  } catch (error) {
    result.replaceChildren(el("p", { class: "muted" }, error.message));
  }
}

function drawResult(box, result) {
  const fragments = result.rows.filter((r) => r.kind === "fragment");
  const losses = result.rows.filter((r) => r.kind === "neutral_loss");
  if (!result.analysed && !result.rows.length) {
    box.replaceChildren(el("p", { class: "muted" }, "No fragment analysis: the sample has no low- and high-energy function pair."));
    return;
  }
  const chart = el("div", { class: "plot", id: "fragments-plot" });
  box.replaceChildren(
    el("p", { id: "fragments-summary" }, `${fragments.length} fragments, ${losses.length} neutral losses`),
    chart,
    el("div", { class: "scroll small", id: "fragments-list" }, table([
      { key: "kind", label: "Kind" }, { key: "nominal_mass", label: "Nominal", decimals: 0 },
      { key: "mass", label: "Mass", decimals: 4 }, { key: "spectra", label: "Spectra", decimals: 0 },
      { key: "occurrences", label: "Peaks", decimals: 0 }, { key: "neutral_loss", label: "Loss" },
      { key: "formula", label: "Formula" },
    ], result.rows)));
  const sorted = [...fragments].sort((a, b) => a.nominal_mass - b.nominal_mass);
  if (sorted.length)
    requestAnimationFrame(() => plot(chart, { x: sorted.map((f) => f.nominal_mass), y: sorted.map((f) => f.spectra) }, {
      xLabel: "m/z (nominal fragment mass)", yLabel: "Spectra", valueLabel: "Spectra", stick: true, decimals: 0, height: 160,
    }));
}
