// Goes where the page's address says: #sector-2048, #sector-2048+510, #extent-3. Where nothing stands there, says
// what is known of the place.

import { announce, button, byId, digits, el, put, tellHeightNow } from "./dom.js";
import { bytesOf, checkTitle, doc, extentsAt, nameMarks, structureAt, wrongChecksAt } from "./document.js";
import { chooseExtent, showExtent } from "./extents.js";
import { big, counted } from "./format.js";
import { showInPicture } from "./map.js";
import { reveal } from "./magnifier.js";
import { showStructure } from "./structures.js";
import { titleOf } from "./looks.js";

const MOST_SHOWN = 60;

function say(...parts) {
  const note = byId("place-note");
  const hide = () => {
    note.hidden = true;
  };
  const said = el("p", {}, parts);
  put(note, said, button("×", { "aria-label": "Close this note" }, hide));
  note.hidden = parts.length === 0;
  tellHeightNow(note.parentElement);
  if (parts.length) announce(said.textContent);
}

function extentLink(extent) {
  return el("a", { href: `#extent-${extent.index}` }, titleOf(extent));
}

function whatIsExpected(sector) {
  return wrongChecksAt(sector).map(
    (check) => ` ${checkTitle(check)}; found ${check.found}, expected ${check.expected}.`,
  );
}

function sayWhatHolds(sector, around) {
  const claims = around.filter((extent) => extent.kind !== "gap" && !extent.flags.includes("container"));
  const chain = claims.map((extent, i) => [i ? " › " : "", extentLink(extent)]);
  const where = claims.length ? ["It lies in ", chain, "."] : "Nothing claims it.";
  say("Nothing was decoded in sector ", digits(sector), ". ", where, whatIsExpected(sector));
}

function sayBeyond(sector, around) {
  const end = big(doc.disk.sectors)
    ? [" lies beyond the end of the disk: its last sector is ", digits(doc.sectors - 1n), "."]
    : " lies beyond all that this disk states; how long it is is not known.";
  const claim = around.length ? [" ", extentLink(around.at(-1)), " claims it all the same."] : "";
  say("Sector ", digits(sector), end, claim, whatIsExpected(sector));
}

function goToSector(sector, offset) {
  const structure = structureAt(sector);
  const around = extentsAt(sector);
  if (structure) {
    if (sector < doc.sectors) reveal(sector);
    showStructure(structure, offset);
    const { length } = bytesOf(structure);
    if (offset >= length && offset !== null)
      say("Sector ", digits(sector), ` has no byte ${offset}: ${counted(length, "byte")} of it were read.`);
  } else if (sector >= doc.sectors) {
    sayBeyond(sector, around);
  } else {
    const innermost = around.at(-1);
    sayWhatHolds(sector, around);
    if (innermost) chooseExtent(innermost);
    else reveal(sector);
    showInPicture(sector, innermost);
  }
}

function placeOfAddress() {
  const stated = location.hash.slice(1);
  try {
    return decodeURIComponent(stated);
  } catch {
    return stated;
  }
}

function follow() {
  const place = placeOfAddress();
  const [, kind, number, offset] = /^(sector|extent)-(\d{1,40})(?:\+(\d{1,9}))?$/.exec(place) ?? [];
  const extent = kind === "extent" && doc.extents[Number(number)];
  say();
  showInPicture(null);
  if (kind === "sector") goToSector(BigInt(number), offset === undefined ? null : Number(offset));
  else if (extent) showExtent(extent);
  else if (place !== "" && !byId(place)) {
    const shown = place.length > MOST_SHOWN ? `${place.slice(0, MOST_SHOWN)}…` : place;
    say(`This page has no place “${nameMarks(shown)}”. Places are called sector-2048 or sector-2048+510.`);
  }
}

// A link to where one is already leads there once more.
function followAgain(event) {
  const link = event.target.closest?.("a[href^='#']");
  if (link && link.getAttribute("href") === location.hash) follow();
}

export function startPlaces() {
  window.addEventListener("hashchange", follow);
  document.addEventListener("click", followAgain);
  follow();
}
