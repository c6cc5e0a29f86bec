// The document that the page shows: the same that trovisk-map --json prints, but that the raw dump at the end of
// a report and the zeros at the end of a sector are left out; both are made again from the bytes.

import { big, hex } from "./format.js";
import { byId } from "./dom.js";

export const doc = {
  disk: {},
  extents: [],
  structures: [],
  checks: [],
  cut: [],
  sectors: 1n,
  sectorSize: 512n,
  beyond: [],
};

export function fromBase64(stored) {
  const characters = atob(stored);
  const bytes = new Uint8Array(characters.length);
  for (let i = 0; i < characters.length; i += 1) bytes[i] = characters.charCodeAt(i);
  return bytes;
}

// A long document is compressed.
async function text(element) {
  if (element.type === "application/json") return element.textContent;
  const stream = new Blob([fromBase64(element.textContent)]).stream().pipeThrough(new DecompressionStream("deflate"));
  return new Response(stream).text();
}

// Marks that turn the direction of a text round are named, not obeyed.
const DIRECTION_MARKS = /[\u061c\u200e\u200f\u202a-\u202e\u2066-\u2069]/g;

export function nameMarks(given) {
  return given.replace(DIRECTION_MARKS, (mark) => `[U+${hex(mark.codePointAt(0), 4)}]`);
}

// As a document may write them: most hold none, and looking at each value takes longer than reading all of them.
const MARKS_OF_DOCUMENT = /[\u061c\u200e\u200f\u202a-\u202e\u2066-\u2069]|\\u(061c|200[ef]|202[a-e]|206[6-9])/i;

export async function loadDocument() {
  const json = await text(byId("data"));
  const named = (key, value) => (typeof value === "string" ? nameMarks(value) : value);
  Object.assign(doc, JSON.parse(json, MARKS_OF_DOCUMENT.test(json) ? named : undefined));
  doc.sectorSize = big(doc.disk.sector_size) || 512n;
  for (const [index, extent] of doc.extents.entries()) {
    extent.index = index;
    extent.start = big(extent.first);
    extent.end = big(extent.last);
  }
  for (const [index, structure] of doc.structures.entries()) {
    structure.index = index;
    structure.start = big(structure.sector);
    structure.end = structure.start + big(structure.count) - 1n;
  }
  for (const check of doc.checks) {
    check.start = big(check.sector);
    check.wrong = check.verdict === "bad" || check.verdict === "missing";
  }
  doc.sectors = big(doc.disk.sectors) ?? doc.extents.reduce((most, e) => (e.end >= most ? e.end + 1n : most), 1n);
  if (doc.sectors === 0n) doc.sectors = 1n;
  doc.beyond = doc.extents.filter((extent) => extent.end >= doc.sectors || extent.start >= doc.sectors);
}

// The bytes of a structure's sector, whole.
export function bytesOf(structure) {
  if (!structure.bytes) return new Uint8Array(0);
  const stored = fromBase64(structure.bytes);
  const bytes = new Uint8Array(Math.max(stored.length, Number(doc.sectorSize)));
  bytes.set(stored);
  return bytes;
}

// The last item that starts at or before the sector. items: by start.
export function lastAtOrBefore(items, sector) {
  let low = 0;
  let high = items.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    if (items[middle].start <= sector) low = middle + 1;
    else high = middle;
  }
  return low - 1;
}

export function structureAt(sector) {
  const found = doc.structures[lastAtOrBefore(doc.structures, sector)];
  return found && found.end >= sector ? found : null;
}

// Checks of the sector that are bad or miss something.
export function wrongChecksAt(sector) {
  return doc.checks.filter(({ wrong, start }) => wrong && start === sector);
}

// "Missing: GPT backup header"
export function checkTitle(check) {
  return `${check.verdict === "missing" ? "Missing" : "Bad"}: ${check.check}`;
}

// The extents that hold the sector, outermost first.
export function extentsAt(sector) {
  return doc.extents
    .filter((extent) => extent.start <= sector && sector <= extent.end)
    .sort((a, b) => (a.end - a.start > b.end - b.start ? -1 : 1));
}

export function isPartition(extent) {
  return (extent.kind === "partition" || extent.kind === "logical") && !extent.flags.includes("container");
}

// What a person would call the partition around a sector; empty: there is none.
export function partitionNameAt(sector) {
  const partition = doc.extents.findLast((e) => isPartition(e) && e.start <= sector && sector <= e.end);
  if (!partition) return "";
  return partition.name || `${partition.type_name || "partition"}${partition.number ? ` (${partition.number})` : ""}`;
}
