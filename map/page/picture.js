// What the parts of the picture share: their elements, and what is drawn in them.

import { doc } from "./document.js";
import { svg } from "./dom.js";

const BEYOND = 18;

// overview, funnel, magnifier, range, readout: elements; window: the drawing of the window in the overview;
// overviewHeight: in pixels; lanes, marks: what is drawn; place: the sector that is asked for, chosen: the extent
// around it, or null; onPaper: whether it is drawn for a printer.
export const picture = { place: null, chosen: null, onPaper: false };

export function whole() {
  return { from: 0n, length: doc.sectors };
}

// A bar on paper is as wide as its column, whatever the window.
const PAPER = 660;

export function fullWidth(element) {
  return picture.onPaper ? PAPER : element.clientWidth;
}

// What a bar of the picture is drawn on.
export function canvas(element, height, ...parts) {
  const width = fullWidth(element);
  return svg("svg", { width, height, viewBox: `0 0 ${width} ${height}` }, parts);
}

// Beside the bar stands what lies beyond the end of the disk, not to scale.
export function barWidth(element) {
  return fullWidth(element) - (doc.beyond.length ? BEYOND : 0);
}

export function beyondStrip(width, height) {
  if (doc.beyond.length === 0) return null;
  return svg(
    "g",
    {},
    svg("title", {}, `${doc.beyond.length} beyond the end of the disk`),
    svg("rect", {
      x: width + 4,
      y: 1,
      width: BEYOND - 5,
      height: height - 14,
      class: "beyond",
      fill: "url(#look-alarm)",
    }),
  );
}

// Where the sector that is asked for is.
export function placeLine(scale, height) {
  if (picture.place === null || !scale.shows({ start: picture.place, end: picture.place })) return null;
  const x = (scale.x(picture.place) + scale.x(picture.place + 1n)) / 2;
  return svg("path", { d: `M${x},0 V${height}`, class: "place" });
}
