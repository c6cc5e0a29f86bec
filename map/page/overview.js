// The bar to scale, and the window in it that the magnifier shows.

import { barWidth, beyondStrip, canvas, picture, placeLine, whole } from "./picture.js";
import { describe } from "./readout.js";
import { doc } from "./document.js";
import { drawBar, scaleOf } from "./bar.js";
import { lookAt, setView, view } from "./magnifier.js";
import { svg } from "./dom.js";

const OVERVIEW = { containers: 5, partitions: 40, volumes: 0, areas: 0 };

export function drawOverview() {
  const width = barWidth(picture.overview);
  const drawing = drawBar({ ...picture, view: whole(), width, heights: OVERVIEW, interactive: false });
  picture.window = svg("g", { class: "window" });
  picture.overview.replaceChildren(
    canvas(
      picture.overview,
      drawing.height,
      drawing.parts,
      placeLine(drawing.scale, drawing.height),
      beyondStrip(width, drawing.height),
      picture.window,
    ),
  );
  picture.overviewHeight = drawing.height;
}

// The window of the magnifier in the overview, and the lines that lead from it to the magnified bar.
export function drawWindow() {
  const width = barWidth(picture.overview);
  if (view.length === doc.sectors) {
    picture.window.replaceChildren();
    picture.funnel.replaceChildren(canvas(picture.overview, 16));
    return;
  }
  const scale = scaleOf(whole(), width);
  const left = scale.x(view.from);
  const right = Math.max(scale.x(view.from + view.length), left + 3);
  picture.window.replaceChildren(
    svg("path", {
      d: `M0,0 H${left} V${picture.overviewHeight} H0 Z M${right},0 H${width} V${picture.overviewHeight} H${right} Z`,
      class: "veil",
    }),
    svg("rect", {
      x: Math.min(left, width - 3),
      y: 0.75,
      width: right - left,
      height: picture.overviewHeight - 1.5,
      class: "frame",
    }),
  );
  picture.funnel.replaceChildren(
    canvas(picture.overview, 16, svg("path", { d: `M${left},0 L0,16 H${width} L${right},0 Z`, class: "funnel" })),
  );
}

export function listenOverview() {
  let start = null;
  const at = (event) =>
    scaleOf(whole(), barWidth(picture.overview)).sectorAt(
      event.clientX - picture.overview.getBoundingClientRect().left,
    );
  picture.overview.addEventListener("pointerdown", (event) => {
    if (event.button !== 0) return;
    start = { x: event.clientX, sector: at(event), moved: false, item: event.target.closest(".item") };
    picture.overview.setPointerCapture(event.pointerId);
  });
  picture.overview.addEventListener("pointermove", (event) => {
    if (!start || (!start.moved && Math.abs(event.clientX - start.x) < 4)) return;
    start.moved = true;
    const other = at(event);
    const [from, to] = other < start.sector ? [other, start.sector] : [start.sector, other];
    setView(from, to - from + 1n);
  });
  picture.overview.addEventListener("pointerup", () => {
    if (start && !start.moved) choose(start);
    start = null;
  });
}

// What was chosen in the overview is magnified.
function choose({ item, sector }) {
  if (item?.dataset.sector) lookAt(BigInt(item.dataset.sector), BigInt(item.dataset.sector) + 7n);
  else if (item) lookAt(doc.extents[Number(item.dataset.extent)].start, doc.extents[Number(item.dataset.extent)].end);
  else setView(sector - doc.sectors / 32n, doc.sectors / 16n);
  if (item) describe(item);
}
