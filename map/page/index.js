// What the search goes through, and what it finds: names, labels, values, sector numbers, hexadecimal bytes.

import { doc } from "./document.js";
import { titleOf } from "./looks.js";

// Characters of a line beside what was found in it.
const MOST_BEFORE = 32;
const MOST_AFTER = 60;

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

// "73 728" and "73,728" as "73728"; blanks of every width.
function joinGroups(query) {
  return query.replace(/(?<![\w.,:])\d{1,3}(?:[\s,]\d{3})+(?![\w,:])/g, (number) => number.replace(/[\s,]/g, ""));
}

// Hexadecimal bytes: "55 AA", "0x55aa", "45464920"; neither a short number alone nor one in groups of three is bytes.
export function bytesOfQuery(query) {
  if (joinGroups(query) !== query) return null;
  const plain = query.replace(/^0x/i, "").replace(/[\s:,]+(0x)?/gi, "");
  if (!/^([0-9a-f]{2})+$/i.test(plain)) return null;
  if (/^\d{1,7}$/.test(query) || (plain.length < 4 && !/^0x/i.test(query))) return null;
  return String.fromCharCode(...plain.match(/../g).map((pair) => parseInt(pair, 16)));
}

// Where the words stand in a line, in their order: place and length, or null.
function matcherOf(query) {
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

function matcher(query) {
  const typed = matcherOf(query);
  const joined = joinGroups(query);
  if (joined === query) return typed;
  const number = matcherOf(joined);
  return (text) => number(text) ?? typed(text);
}

// The line around the place, with the place itself; what is left out leaves whole words.
function snippet(text, at, length) {
  const stop = text.indexOf("\n", at + length);
  let before = text.slice(text.lastIndexOf("\n", at - 1) + 1, at);
  let after = text.slice(at + length, stop < 0 ? text.length : stop);
  if (before.length > MOST_BEFORE) before = `…${before.slice(-MOST_BEFORE).replace(/^\S+\s(?=.*\S)|^\s+/, "")}`;
  if (after.length > MOST_AFTER) after = `${after.slice(0, MOST_AFTER).replace(/\s\S*$/, "")}…`;
  return [before, text.slice(at, at + length), after];
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
  const match = matcher(wanted);
  searchNumber(joinGroups(wanted), add);
  searchExtents(match, add);
  searchBytes(query.trim(), add);
  for (const { structure, lowered, text } of entries) {
    const found = match(lowered);
    if (!found) continue;
    add({ structure, offset: placeFound(structure, match), title: structure.title, snippet: snippet(text, ...found) });
  }
  searchChecks(match, add);
  return { results, count };
}
