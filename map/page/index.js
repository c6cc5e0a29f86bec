// What the search goes through, and what it finds: names, labels, values, sector numbers, hexadecimal bytes.

import { doc } from "./document.js";
import { titleOf } from "./looks.js";

let entries = null;

function lower(text) {
  return text.toLowerCase();
}

function structureEntry(structure) {
  const text = [
    structure.title,
    structure.structure.replaceAll("_", " "),
    String(structure.sector),
    ...structure.messages,
    ...structure.fields.map((field) => `${field.label}: ${field.value}`),
    structure.text,
  ].join("\n");
  return { structure, lowered: lower(text), text };
}

function build() {
  entries = doc.structures.map(structureEntry);
}

// Hexadecimal bytes: "55 AA", "0x55aa", "45464920"; a short number alone is no bytes.
export function bytesOfQuery(query) {
  const plain = query.replace(/^0x/i, "").replace(/[\s:,]+(0x)?/gi, "");
  if (!/^([0-9a-f]{2})+$/i.test(plain)) return null;
  if (/^\d{1,7}$/.test(query) || (plain.length < 4 && !/^0x/i.test(query))) return null;
  return String.fromCharCode(...plain.match(/../g).map((pair) => parseInt(pair, 16)));
}

// Where the words stand in a line, in their order: place and length, or null.
function matcher(query) {
  const words = query.split(/\s+/);
  if (words.length === 1) {
    return (text) => {
      const at = text.indexOf(query);
      return at < 0 ? null : [at, query.length];
    };
  }
  const pattern = new RegExp(words.map((word) => word.replace(/[\\^$.*+?()[\]{}|/]/g, "\\$&")).join("[^\\n]{0,60}?"));
  return (text) => {
    const found = pattern.exec(text);
    return found && [found.index, found[0].length];
  };
}

// The line around the place, with the place itself; of a long one some whole words.
function snippet(text, at, length) {
  const lineStart = text.lastIndexOf("\n", at) + 1;
  const lineEnd = text.indexOf("\n", at) < 0 ? text.length : text.indexOf("\n", at);
  let before = text.slice(lineStart, at);
  let after = text.slice(at + length, lineEnd);
  if (before.length > 40) before = `… ${before.slice(-40).replace(/^\S*\s+/, "")}`;
  if (after.length > 60) after = `${after.slice(0, 60).replace(/\s+\S*$/, "")} …`;
  return [before, text.slice(at, at + length), after];
}

// A number in groups, as this page and others show them: "73 728", "73,728"; or null.
function numberOfGroups(query) {
  return /^\d{1,3}([ ,.'’\u00a0\u2009\u202f]\d{3})+$/.test(query) ? query.replace(/\D/g, "") : null;
}

function placeFound(structure, match) {
  return structure.fields.find((f) => f.offset !== null && match(lower(`${f.label}: ${f.value}`)))?.offset ?? null;
}

function searchExtents(match, add) {
  for (const extent of doc.extents) {
    const { type, id, source, flags, kind } = extent;
    const text = [titleOf(extent), type, id, source, flags.join(" "), kind].join("\n");
    const found = match(lower(text));
    if (found) add({ extent, title: titleOf(extent), snippet: snippet(text, ...found) });
  }
}

function searchChecks(match, add) {
  for (const check of doc.checks) {
    const text = `${check.verdict}: ${check.check}, found ${check.found}, expected ${check.expected}`;
    const found = match(lower(text));
    if (found) add({ sector: check.sector, title: check.check, kind: "check", snippet: snippet(text, ...found) });
  }
}

function searchNumber(query, add) {
  if (!/^\d{1,20}$/.test(query)) return;
  const sector = BigInt(query);
  if (sector < doc.sectors) add({ sector, title: `Go to sector ${sector}`, snippet: ["", "", ""] });
}

function searchBytes(query, add) {
  const bytes = bytesOfQuery(query);
  if (bytes === null) return;
  for (const structure of doc.structures) {
    const at = atob(structure.bytes).indexOf(bytes);
    if (at >= 0)
      add({
        structure,
        offset: at,
        title: structure.title,
        snippet: ["bytes ", query, ` at 0x${at.toString(16).toUpperCase()}`],
      });
  }
}

// Up to most results, and how many there are in all.
export function search(query, most) {
  const wanted = lower(query.trim());
  const results = [];
  let count = 0;
  if (wanted === "") return { results, count };
  const add = (result) => {
    count += 1;
    if (results.length < most) results.push(result);
  };
  if (!entries) build();
  const number = numberOfGroups(wanted);
  const asTyped = matcher(wanted);
  const asNumber = number === null ? () => null : matcher(number);
  const match = (text) => asTyped(text) ?? asNumber(text);
  searchNumber(number ?? wanted, add);
  searchExtents(match, add);
  if (number === null) searchBytes(query.trim(), add);
  for (const { structure, lowered, text } of entries) {
    const found = match(lowered);
    if (!found) continue;
    add({ structure, offset: placeFound(structure, match), title: structure.title, snippet: snippet(text, ...found) });
  }
  searchChecks(match, add);
  return { results, count };
}
