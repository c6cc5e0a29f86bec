// What is said below the bars: what is pointed at, what the colours mean, what lies beyond the end of the disk.

import { categoryNames, isAlarming, swatch, titleOf } from "./looks.js";
import { digits, el, put, svg } from "./dom.js";
import { checkTitle, doc, isPartition, structureAt, wrongChecksAt } from "./document.js";
import { sectorsOf, sizeText } from "./format.js";
import { picture } from "./picture.js";

const MOST_PLACES = 6;

export function describe(item) {
  if (!item) {
    put(
      picture.readout,
      el("span", { class: "quiet" }, "Point at the map, or move through it with the Tab and arrow keys."),
    );
    return;
  }
  if (item.dataset.sector) {
    const sector = BigInt(item.dataset.sector);
    const structure = structureAt(sector);
    const [check] = wrongChecksAt(sector);
    put(
      picture.readout,
      el("strong", {}, structure?.title ?? (check ? checkTitle(check) : "Nothing to decode")),
      " ",
      el("span", { class: "fact" }, "sector ", digits(sector)),
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

function places(extents) {
  const left = extents.length - MOST_PLACES;
  return [
    extents
      .slice(0, MOST_PLACES)
      .map((extent, i) => [
        i ? "; " : "",
        `${titleOf(extent)}, `,
        el("a", { href: `#extent-${extent.index}` }, "sector ", digits(extent.first)),
      ]),
    left > 0 ? `; and ${left} more` : "",
  ];
}

export function beyondNote() {
  if (doc.beyond.length === 0) return null;
  const partitions = doc.beyond.filter(isPartition);
  const lost = partitions.length ? partitions : doc.beyond;
  const across = lost.filter((extent) => extent.start < doc.sectors);
  const behind = lost.filter((extent) => extent.start >= doc.sectors);
  const reach = doc.beyond.reduce((most, { start, end }) => [most, start, end].reduce((a, b) => (a > b ? a : b)), 0n);
  return el(
    "p",
    { class: "alarm-note" },
    el("strong", {}, "The disk ends at sector ", digits(doc.sectors - 1n)),
    ", but what its tables state reaches to sector ",
    digits(reach),
    ".",
    across.length ? [" Across its end: ", places(across), "."] : "",
    behind.length ? [" Beyond it: ", places(behind), "."] : "",
    " An image of a disk may have been cut short.",
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
