// The bytes of a sector in rows of hexadecimal digits and characters; equal rows are folded.

import { button, el, rove } from "./dom.js";
import { offsetText } from "./format.js";

const FEWEST_EQUAL = 3;

export const NARROW = window.matchMedia("screen and (max-width: 720px)");

export function bytesPerRow() {
  return NARROW.matches ? 8 : 16;
}

function printable(byte) {
  return byte >= 0x20 && byte < 0x7f ? String.fromCharCode(byte) : ".";
}

function sameRow(bytes, a, b, width) {
  for (let i = 0; i < width; i += 1) if (bytes[a + i] !== bytes[b + i]) return false;
  return true;
}

function byteRow(bytes, from, width, offsetWidth) {
  const cells = [];
  const characters = [];
  for (let at = from; at < Math.min(from + width, bytes.length); at += 1) {
    const kind = bytes[at] === 0 ? "zero" : null;
    cells.push(
      el("td", { class: kind, "data-at": at, tabindex: -1 }, bytes[at].toString(16).toUpperCase().padStart(2, "0")),
    );
    characters.push(el("span", { class: kind, "data-at": at }, printable(bytes[at])));
  }
  while (cells.length < width) cells.push(el("td"));
  return el(
    "tr",
    { role: "row" },
    el("th", { scope: "row" }, offsetText(from, offsetWidth)),
    cells,
    el("td", { class: "characters", "aria-hidden": "true" }, characters),
  );
}

function foldedRow(count, from, to, width, offsetWidth, unfold) {
  const said = `${count} equal rows, ${offsetText(from, offsetWidth)} to ${offsetText(to, offsetWidth)}`;
  const row = el(
    "tr",
    { class: "folded" },
    el(
      "td",
      { colspan: width + 2 },
      button(said, { "aria-expanded": "false" }, () => unfold(row)),
    ),
  );
  return row;
}

function hexRows(bytes, width, body, offsetWidth) {
  const rows = [];
  for (let from = 0; from < bytes.length;) {
    let equal = 1;
    while (from + (equal + 1) * width <= bytes.length && sameRow(bytes, from, from + equal * width, width)) equal += 1;
    rows.push(byteRow(bytes, from, width, offsetWidth));
    if (equal - 1 >= FEWEST_EQUAL) {
      const first = from + width;
      const count = equal - 1;
      rows.push(
        foldedRow(count, first, first + (count - 1) * width, width, offsetWidth, (row) => {
          const unfolded = Array.from({ length: count }, (_, i) =>
            byteRow(bytes, first + i * width, width, offsetWidth),
          );
          row.replaceWith(...unfolded);
          unfolded[0].querySelector("[data-at]").focus();
          body.dispatchEvent(new CustomEvent("unfolded", { bubbles: true }));
        }),
      );
      from += equal * width;
    } else {
      from += width;
    }
  }
  return rows;
}

export function hexTable(bytes, name) {
  const width = bytesPerRow();
  const offsetWidth = bytes.length > 0x1000 ? 4 : 3;
  const body = el("tbody");
  const columns = Array.from({ length: width }, (_, i) =>
    el("th", { scope: "col" }, `+${i.toString(16).toUpperCase()}`),
  );
  body.append(...hexRows(bytes, width, body, offsetWidth));
  const table = el(
    "table",
    { class: "hex", role: "grid", "aria-label": `Bytes of ${name}` },
    el(
      "thead",
      {},
      el(
        "tr",
        {},
        el("th", { scope: "col" }, el("span", { class: "unseen" }, "Offset")),
        columns,
        el("th", { scope: "col", "aria-hidden": "true" }),
      ),
    ),
    body,
  );
  table.querySelector("td[data-at]")?.setAttribute("tabindex", "0");
  rove(table, "td[data-at]", { ArrowLeft: -1, ArrowRight: 1, ArrowUp: -width, ArrowDown: width });
  return table;
}

// Unfolds the row that hides the offset, if one does.
export function unfoldAt(table, offset) {
  if (table.querySelector(`td[data-at="${offset}"]`)) return;
  for (const row of table.querySelectorAll("tr.folded")) {
    const before = Number(row.previousElementSibling.querySelector("[data-at]").dataset.at);
    const next = row.nextElementSibling?.querySelector("[data-at]")?.dataset.at ?? Infinity;
    if (offset > before && offset < Number(next)) row.querySelector("button").click();
  }
}

export function mark(table, from, length, name = "marked") {
  for (const cell of table.querySelectorAll(`.${name}`)) cell.classList.remove(name);
  for (const cell of table.querySelectorAll("[data-at]")) {
    const at = Number(cell.dataset.at);
    if (at >= from && at < from + length) cell.classList.add(name);
  }
}

export function hexText(bytes) {
  const lines = [];
  for (let from = 0; from < bytes.length; from += 16) {
    const row = [...bytes.subarray(from, from + 16)];
    const shown = row.map((byte) => byte.toString(16).toUpperCase().padStart(2, "0")).join(" ");
    lines.push(`${offsetText(from)}  ${shown.padEnd(47)}  ${row.map(printable).join("")}`);
  }
  return lines.join("\n");
}

// What the bytes from here on are as little-endian numbers.
export function numbersAt(bytes, at) {
  const said = [];
  for (const length of [1, 2, 4, 8]) {
    if (at + length > bytes.length) break;
    let value = 0n;
    for (let i = length - 1; i >= 0; i -= 1) value = value * 256n + BigInt(bytes[at + i]);
    said.push(`u${length * 8}\u00a0${value}`);
  }
  return said;
}
