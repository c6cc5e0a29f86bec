// The table of extents, a piece at a time where it is long.

import { button, byId, digits, el, sectorLink } from "./dom.js";
import { doc } from "./document.js";
import { sectorsOf, sizeText } from "./format.js";
import { ALARMING, isAlarming, swatch, titleOf } from "./looks.js";
import { lookAt } from "./magnifier.js";

const ROWS_AT_ONCE = 200;

let body;
let shown = 0;

export function flagBadges(flags) {
  return flags.map((flag) => el("span", { class: ALARMING.includes(flag) ? "badge bad" : "badge" }, flag));
}

function row(extent) {
  const sectors = sectorsOf(extent);
  const depth = Math.min(Number(extent.depth), 6);
  return el(
    "tr",
    {
      id: `extent-${extent.index}`,
      class: isAlarming(extent) ? "wrong" : extent.kind === "gap" ? "gap" : null,
      tabindex: -1,
    },
    el("th", { scope: "row", class: `what depth-${depth}` }, swatch(extent.category), titleOf(extent)),
    el("td", { class: "kind" }, extent.kind),
    el("td", { class: "number" }, sectorLink(extent.first)),
    el("td", { class: "number" }, digits(extent.last)),
    el("td", { class: "number size" }, sectors === null ? "–" : sizeText(sectors * doc.sectorSize)),
    el("td", { class: "source" }, extent.source),
    el("td", { class: "flags" }, flagBadges(extent.flags)),
  );
}

function showMore() {
  body.append(...doc.extents.slice(shown, shown + ROWS_AT_ONCE).map(row));
  shown = Math.min(shown + ROWS_AT_ONCE, doc.extents.length);
  const left = doc.extents.length - shown;
  byId("extents-more")?.remove();
  if (left > 0) {
    body
      .closest("table")
      .after(
        button(`Show ${Math.min(ROWS_AT_ONCE, left)} more of ${left}`, { id: "extents-more", class: "more" }, showMore),
      );
  }
}

// Brings the extent's row into the table, and the extent into the magnifier. Returns the row.
export function chooseExtent(extent) {
  while (shown <= extent.index) showMore();
  const found = byId(`extent-${extent.index}`);
  document.querySelector("tr.chosen")?.classList.remove("chosen");
  found.classList.add("chosen");
  if (extent.start < doc.sectors) lookAt(extent.start, extent.end);
  return found;
}

export function showExtent(extent) {
  const found = chooseExtent(extent);
  found.scrollIntoView({ block: "center" });
  found.focus({ preventScroll: true });
}

export function startExtents() {
  body = document.querySelector("#extents tbody");
  body.replaceChildren();
  document.querySelector("#extents .cut")?.remove();
  showMore();
}
