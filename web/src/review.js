// Reviewing: the unsaved-change count, undo and redo, save and save as in the bar, the offer of a
// previous session's unsaved changes, and the warnings of a stale page or a report changed on
// disk. Every change is one request; its answer carries the review's state and the metabolite it
// changed, which the sample view draws ("quillon:changed" events).

import { ApiError, change, get, isSnapshot } from "./api.js";
import { el } from "./dom.js";

const review = { report: null, state: null, version: null };
// Changes go out one after another, each made against the version the one before produced.
let queue = Promise.resolve();

const clock = (iso) => new Date(iso).toLocaleTimeString([], { hour: "2-digit", minute: "2-digit" });

export const canEdit = () => !isSnapshot && review.state?.editable === true && !review.state?.journal;

// The version of the metabolite table on show: edits are made against it.
export function setVersion(report, version) {
  if (report === review.report) review.version = version;
}

export async function startReview(report) {
  if (isSnapshot || review.report === report) return;
  review.report = report;
  const answer = await get("review", report);
  review.version = answer.version;
  show(answer.review);
}

// Sends a change after those already sent; draws what it changed. Resolves to the answer, or null
// when it was refused (the reason shown).
export function send(method, path, body = {}) {
  const sent = queue.then(() => sendNow(method, path, body));
  queue = sent;
  return sent;
}

async function sendNow(method, path, body) {
  try {
    const answer = await change(method, path, review.report, { ...body, version: review.version });
    review.version = answer.version;
    show(answer.review);
    if (answer.changed) window.dispatchEvent(new CustomEvent("quillon:changed", { detail: answer.changed }));
    return answer;
  } catch (error) {
    refused(error);
    return null;
  }
}

function refused(error) {
  if (error instanceof ApiError && error.status === 409 && error.body.stale) {
    banner("Another tab changed this report since this page loaded it.",
      el("button", { onclick: () => location.reload() }, "Refresh"));
  } else if (error instanceof ApiError && error.body.changed_on_disk) {
    banner(error.message, el("button", { onclick: askName }, "Save as…"));
  } else {
    document.getElementById("status").textContent = error.message;
  }
}

function banner(text, ...actions) {
  const box = document.getElementById("review-banner");
  box.replaceChildren(el("span", {}, text), ...actions);
  box.hidden = false;
}

function show(state) {
  review.state = state;
  const bar = document.getElementById("review");
  bar.hidden = !state.editable;
  document.getElementById("unsaved").textContent =
    state.unsaved === 0 ? "No unsaved changes" : `${state.unsaved} unsaved change${state.unsaved === 1 ? "" : "s"}`;
  document.getElementById("unsaved").classList.toggle("pending", state.unsaved > 0);
  document.getElementById("undo").disabled = !state.can_undo;
  document.getElementById("redo").disabled = !state.can_redo;
  document.getElementById("save").disabled = state.unsaved === 0;
  document.getElementById("saved-at").textContent = state.saved_at ? `Saved ${state.file} at ${clock(state.saved_at)}` : "";
  const box = document.getElementById("review-banner");
  if (state.journal) {
    const { changes, time, report_changed: changed } = state.journal;
    banner(`${changes} unsaved change${changes === 1 ? "" : "s"} from ${time ? clock(time) : "a previous session"}` +
      (changed ? " (the report changed on disk since)" : "") + ":",
      el("button", { id: "journal-apply", onclick: () => settleJournal("POST", "journal/apply") }, "Apply"),
      el("button", { id: "journal-discard", onclick: () => settleJournal("DELETE", "journal") }, "Discard"));
  } else if (box.querySelector("#journal-apply")) {
    box.hidden = true;
  }
}

async function settleJournal(method, path) {
  if (await send(method, path)) location.reload();
}

export const undo = () => review.state?.can_undo && send("POST", "undo");
export const redo = () => review.state?.can_redo && send("POST", "redo");

async function save() {
  if (!review.state || review.state.unsaved === 0) return;
  if (await send("POST", "save")) document.getElementById("review-banner").hidden = true;
}

function askName() {
  const input = document.getElementById("save-as-name");
  input.hidden = false;
  input.value = review.state.file.replace(/(\.[^.]*)?$/, "-reviewed$1");
  input.focus();
  input.select();
}

async function saveAs(name, replace = false) {
  try {
    const answer = await change("POST", "save-as", review.report, { name, replace, version: review.version });
    review.version = answer.version;
    show(answer.review);
    document.getElementById("save-as-name").hidden = true;
    document.getElementById("review-banner").hidden = true;
  } catch (error) {
    if (error instanceof ApiError && error.body.exists &&
        window.confirm(`${name} exists. Replace it?`)) return saveAs(name, true);
    refused(error);
  }
}

// The bar's controls and the keys that work anywhere on the page: Ctrl-Z, Ctrl-Shift-Z (Ctrl-Y),
// Ctrl-S. In a text field Ctrl-Z stays the field's own.
export function installReview() {
  if (isSnapshot) return;
  document.getElementById("undo").addEventListener("click", undo);
  document.getElementById("redo").addEventListener("click", redo);
  document.getElementById("save").addEventListener("click", save);
  document.getElementById("save-as").addEventListener("click", askName);
  const name = document.getElementById("save-as-name");
  name.addEventListener("keydown", (event) => {
    if (event.key === "Enter") saveAs(name.value.trim());
    if (event.key === "Escape") name.hidden = true;
  });
  document.addEventListener("keydown", (event) => {
    if (!(event.ctrlKey || event.metaKey)) return;
    const key = event.key.toLowerCase();
    if (key === "s") {
      event.preventDefault();
      save();
    }
    if (event.target.matches?.("input, textarea")) return;
    if (key === "z" || key === "y") {
      event.preventDefault();
      if (key === "y" || event.shiftKey) redo();
      else undo();
    }
  });
  window.addEventListener("beforeunload", (event) => {
    if (review.state?.unsaved > 0) {
      event.preventDefault();
      event.returnValue = "";
    }
  });
}
