// What is said below the bars: what is pointed at, what the colours mean, what lies beyond the end of the disk.

import { categoryNames, isAlarming, swatch, titleOf } from "./looks.js";
import { digits, el, put, svg } from "./dom.js";
import { doc, structureAt } from "./document.js";
import { sectorsOf, sizeText } from "./format.js";
import { picture } from "./picture.js";

export function describe(item) {
  if (!item) {
    put(
      picture.readout,
      el("span", { class: "quiet" }, "Point at the map, or move through it with the Tab and arrow keys."),
    );
    return;
  }
  if (item.dataset.sector) {
    const structure = structureAt(BigInt(item.dataset.sector));
    put(
      picture.readout,
      el("strong", {}, structure?.title ?? "Nothing to decode"),
      " ",
      el("span", { class: "fact" }, "sector ", digits(item.dataset.sector)),
      structure && !structure.valid ? el("span", { class: "badge bad" }, "invalid") : "",
    );
    return;
  }
  const extent = doc.extents[Number(item.dataset.extent)];
  const sectors = sectorsOf(extent);
  put(
    picture.readout,
    el("strong", {}, swatch(extent.category), titleOf(extent)),
    [
      ["first ", digits(extent.first)],
      ["last ", digits(extent.last)],
      sectors === null ? "no size" : sizeText(sectors * doc.sectorSize),
      `${extent.kind}, says ${extent.source}`,
    ].map((fact) => [" ", el("span", { class: "fact" }, fact)]),
    extent.flags.map((flag) => el("span", { class: "badge warn" }, flag)),
  );
}

export function beyondNote() {
  if (doc.beyond.length === 0) return null;
  return el(
    "p",
    { class: "alarm-note" },
    el("strong", {}, "Beyond the end of the disk: "),
    doc.beyond
      .slice(0, 6)
      .map((extent, i) => [
        i ? "; " : "",
        `${titleOf(extent)}, `,
        el("a", { href: `#extent-${extent.index}` }, "sector ", digits(extent.first)),
      ]),
    doc.beyond.length > 6 ? `; and ${doc.beyond.length - 6} more` : "",
  );
}

function sign(path, name) {
  return svg(
    "svg",
    { class: "swatch", width: 14, height: 14, "aria-hidden": "true" },
    svg("path", { d: path, class: name }),
  );
}

export function legend() {
  const wrong = picture.marks.some((mark) => mark.wrong);
  const alarm = doc.beyond.length || picture.lanes.overlaps.length || doc.extents.some(isAlarming);
  return el(
    "ul",
    { class: "legend", "aria-label": "Colours of the map" },
    categoryNames().map(([name, said]) => el("li", {}, swatch(name), said)),
    el("li", {}, sign("M7,1 l3,5 v7 h-6 v-7 z", "mark"), "A structure"),
    wrong ? el("li", {}, sign("M7,1 l6,11 h-12 z M7,5 v3.5 M7,9.6 v1.2", "mark-wrong"), "Something is wrong") : null,
    alarm ? el("li", {}, swatch("alarm"), "Overlap, damage, beyond the end") : null,
  );
}
