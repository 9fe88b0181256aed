// The view named by the address: "#/r/0" the batch of report 0, "#/r/0/s/4" its sample 4,
// "#/r/0/s/4/m/7" with metabolite 7 selected. The back button walks the views.

export function parseRoute(hash = location.hash) {
  const parts = hash.replace(/^#\/?/, "").split("/");
  const route = { report: 0, sample: null, metabolite: null };
  for (let i = 0; i + 1 < parts.length; i += 2) {
    const value = Number.parseInt(parts[i + 1], 10);
    if (!Number.isFinite(value)) continue;
    if (parts[i] === "r") route.report = value;
    if (parts[i] === "s") route.sample = value;
    if (parts[i] === "m") route.metabolite = value;
  }
  return route;
}

export function routeHash({ report = 0, sample = null, metabolite = null }) {
  let hash = `#/r/${report}`;
  if (sample !== null) hash += `/s/${sample}`;
  if (sample !== null && metabolite !== null) hash += `/m/${metabolite}`;
  return hash;
}

// Goes to the view; replace keeps the history entry (moving the selection with the arrow keys).
export function go(route, { replace = false } = {}) {
  const hash = routeHash(route);
  if (hash === location.hash) return;
  if (replace) history.replaceState(null, "", hash);
  else history.pushState(null, "", hash);
  window.dispatchEvent(new Event("quillon:route"));
}
