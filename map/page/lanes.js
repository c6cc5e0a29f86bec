// Which extent is drawn in which lane of a bar: what holds others, partitions, volumes, areas. What overlaps
// another of its lane goes one row down, and the sectors that both claim are an overlap of their own.

import { checkTitle, doc, isPartition, wrongChecksAt } from "./document.js";

const MOST_ROWS = 4;
// What another table or another reading says of sectors: no two partitions, but two opinions.
const ALTERNATIVES = ["other-copy", "other-reading", "hybrid"];

function laneOf(extent) {
  if (extent.flags.includes("container")) return "containers";
  if (extent.kind === "volume") return "volumes";
  if (extent.kind === "area") return "areas";
  return "partitions";
}

function drawable(extent) {
  return extent.end >= extent.start && extent.start < doc.sectors && !extent.flags.includes("empty");
}

// Rows of extents by start, none over another within a row, but in the last one.
function packRows(extents) {
  const rows = [];
  const overlaps = [];
  for (const extent of extents) {
    let row = rows.findIndex((items) => items.end < extent.start);
    if (row < 0) row = Math.min(rows.length, MOST_ROWS - 1);
    rows[row] ??= Object.assign([], { end: -1n });
    for (const other of rows) {
      if (other === rows[row] || other.end < extent.start) continue;
      overlaps.push({ start: extent.start, end: other.end < extent.end ? other.end : extent.end });
    }
    rows[row].push(extent);
    if (extent.end > rows[row].end) rows[row].end = extent.end;
  }
  return { rows, overlaps };
}

function lane(name, keep) {
  const extents = doc.extents.filter(
    (extent) => laneOf(extent) === name && drawable(extent) && (keep?.(extent) ?? true),
  );
  return packRows(extents.sort((a, b) => (a.start < b.start ? -1 : a.start > b.start ? 1 : 0)));
}

// Overlaps are asked of partitions alone: a table in a partition is flagged by the survey.
export function makeLanes() {
  const partitions = lane("partitions");
  const real = packRows(
    partitions.rows
      .flat()
      .filter((extent) => isPartition(extent) && !extent.flags.some((flag) => ALTERNATIVES.includes(flag)))
      .sort((a, b) => (a.start < b.start ? -1 : 1)),
  );
  return {
    containers: lane("containers").rows.slice(0, 2),
    partitions: partitions.rows,
    overlaps: real.overlaps,
    volumes: lane("volumes").rows.slice(0, 1),
    areas: lane("areas").rows.slice(0, 2),
  };
}

// Where marks stand: structures, and the sectors of checks that are bad or missing.
export function makeMarks() {
  const wrong = new Set(doc.checks.filter((check) => check.wrong).map((check) => check.start));
  const marks = doc.structures.map((structure) => ({
    start: structure.start,
    end: structure.end,
    title: structure.title,
    wrong: !structure.valid || wrong.has(structure.start),
  }));
  const known = new Set(doc.structures.map((structure) => structure.start));
  for (const sector of wrong) {
    if (known.has(sector) || sector >= doc.sectors) continue;
    marks.push({ start: sector, end: sector, title: checkTitle(wrongChecksAt(sector)[0]), wrong: true });
  }
  for (const extent of doc.extents) {
    if (!drawable(extent) && extent.start < doc.sectors)
      marks.push({
        start: extent.start,
        end: extent.start,
        title: `${extent.source}: ${extent.flags.join(", ")}`,
        wrong: true,
      });
  }
  return marks.sort((a, b) => (a.start < b.start ? -1 : a.start > b.start ? 1 : Number(a.wrong) - Number(b.wrong)));
}
