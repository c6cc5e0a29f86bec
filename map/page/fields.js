// The fields of a structure as a table. Fields that repeat are grouped, entry by entry; entries whose bytes are
// all zero are folded.

import { button, el, rove } from "./dom.js";
import { counted, offsetText } from "./format.js";

// A structure that repeats its first label holds entries. Returns lists of fields.
export function entriesOf(fields) {
  const first = fields[0]?.label;
  const starts = fields.flatMap((field, i) => (field.label === first ? [i] : []));
  if (starts.length < 2) return [fields];
  return starts.map((start, i) => fields.slice(start, starts[i + 1]));
}

export function isUnused(entry, bytes) {
  const placed = entry.filter((field) => field.offset !== null);
  return (
    placed.length > 0 &&
    placed.every((field) => bytes.subarray(field.offset, field.offset + field.length).every((b) => b === 0))
  );
}

export function placeText(field) {
  if (field.offset === null || field.length === 0) return "";
  const from = Number(field.offset);
  const last = from + Number(field.length) - 1;
  return from === last ? offsetText(from) : `${offsetText(from)}–${last.toString(16).toUpperCase().padStart(3, "0")}`;
}

function fieldRow(field, index) {
  return el(
    "tr",
    { "data-field": index, tabindex: -1, class: field.offset === null ? "unplaced" : null },
    el("th", { scope: "row" }, field.label),
    el("td", { class: "value" }, field.value === "" ? el("span", { class: "quiet" }, "empty") : field.value),
    el("td", { class: "place" }, placeText(field)),
  );
}

function heading(text) {
  return el("tr", { class: "entry" }, el("th", { colspan: 3, scope: "rowgroup" }, text));
}

function entryRows(structure, bytes) {
  const entries = entriesOf(structure.fields);
  const rows = [];
  let index = 0;
  for (let i = 0; i < entries.length; i += 1) {
    const made = entries[i].map((field) => fieldRow(field, index++));
    if (entries.length > 1 && isUnused(entries[i], bytes)) {
      const hidden = [heading(`Entry ${i + 1}, unused`), ...made];
      let count = 1;
      while (i + 1 < entries.length && isUnused(entries[i + 1], bytes)) {
        i += 1;
        count += 1;
        hidden.push(heading(`Entry ${i + 1}, unused`), ...entries[i].map((field) => fieldRow(field, index++)));
      }
      const row = el(
        "tr",
        { class: "folded" },
        el(
          "td",
          { colspan: 3 },
          button(counted(count, "unused entry", "unused entries"), { "aria-expanded": "false" }, () => {
            row.replaceWith(...hidden);
            hidden[1].focus();
          }),
        ),
      );
      rows.push(row);
    } else {
      if (entries.length > 1) rows.push(heading(`Entry ${i + 1} of ${entries.length}`));
      rows.push(...made);
    }
  }
  return rows;
}

export function fieldTable(structure, bytes) {
  const table = el(
    "table",
    { class: "fields", "aria-label": `Fields of ${structure.title}` },
    el(
      "thead",
      {},
      el(
        "tr",
        {},
        ["Field", "Value", "Bytes"].map((name) =>
          el("th", { scope: "col", class: name === "Bytes" ? "place" : null }, name),
        ),
      ),
    ),
    el("tbody", {}, entryRows(structure, bytes)),
  );
  table.querySelector("tr[data-field]")?.setAttribute("tabindex", "0");
  rove(table, "tr[data-field]", { ArrowUp: -1, ArrowDown: 1 });
  return table;
}

// The field of a byte: the smallest one, as fields may lie in one another. -1: none.
export function fieldAt(fields, at) {
  let found = -1;
  for (const [index, { offset, length }] of fields.entries()) {
    if (offset === null || at < Number(offset) || at >= Number(offset) + Number(length)) continue;
    if (found < 0 || Number(length) < Number(fields[found].length)) found = index;
  }
  return found;
}
