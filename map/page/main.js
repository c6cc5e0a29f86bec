// Brings the page to life.

import { byId, el, tellHeight } from "./dom.js";
import { copyButton, mapText } from "./copy.js";
import { categorise } from "./looks.js";
import { loadDocument } from "./document.js";
import { startExtents } from "./extents.js";
import { startStructures } from "./structures.js";
import { startMap } from "./map.js";
import { startPlaces } from "./place.js";
import { startSearch } from "./search.js";

async function start() {
  await loadDocument();
  categorise();
  tellHeight(document.querySelector(".top"), document.documentElement, "--top-height");
  startMap();
  startExtents();
  startStructures();
  startSearch();
  byId("extents-tools").append(copyButton("Copy as text", mapText));
  startPlaces();
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
