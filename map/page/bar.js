// Draws a stretch of the disk as a bar to scale.

import { svg } from "./dom.js";
import { doc } from "./document.js";
import { sizeText } from "./format.js";
import { isAlarming, titleOf } from "./looks.js";

const CHARACTER = 6.7;
const SECOND_ROW = 20;

// view: {from, length} in sectors.
export function scaleOf(view, width) {
  const perSector = width / Number(view.length);
  const end = view.from + view.length;
  return {
    width,
    x: (sector) => Number((sector < view.from ? view.from : sector > end ? end : sector) - view.from) * perSector,
    shows: (item) => item.end >= view.from && item.start < end,
    sectorAt: (x) => {
      const sector = view.from + BigInt(Math.floor(Math.min(Math.max(x / width, 0), 1) * Number(view.length)));
      return sector < end ? sector : end - 1n;
    },
  };
}

function fitted(text, width) {
  const room = Math.floor((width - 12) / CHARACTER);
  if (text.length > room && room < 5) return "";
  return text.length <= room ? text : `${text.slice(0, room - 1)}…`;
}

function label(text, x, y, width, name) {
  const shown = fitted(text, width);
  return shown ? svg("text", { x: x + 6, y, class: name }, shown) : null;
}

// What stands in an extent, for the eye alone. It starts where the extent starts to be visible.
function drawLabels(extent, x, top, width, height, size) {
  if (height < 14) return null;
  const heading = extent.kind === "gap" ? "unclaimed" : extent.name || titleOf(extent);
  const ink = `ink-${extent.category}`;
  const labels = [label(heading, x, top + (height >= 36 ? 20 : height / 2 + 4.5), width, `label ${ink}`)];
  if (height >= 36) {
    const inside = extent.content ?? extent.type_name;
    const below = extent.kind === "gap" || inside === heading ? size : `${inside} · ${size}`;
    labels.push(label(below, x, top + 35, width, `label small ${ink}`));
  }
  return svg("g", { "aria-hidden": "true" }, labels);
}

function drawExtent(extent, scale, top, height, interactive) {
  const x = scale.x(extent.start);
  const width = Math.max(scale.x(extent.end + 1n) - x, 1);
  const size = sizeText((extent.end - extent.start + 1n) * doc.sectorSize);
  const name = titleOf(extent);
  const parts = [
    svg("rect", {
      x,
      y: top,
      width,
      height,
      rx: width > 6 ? 2 : 0,
      fill: `url(#look-${extent.category})`,
      class: isAlarming(extent) ? "extent alarm" : width < 4 ? "extent thin" : `extent edge-${extent.category}`,
    }),
  ];
  if (isAlarming(extent))
    parts.push(svg("rect", { x, y: top, width, height: Math.min(6, height), fill: "url(#look-alarm)" }));
  const said = [name, `first ${extent.first}`, `last ${extent.last}`, size, ...extent.flags].join(", ");
  const attributes = interactive ? { tabindex: -1, role: "link", "aria-label": said } : {};
  return [
    svg("g", { class: "item", "data-extent": extent.index, ...attributes }, parts),
    drawLabels(extent, x, top, width, height, size),
  ];
}

// Extents that share a pixel with the one before are left out: nobody could tell them apart.
function drawRow(row, scale, top, height, interactive) {
  const drawn = [];
  const covered = { plain: -1, alarming: -1 };
  for (const extent of row) {
    if (!scale.shows(extent)) continue;
    const right = Math.floor(scale.x(extent.end + 1n));
    const kind = isAlarming(extent) ? "alarming" : "plain";
    if (right <= covered[kind]) continue;
    covered[kind] = right;
    drawn.push(drawExtent(extent, scale, top, height, interactive));
  }
  return drawn;
}

function drawMarks(marks, scale, top, interactive) {
  const drawn = [];
  const last = { plain: -9, wrong: -9 };
  const room = { plain: interactive ? 3 : 2, wrong: 5 };
  for (const mark of marks) {
    if (!scale.shows(mark)) continue;
    const left = scale.x(mark.start);
    const middle = left + Math.max(Math.min(scale.x(mark.end + 1n), scale.width) - left, 0) / 2;
    const kind = mark.wrong ? "wrong" : "plain";
    if (middle - last[kind] < room[kind]) continue;
    last[kind] = middle;
    const x = Math.min(Math.max(middle, 5), scale.width - 5);
    const shape = mark.wrong
      ? svg("path", {
          d: `M${x},${top + 1} l5.5,10 h-11 z M${x},${top + 4.5} v3 M${x},${top + 8.6} v1.2`,
          class: "mark-wrong",
        })
      : svg("path", { d: `M${x},${top + 1} l3,5 v5 h-6 v-5 z`, class: "mark" });
    const said = `${mark.title}, sector ${mark.start}${mark.wrong ? ", something is wrong" : ""}`;
    drawn.push(
      svg(
        "g",
        {
          class: "item",
          "data-sector": mark.start,
          ...(interactive ? { tabindex: -1, role: "link", "aria-label": said } : {}),
        },
        shape,
      ),
    );
  }
  return drawn;
}

// Around the rows of what overlaps, and striped where two of them meet, so that each can be seen. tops: of the rows.
function drawOverlaps(overlaps, scale, tops, bottom) {
  const drawn = [];
  for (const overlap of overlaps) {
    if (!scale.shows(overlap)) continue;
    const x = scale.x(overlap.start);
    const width = Math.max(scale.x(overlap.end + 1n) - x, 3);
    drawn.push(svg("rect", { x, y: tops[0], width, height: bottom - tops[0], class: "overlap" }));
    for (const top of tops.slice(1)) {
      drawn.push(svg("rect", { x, y: top - 6, width, height: 10, fill: "url(#look-alarm)", class: "overlap-stripe" }));
    }
  }
  return drawn;
}

// heights: of a row of each lane, 0 for a lane that is not shown. Returns the drawing and its height.
export function drawBar({ lanes, marks, view, width, heights, interactive }) {
  const scale = scaleOf(view, width);
  const parts = [];
  let top = 0;
  for (const name of ["containers", "partitions", "volumes", "areas"]) {
    const height = heights[name];
    if (!height || lanes[name].length === 0) continue;
    const tops = [];
    for (const row of lanes[name]) {
      if (!row.some(scale.shows)) continue;
      const rowHeight = name === "partitions" && tops.length > 0 ? SECOND_ROW : height;
      parts.push(svg("rect", { x: 0, y: top, width, height: rowHeight, class: "lane", rx: 2 }));
      parts.push(...drawRow(row, scale, top, rowHeight, interactive).flat());
      tops.push(top);
      top += rowHeight + 2;
    }
    if (name === "partitions") parts.push(...drawOverlaps(lanes.overlaps, scale, tops, top - 2));
  }
  parts.push(...drawMarks(marks, scale, top, interactive));
  return { parts, scale, height: top + 13 };
}

// Round sector numbers with room for their text between them.
export function drawAxis(view, width, top) {
  const scale = scaleOf(view, width);
  const most = Math.max(Math.floor(width / 110), 1);
  let step = 1n;
  for (let i = 0; view.length / step > BigInt(most); i += 1)
    step = (step * (i % 3 === 1 ? 5n : 2n)) / (i % 3 === 1 ? 2n : 1n);
  const parts = [];
  for (let sector = ((view.from + step - 1n) / step) * step; sector < view.from + view.length; sector += step) {
    const x = scale.x(sector);
    const said = String(sector).replace(/\B(?=(\d{3})+$)/g, "\u202f");
    if (x + said.length * CHARACTER + 6 > width && x > 20) break;
    parts.push(
      svg("path", { d: `M${x},${top} v5`, class: "tick" }),
      svg("text", { x: x + 3, y: top + 13, class: "axis" }, said),
    );
  }
  return parts;
}
