// The section of one structure: its fields, its report, and the bytes of its sector beside them. What is pointed
// at on one side is marked on the other; a click keeps it marked.

import { digits, el, put } from "./dom.js";
import { bytesOf, partitionNameAt } from "./document.js";
import { copyButton, structureText } from "./copy.js";
import { fieldAt, fieldTable } from "./fields.js";
import { NARROW, hexTable, mark, numbersAt, unfoldAt } from "./hex.js";
import { offsetText } from "./format.js";
import { reportBlocks, reportBody } from "./report.js";

function connect(structure, bytes, fields, hexHolder, note) {
  const kept = { from: 0, length: 0 };
  const table = () => hexHolder.firstElementChild;
  const hint = "Point at a field to see its bytes, at a byte to see its field.";
  const fieldRows = () => fields?.querySelectorAll("tr[data-field]") ?? [];

  // Lines break behind the dots between the parts.
  function say(at, field) {
    const fact = (said) => el("span", { class: "fact" }, said);
    const parts = [fact(`${offsetText(at)} (${at})`), ...numbersAt(bytes, at).map(fact)];
    if (field) parts.splice(1, 0, `${field.label}: ${field.value}`);
    put(
      note,
      parts.map((part, i) => [i ? "\u00a0· " : "", part]),
    );
  }
  function markField(index) {
    for (const row of fieldRows()) row.classList.toggle("marked", Number(row.dataset.field) === index);
  }
  function show(from, length, index) {
    mark(table(), from, length);
    markField(index);
    const field = structure.fields[index];
    if (length > 0) say(from, field);
    else put(note, hint);
  }
  function showField(index) {
    const field = structure.fields[index];
    if (field.offset === null) return show(0, 0, index);
    show(Number(field.offset), Number(field.length), index);
    return bringIntoSight();
  }
  // Within the table of bytes: the page itself does not move below the pointer.
  function bringIntoSight() {
    const marked = table().querySelector(".marked");
    if (!marked) return;
    const box = hexHolder.getBoundingClientRect();
    const place = marked.getBoundingClientRect();
    if (place.top < box.top + 20 || place.bottom > box.bottom - 4)
      hexHolder.scrollTop += place.top - box.top - box.height / 3;
  }
  function showByte(at) {
    const index = fieldAt(structure.fields, at);
    const field = structure.fields[index];
    show(field ? Number(field.offset) : at, field ? Number(field.length) : 1, index);
    say(at, field);
  }
  function restore() {
    if (kept.length) show(kept.from, kept.length, fieldAt(structure.fields, kept.from));
    else show(0, 0, -1);
  }
  function pointed(event) {
    const row = event.target.closest("tr[data-field]");
    const cell = event.target.closest("[data-at]");
    if (row) showField(Number(row.dataset.field));
    else if (cell) showByte(Number(cell.dataset.at));
  }
  function keep(event) {
    const row = event.target.closest("tr[data-field]");
    const cell = event.target.closest("[data-at]");
    if (!row && !cell) return;
    const field =
      structure.fields[row ? Number(row.dataset.field) : fieldAt(structure.fields, Number(cell.dataset.at))];
    kept.from = Number(field?.offset ?? cell?.dataset.at ?? 0);
    kept.length = Number(field ? (field.length ?? 0) : 1);
    if (row && kept.length) unfoldAt(table(), kept.from);
    restore();
  }
  for (const side of [fields, hexHolder]) {
    if (!side) continue;
    side.addEventListener("pointerover", pointed);
    side.addEventListener("focusin", pointed);
    side.addEventListener("pointerleave", restore);
    side.addEventListener("click", keep);
    side.addEventListener("keydown", (event) => {
      if (event.key === "Enter" || event.key === " ") {
        if (event.target.closest("button")) return;
        event.preventDefault();
        keep(event);
      } else if (event.key === "Escape") {
        kept.length = 0;
        restore();
      }
    });
  }
  hexHolder.addEventListener("unfolded", restore);
  restore();
  return (at) => {
    unfoldAt(table(), at);
    const cell = table().querySelector(`td[data-at="${at}"]`);
    if (!cell) return;
    kept.from = at;
    kept.length = 1;
    const index = fieldAt(structure.fields, at);
    if (index >= 0)
      Object.assign(kept, {
        from: Number(structure.fields[index].offset),
        length: Number(structure.fields[index].length),
      });
    restore();
    bringIntoSight();
    cell.focus({ preventScroll: true });
    (fields?.querySelector("tr.marked") ?? hexHolder).scrollIntoView({ block: "nearest" });
  };
}

// Fills the section when it is opened. Returns what marks the byte at an offset.
export function fillSection(holder, structure) {
  const bytes = bytesOf(structure);
  const fields = structure.fields.length ? fieldTable(structure, bytes) : null;
  const hexHolder = el("div", { class: "hex-holder" });
  const note = el("p", { class: "byte-note", "aria-live": "polite" });
  const drawHex = () => hexHolder.replaceChildren(hexTable(bytes, `sector ${structure.sector}`));
  const report =
    reportBody(structure) === ""
      ? null
      : el(
          "div",
          { class: "report", tabindex: 0, role: "region", "aria-label": `Report of sector ${structure.sector}` },
          reportBlocks(structure),
        );
  holder.replaceChildren(
    el(
      "div",
      { class: "section-tools" },
      el("span", { class: "quiet" }, structure.structure.replaceAll("_", " ")),
      copyButton("Copy as text", () => structureText(structure)),
    ),
    structure.messages.length
      ? el(
          "ul",
          { class: "messages" },
          structure.messages.map((message) => el("li", {}, message)),
        )
      : "",
    el(
      "div",
      { class: "sides" },
      el("div", { class: "side" }, fields ?? "", report ? [el("h4", {}, "Report"), report] : ""),
      el(
        "div",
        { class: "side bytes" },
        bytes.length ? [hexHolder, note] : el("p", { class: "quiet" }, "The sector could not be read."),
      ),
    ),
  );
  if (!bytes.length) return () => {};
  drawHex();
  const goTo = connect(structure, bytes, fields, hexHolder, note);
  NARROW.addEventListener("change", drawHex);
  return goTo;
}

export function sectionHead(structure) {
  const where = partitionNameAt(structure.start);
  const count = Number(structure.count);
  return [
    el("span", { class: "sector" }, digits(structure.sector), count > 1 ? [" – ", digits(structure.end)] : ""),
    el("h3", {}, structure.title),
    structure.valid ? "" : el("span", { class: "badge bad" }, "invalid"),
    count > 1 ? el("span", { class: "badge" }, `${count} alike`) : "",
    where ? el("span", { class: "where" }, `in ${where}`) : "",
  ];
}
