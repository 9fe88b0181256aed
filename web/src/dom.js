// Small helpers for building the page's elements and tables.

export function el(tag, attributes = {}, ...children) {
  const node = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (value === null || value === undefined || value === false) continue;
    if (name.startsWith("on")) node.addEventListener(name.slice(2), value);
    else if (name === "class") node.className = value;
    else node.setAttribute(name, value === true ? "" : value);
  }
  for (const child of children.flat()) {
    if (child === null || child === undefined) continue;
    node.append(child instanceof Node ? child : document.createTextNode(String(child)));
  }
  return node;
}

// A number as the tables show it: fixed decimals, empty for null.
export function fmt(value, decimals = 4) {
  if (value === null || value === undefined || value === "") return "";
  if (typeof value !== "number") return String(value);
  return Number.isInteger(value) && decimals === 0 ? String(value) : value.toFixed(decimals);
}

// A table of rows under columns [{key, label, decimals?, value?}]; onRow(row, tr) decorates rows.
export function table(columns, rows, { onRow, caption, className = "grid" } = {}) {
  const head = el("tr", {}, columns.map((c) => el("th", { scope: "col", title: c.title }, c.label)));
  const body = el(
    "tbody",
    {},
    rows.map((row) => {
      const tr = el(
        "tr",
        {},
        columns.map((c) => {
          const value = c.value ? c.value(row) : row[c.key];
          return el("td", { class: typeof value === "number" ? "num" : null }, fmt(value, c.decimals ?? 4));
        }),
      );
      if (onRow) onRow(row, tr);
      return tr;
    }),
  );
  return el("table", { class: className }, caption ? el("caption", {}, caption) : null, el("thead", {}, head), body);
}

export function section(title, ...children) {
  return el("section", { class: "panel" }, el("h2", {}, title), ...children);
}

export function clear(node) {
  while (node.firstChild) node.removeChild(node.firstChild);
  return node;
}
