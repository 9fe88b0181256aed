// The sample view: the filtered, sortable metabolite table on the left (up and down keys move the
// selection), and for the selected metabolite its trace, the combined trace, its spectrum, its
// elemental candidates and correlation rows, the sample's fragment analysis and the parent's
// structure on the right. While serving, the selected metabolite is reviewed from the keyboard:
// c confirms, u unconfirms, l edits its label (Enter saves, Escape cancels); changed rows are
// marked until saved.

import { filterRows, get, isSnapshot } from "./api.js";
import { el, section, table } from "./dom.js";
import { drawCandidates, renderDetails } from "./details.js";
import { canEdit, send, setVersion } from "./review.js";
import { go, parseRoute } from "./route.js";

const columns = [
  { key: "index", label: "#", decimals: 0 },
  { key: "name", label: "Name" },
  { key: "confirmed", label: "✓", title: "Confirmed", value: (r) => (r.confirmed ? "✓" : "") },
  { key: "label", label: "Label" },
  { key: "kind", label: "Kind" },
  { key: "formula", label: "Formula" },
  { key: "mz", label: "m/z", decimals: 4 },
  { key: "mDa", label: "mDa", decimals: 1 },
  { key: "ppm", label: "ppm", decimals: 1 },
  { key: "time_min", label: "RT (min)", decimals: 2 },
  { key: "area", label: "Area", decimals: 0 },
  { key: "area_percent", label: "Area %", decimals: 1 },
  { key: "trace_name", label: "Trace" },
  { label: "Found", value: (r) => (r.found ? "yes" : "") },
];

// The browser's filters, as the server's metabolites route takes them. The snapshot filters its
// rows itself and offers only those it can apply (serverOnly marks the others).
const filterFields = [
  ["mass_defect_low", "Mass defect below (Da)"], ["mass_defect_high", "above (Da)"],
  ["area", "Area above"], ["relative_area", "Area % above", { serverOnly: true }],
  ["mass_error", "Mass error up to (mDa)"], ["time_low", "RT from (min)"], ["time_high", "to"],
].filter(([, , options]) => !(isSnapshot && options?.serverOnly));
const filterFlags = [
  ["area_unexpected_only", "Area on unexpected only", { serverOnly: true }],
  ["hide_isotopes", "Hide isotopes", { serverOnly: true }],
  ["with_elemental", "With elemental only", { serverOnly: true }],
  ["hide_high_energy", "Hide high energy"],
].filter(([, , options]) => !(isSnapshot && options?.serverOnly));

// What the sample view keeps between redraws of the same sample.
const state = { key: null, filter: {}, sort: { key: "index", up: true }, rows: [], percent: false };

export async function renderSample(view, route) {
  const key = `${route.report}/${route.sample}`;
  if (state.key !== key) {
    state.key = key;
    view.replaceChildren(layout(route));
    await loadRows(route);
  }
  await select(route);
}

function reviewTools() {
  if (!canEdit()) return null;
  const edit = (body) => () => reviewSelected(body);
  return el("div", { class: "review-tools" },
    el("button", { id: "confirm", title: "Confirm the selected metabolite (c)", onclick: edit({ confirmed: true }) }, "Confirm"),
    el("button", { id: "unconfirm", title: "Clear its confirmation (u)", onclick: edit({ confirmed: false }) }, "Unconfirm"),
    el("button", { id: "label", title: "Edit its label (l)", onclick: editLabel }, "Label…"),
    el("input", { id: "label-input", "aria-label": "Label", hidden: true, maxlength: 200, onkeydown: labelKey }));
}

function layout(route) {
  const form = el("form", { class: "filters", id: "filters", onsubmit: (e) => { e.preventDefault(); applyFilter(route, e.target); } },
    filterFields.map(([name, label]) =>
      el("label", {}, label, el("input", { name, type: "number", step: "any", inputmode: "decimal", size: 6 }))),
    filterFlags.map(([name, label]) => el("label", {}, el("input", { name, type: "checkbox" }), label)),
    el("button", { type: "submit" }, "Apply"),
    el("button", { type: "reset", onclick: () => setTimeout(() => applyFilter(route, form)) }, "Clear"));
  const percent = el("label", { class: "percent" }, el("input", {
    type: "checkbox", onchange: (e) => { state.percent = e.target.checked; select(route, true); } }), "Intensity in %");
  return el("div", { class: "sample" },
    el("div", { class: "left" }, section("Metabolites", form, reviewTools(), el("p", { id: "row-count", class: "muted" }),
      el("div", { id: "metabolites", class: "scroll table-box", tabindex: "0", onkeydown: move }))),
    el("div", { class: "right", id: "details" }, percent, el("p", { class: "muted" }, "Select a metabolite.")));
}

async function applyFilter(route, form) {
  const filter = {};
  for (const [name] of filterFields) if (form.elements[name].value !== "") filter[name] = form.elements[name].value;
  for (const [name] of filterFlags) if (form.elements[name].checked) filter[name] = "1";
  state.filter = filter;
  await loadRows(route);
}

async function loadRows(route) {
  const status = document.getElementById("status");
  try {
    if (isSnapshot) {
      const all = await get(`samples/${route.sample}/metabolites`, route.report);
      state.rows = filterRows(all.metabolites, state.filter);
      state.total = all.total;
    } else {
      const answer = await get(`samples/${route.sample}/metabolites`, route.report, state.filter);
      state.rows = answer.metabolites;
      state.total = answer.total;
      setVersion(route.report, answer.version);
    }
    status.textContent = "";
  } catch (error) {
    status.textContent = error.message;
    state.rows = [];
  }
  drawTable(route);
}

function sorted() {
  const { key, up } = state.sort;
  const value = (r) => (key === "found" ? Number(r.found) : r[key]);
  return [...state.rows].sort((a, b) => {
    const [x, y] = [value(a), value(b)];
    if (x === y) return a.index - b.index;
    if (x === null || x === undefined) return 1;
    if (y === null || y === undefined) return -1;
    return (x < y ? -1 : 1) * (up ? 1 : -1);
  });
}

function decorate(route) {
  return (row, tr) => {
    tr.dataset.index = row.index;
    tr.classList.add("link");
    if (row.index === route.metabolite) tr.classList.add("selected");
    if (!row.found) tr.classList.add("dim");
    if (row.edited) tr.classList.add("edited");
    tr.addEventListener("click", () => go({ ...parseRoute(), metabolite: row.index }));
  };
}

function drawTable(route) {
  const rows = sorted();
  const grid = table(columns, rows, { onRow: decorate(route) });
  grid.id = "metabolite-table";
  grid.querySelectorAll("th").forEach((th, i) => {
    const key = columns[i].key ?? "found";
    th.classList.add("sortable");
    if (state.sort.key === key) th.dataset.sort = state.sort.up ? "up" : "down";
    th.addEventListener("click", () => {
      state.sort = { key, up: state.sort.key === key ? !state.sort.up : true };
      drawTable(route);
    });
  });
  document.getElementById("metabolites").replaceChildren(grid);
  document.getElementById("row-count").textContent = `${rows.length} of ${state.total ?? rows.length} metabolites shown`;
}

// A change drawn in its row (and its candidates when it is the selected metabolite).
window.addEventListener("quillon:changed", ({ detail }) => {
  const route = parseRoute();
  if (state.key !== `${route.report}/${detail.sample}`) return;
  const at = state.rows.findIndex((r) => r.index === detail.metabolite);
  if (at < 0) return;
  state.rows[at] = { ...state.rows[at], ...detail.row };
  const old = document.querySelector(`#metabolite-table tr[data-index="${detail.metabolite}"]`);
  if (old) old.replaceWith(table(columns, [state.rows[at]], { onRow: decorate(route) }).tBodies[0].rows[0]);
  if (route.metabolite === detail.metabolite) drawCandidates(route, detail.candidates);
});

function reviewSelected(body) {
  const route = parseRoute();
  if (!canEdit() || route.metabolite === null) return;
  send("PATCH", `samples/${route.sample}/metabolites/${route.metabolite}`, body);
}

function editLabel() {
  const route = parseRoute();
  const row = state.rows.find((r) => r.index === route.metabolite);
  const input = document.getElementById("label-input");
  if (!row || !input) return;
  input.hidden = false;
  input.value = row.label ?? "";
  input.focus();
  input.select();
}

function labelKey(event) {
  const input = event.target;
  if (event.key !== "Enter" && event.key !== "Escape") return;
  event.preventDefault();
  const row = state.rows.find((r) => r.index === parseRoute().metabolite);
  if (event.key === "Enter" && row && input.value !== (row.label ?? "")) reviewSelected({ label: input.value });
  input.hidden = true;
  document.getElementById("metabolites").focus();
}

const reviewKeys = { c: () => reviewSelected({ confirmed: true }), u: () => reviewSelected({ confirmed: false }), l: editLabel };

function move(event) {
  const review = reviewKeys[event.key];
  if (review && !event.ctrlKey && !event.metaKey && !event.altKey) {
    event.preventDefault();
    review();
    return;
  }
  if (event.key !== "ArrowDown" && event.key !== "ArrowUp") return;
  const route = parseRoute();
  event.preventDefault();
  const rows = sorted();
  if (!rows.length) return;
  const at = rows.findIndex((r) => r.index === route.metabolite);
  const next = at < 0 ? 0 : Math.min(rows.length - 1, Math.max(0, at + (event.key === "ArrowDown" ? 1 : -1)));
  go({ ...route, metabolite: rows[next].index }, { replace: true });
}

async function select(route, redraw = false) {
  document.querySelectorAll("#metabolite-table tr.selected").forEach((tr) => tr.classList.remove("selected"));
  const tr = document.querySelector(`#metabolite-table tr[data-index="${route.metabolite}"]`);
  if (tr) {
    tr.classList.add("selected");
    const box = document.getElementById("metabolites");
    const head = tr.closest("table").tHead.offsetHeight;
    if (tr.offsetTop - head < box.scrollTop) box.scrollTop = tr.offsetTop - head;
    else if (tr.offsetTop + tr.offsetHeight > box.scrollTop + box.clientHeight)
      box.scrollTop = tr.offsetTop + tr.offsetHeight - box.clientHeight;
  }
  await renderDetails(document.getElementById("details"), route, { percent: state.percent, redraw });
}
