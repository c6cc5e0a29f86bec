// Brings the page to life, and goes where its address says: #sector-2048, #sector-2048+510, #extent-3.

import { announce, byId, el } from "./dom.js";
import { copyButton, mapText } from "./copy.js";
import { categorise } from "./looks.js";
import { doc, extentsAt, loadDocument, structureAt } from "./document.js";
import { reveal } from "./magnifier.js";
import { showExtent, startExtents } from "./extents.js";
import { showStructure, startStructures } from "./structures.js";
import { startJoined } from "./joined.js";
import { startMap } from "./map.js";
import { startSearch } from "./search.js";

// Says why an address leads nowhere; nothing: it does.
function complain(text) {
  byId("nowhere")?.remove();
  if (!text) return;
  byId("map").prepend(el("p", { class: "alarm-note", id: "nowhere" }, text));
  byId("nowhere").scrollIntoView({ block: "center" });
  announce(text);
}

function goToSector(sector, offset) {
  const structure = structureAt(sector);
  const around = extentsAt(sector).at(-1);
  if (!structure && !around) {
    complain(
      sector < doc.sectors
        ? `Nothing is known of sector ${sector}.`
        : `There is no sector ${sector}: the disk ends with sector ${doc.sectors - 1n}.`,
    );
    return;
  }
  if (!structure && around) showExtent(around);
  if (sector < doc.sectors && (structure || !around)) reveal(sector);
  if (structure) showStructure(structure, offset);
}

function follow() {
  const [, kind, number, offset] = /^#(sector|extent)-(\d{1,20})(?:\+(\d{1,6}))?$/.exec(location.hash) ?? [];
  complain(/^#(sector|extent)-/.test(location.hash) && !kind ? "The address of this page names no sector." : "");
  if (kind === "sector") goToSector(BigInt(number), offset === undefined ? null : Number(offset));
  else if (kind === "extent" && doc.extents[Number(number)]) showExtent(doc.extents[Number(number)]);
  else if (kind === "extent") complain(`There is no extent ${number} on this page.`);
}

// A link to where one is already leads there once more.
function followAgain(event) {
  const link = event.target.closest?.("a[href^='#']");
  if (link && link.getAttribute("href") === location.hash) follow();
}

async function start() {
  await loadDocument();
  categorise();
  startMap();
  startJoined();
  startExtents();
  startStructures();
  startSearch();
  byId("extents-tools").append(copyButton("Copy as text", mapText));
  window.addEventListener("hashchange", follow);
  document.addEventListener("click", followAgain);
  follow();
  document.documentElement.classList.add("ready");
  performance.mark("ready");
}

start().catch((error) => {
  byId("map").append(
    el(
      "p",
      { class: "alarm-note", role: "alert" },
      `This page could not be brought to life: ${error.message}. Its tables can be read all the same.`,
    ),
  );
});
