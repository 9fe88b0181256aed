// The results browser page: the view named by the address is drawn on load, on the back and
// forward buttons and on every in-page navigation.

import { get, isSnapshot } from "./api.js";
import { renderBatch } from "./batch.js";
import { el } from "./dom.js";
import { go, parseRoute } from "./route.js";
import { installReview, startReview } from "./review.js";
import { renderSample } from "./sample.js";

const view = document.getElementById("view");
let reports = [];
let drawnReport = null;

function crumbs(route) {
  const nav = document.getElementById("crumbs");
  const name = reports[route.report]?.name ?? "";
  const parts = [el("a", { href: `#/r/${route.report}` }, name)];
  if (route.sample !== null) parts.push(" › ", el("a", { href: `#/r/${route.report}/s/${route.sample}` }, `Sample ${route.sample}`));
  if (isSnapshot) parts.push(el("span", { class: "badge" }, "snapshot, read-only"));
  nav.replaceChildren(...parts);
}

async function draw() {
  const route = parseRoute();
  const select = document.getElementById("report-select");
  select.value = String(route.report);
  crumbs(route);
  document.body.dataset.view = route.sample === null ? "batch" : "sample";
  try {
    await startReview(route.report);
    if (route.sample === null) {
      await renderBatch(view, route);
      drawnReport = null;
    } else {
      if (drawnReport !== route.report) view.replaceChildren();
      drawnReport = route.report;
      await renderSample(view, route);
    }
    document.body.dataset.ready = "1";
  } catch (error) {
    view.replaceChildren(el("p", { class: "error" }, error.message));
  }
}

async function start() {
  reports = (await get("reports")).reports;
  const select = document.getElementById("report-select");
  select.replaceChildren(...reports.map((r) => el("option", { value: r.report }, r.name)));
  select.hidden = reports.length < 2;
  select.addEventListener("change", () => go({ report: Number(select.value) }));
  installReview();
  window.addEventListener("hashchange", draw);
  window.addEventListener("quillon:route", draw);
  await draw();
}

start().catch((error) => {
  view.replaceChildren(el("p", { class: "error" }, error.message));
});
