// The picture of the disk: the bar to scale, the window in it, and the magnified bar below.

import { barWidth, beyondStrip, canvas, picture, placeLine } from "./picture.js";
import { beyondNote, describe, legend } from "./readout.js";
import { button, byId, digits, el, put, svg } from "./dom.js";
import { drawAxis, drawBar } from "./bar.js";
import { drawOverview, drawWindow, listenOverview } from "./overview.js";
import { listen, onViewChange, showAll, view, zoom } from "./magnifier.js";
import { makeLanes, makeMarks } from "./lanes.js";
import { doc, structureAt } from "./document.js";
import { patterns } from "./looks.js";
import { sizeText } from "./format.js";

const MAGNIFIED = { containers: 9, partitions: 46, volumes: 16, areas: 20 };
const HELP =
  "Wheel or + and − magnify; drag or the arrow keys move; Home and End go to the ends; 0 shows all. " +
  "Enter opens what is chosen.";

function drawMagnified() {
  const width = barWidth(picture.magnifier);
  const focused = document.activeElement?.closest?.("#magnifier .item");
  const key = focused && (focused.dataset.extent ?? `s${focused.dataset.sector}`);
  const drawing = drawBar({ ...picture, view, width, heights: MAGNIFIED, interactive: true });
  picture.magnifier.replaceChildren(
    canvas(
      picture.magnifier,
      drawing.height + 16,
      drawing.parts,
      placeLine(drawing.scale, drawing.height),
      view.from + view.length === doc.sectors ? beyondStrip(width, drawing.height) : null,
      svg("g", { "aria-hidden": "true" }, drawAxis(view, width, drawing.height)),
    ),
  );
  const items = [...picture.magnifier.querySelectorAll(".item")];
  items[0]?.setAttribute("tabindex", "0");
  items
    .find((item) => key && (item.dataset.extent ?? `s${item.dataset.sector}`) === key)
    ?.focus({ preventScroll: true });
  itemOf(picture.chosen)?.classList.add("chosen");
  put(
    picture.range,
    "Magnified: sectors ",
    digits(view.from),
    " to ",
    digits(view.from + view.length - 1n),
    " · ",
    sizeText(view.length * doc.sectorSize),
  );
}

// An extent that does not begin with a structure has its row in the table of extents.
function openItem(item) {
  if (!item) return;
  const { start, index } = doc.extents[Number(item.dataset.extent)] ?? {};
  const sector = item.dataset.sector ?? structureAt(start)?.sector;
  location.hash = sector === undefined ? `#extent-${index}` : `#sector-${sector}`;
}

function itemOf(extent) {
  return extent && picture.magnifier.querySelector(`.item[data-extent="${extent.index}"]`);
}

// Shows where the sector is, in the extent that is chosen; null: none is.
export function showInPicture(sector, extent = null) {
  picture.place = sector;
  picture.chosen = extent;
  drawMap();
  if (sector === null) return;
  byId("map").scrollIntoView({ block: "start" });
  (itemOf(extent) ?? picture.magnifier).focus({ preventScroll: true });
}

export function drawMap() {
  if (!picture.overview.clientWidth) return;
  drawOverview();
  drawWindow();
  drawMagnified();
}

export function startMap() {
  picture.lanes = makeLanes();
  picture.marks = makeMarks();
  picture.overview = el("div", { id: "overview", "aria-hidden": "true" });
  picture.funnel = el("div", { id: "funnel", "aria-hidden": "true" });
  picture.magnifier = el("div", {
    id: "magnifier",
    tabindex: 0,
    role: "group",
    "aria-label": "Magnified part of the disk",
    "aria-describedby": "magnifier-help magnifier-range",
  });
  picture.range = el("p", { id: "magnifier-range", class: "range" });
  picture.readout = el("p", { id: "readout" });
  put(
    byId("bars"),
    patterns(),
    picture.overview,
    picture.funnel,
    picture.magnifier,
    picture.range,
    picture.readout,
    beyondNote(),
    legend(),
    el("p", { id: "magnifier-help", class: "quiet help" }, HELP),
  );
  byId("map-tools").append(
    button("−", { "aria-label": "Magnify less" }, () => zoom(2)),
    button("+", { "aria-label": "Magnify more" }, () => zoom(0.5)),
    button("Whole disk", {}, showAll),
  );
  listenAll();
  describe(null);
  drawMap();
  showAll();
  for (const [event, onPaper] of [
    ["beforeprint", true],
    ["afterprint", false],
  ])
    window.addEventListener(event, () => {
      picture.onPaper = onPaper;
      drawMap();
    });
  new ResizeObserver(drawMap).observe(picture.overview);
}

function listenAll() {
  for (const bar of [picture.overview, picture.magnifier]) {
    bar.addEventListener("pointerover", (event) => describe(event.target.closest(".item")));
    bar.addEventListener("pointerleave", () => describe(document.activeElement?.closest?.("#magnifier .item")));
  }
  picture.magnifier.addEventListener("focusin", (event) => describe(event.target.closest(".item")));
  picture.magnifier.addEventListener("click", (event) => openItem(event.target.closest(".item")));
  picture.magnifier.addEventListener("keydown", itemKeys);
  listen(picture.magnifier);
  listenOverview();
  onViewChange(() => {
    if (!picture.window) return;
    drawWindow();
    drawMagnified();
  });
}

// On an item the arrow keys go to the next one.
function itemKeys(event) {
  const item = event.target.closest(".item");
  if (!item) return;
  if (event.key === "Enter") openItem(item);
  if (event.key !== "ArrowLeft" && event.key !== "ArrowRight") return;
  event.stopImmediatePropagation();
  event.preventDefault();
  const items = [...picture.magnifier.querySelectorAll(".item")];
  const next = items[items.indexOf(item) + (event.key === "ArrowRight" ? 1 : -1)];
  if (!next) return;
  item.setAttribute("tabindex", "-1");
  next.setAttribute("tabindex", "0");
  next.focus();
}
