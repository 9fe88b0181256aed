// Answers of the server's API, or of the snapshot inlined in the page when it was written by
// `quillon html` (then there is no server: filters run here and nothing can change).

const snapshot = typeof window !== "undefined" ? window.QUILLON_SNAPSHOT : undefined;

export const isSnapshot = snapshot !== undefined;

export class ApiError extends Error {
  constructor(message, status = 0, body = {}) {
    super(message);
    this.status = status;
    this.body = body;
  }
}

// The snapshot keeps answers under "PATH?report=R"; a spectrum also under its function.
function snapshotAnswer(path, report, params) {
  const key = path === "reports" ? "reports" : `${path}?report=${report}` +
    (path.includes("/spectra/") ? `&function=${params.function}` : "");
  const answer = snapshot[key];
  if (answer === undefined) throw new ApiError(`not in this snapshot: ${path}`);
  return answer;
}

// GET /api/v1/PATH?report=R&params; resolves to the JSON answer, rejects with the server's error.
export async function get(path, report = 0, params = {}) {
  if (isSnapshot) return snapshotAnswer(path, report, params);
  const query = new URLSearchParams({ report: String(report), ...params });
  return send("GET", `/api/v1/${path}?${query}`);
}

// A request that changes something carries the header a foreign page cannot send; an edit also
// carries, as JSON, the model version it was made against.
export async function change(method, path, report = 0, body = undefined) {
  if (isSnapshot) throw new ApiError("a snapshot cannot change anything");
  const headers = { "X-Quillon-Request": "1" };
  if (body !== undefined) headers["Content-Type"] = "application/json";
  return send(method, `/api/v1/${path}?report=${report}`, headers,
    body === undefined ? undefined : JSON.stringify(body));
}

async function send(method, url, headers = {}, body = undefined) {
  const response = await fetch(url, { method, headers, body, credentials: "same-origin" });
  const answer = await response.json().catch(() => ({ error: response.statusText }));
  if (!response.ok) throw new ApiError(answer.error ?? `HTTP ${response.status}`, response.status, answer);
  return answer;
}

// The snapshot's metabolite table holds every row: the filters apply here, as the server applies
// them (time and mass defect to unexpected metabolites, the area to low-energy ones).
export function filterRows(rows, filter) {
  const num = (v) => (v === "" || v === undefined ? null : Number(v));
  const area = num(filter.area);
  const error = num(filter.mass_error);
  const [tLow, tHigh] = [num(filter.time_low), num(filter.time_high)];
  const [dLow, dHigh] = [num(filter.mass_defect_low), num(filter.mass_defect_high)];
  return rows.filter((row) => {
    const expected = row.kind !== "unexpected";
    if (filter.hide_high_energy && row.high_energy && row.kind === "unexpected") return false;
    if (error !== null && row.kind === "expected" && Math.abs(row.mDa ?? 0) > error) return false;
    if (area !== null && !row.high_energy && !((row.area ?? 0) > area)) return false;
    if (expected) return true;
    if (tLow !== null && tHigh !== null && (row.time_min < tLow || row.time_min > tHigh)) return false;
    if (dLow !== null && dHigh !== null && !row.high_energy) {
      // The defect of the predicted m/z, 0 <= d < 1: kept up to dHigh above the nominal mass or
      // down to dLow below the next one (a negative dLow means dHigh).
      const defect = row.predicted_mz - Math.floor(row.predicted_mz);
      const below = dLow < 0 ? dHigh : dLow;
      if (defect > dHigh + 1e-9 && defect < 1 - below - 1e-9) return false;
    }
    return true;
  });
}
