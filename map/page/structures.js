// The list of structures, in disk order. Sections are filled when they are opened, long runs of one kind are
// folded, and what is folded is made when it is unfolded.

import { button, byId, digits, el, tellHeight, tellHeightNow } from "./dom.js";
import { doc } from "./document.js";
import { fillSection, sectionHead } from "./section.js";

const FEWEST_FOLDED = 8;
const SECTIONS_AT_ONCE = 200;

const made = new Map();
const folds = [];

function makeSection(structure) {
  const body = el("div", { class: "section-body" });
  const section = el(
    "details",
    { class: structure.valid ? "structure" : "structure wrong", id: `sector-${structure.sector}` },
    el("summary", {}, sectionHead(structure)),
    body,
  );
  const entry = { section, goTo: null };
  entry.fill = () => {
    if (entry.goTo) return;
    entry.goTo = fillSection(body, structure);
    tellHeight(section.querySelector("summary"), section, "--title-height");
    tellHeight(section.querySelector(".side.bytes"), section, "--bytes-height");
  };
  section.addEventListener("toggle", () => {
    if (section.open) entry.fill();
  });
  made.set(structure.index, entry);
  return section;
}

function makeFold(run) {
  const body = el("div", { class: "fold-body" });
  const wrong = run.filter((structure) => !structure.valid).length;
  const fold = el(
    "details",
    { class: "fold" },
    el(
      "summary",
      {},
      el("span", { class: "sector" }, digits(run[0].sector), " – ", digits(run.at(-1).end)),
      el(
        "span",
        { class: "fold-title" },
        `${run.length} structures: ${run[0].title}`,
        run.at(-1).title === run[0].title ? "" : ` … ${run.at(-1).title}`,
      ),
      wrong ? el("span", { class: "badge bad" }, `${wrong} invalid`) : "",
    ),
    body,
  );
  let shown = 0;
  const more = () => {
    body.querySelector(":scope > .more")?.remove();
    body.append(...run.slice(shown, shown + SECTIONS_AT_ONCE).map(makeSection));
    shown = Math.min(shown + SECTIONS_AT_ONCE, run.length);
    if (shown < run.length)
      body.append(
        button(
          `Show ${Math.min(SECTIONS_AT_ONCE, run.length - shown)} more of ${run.length - shown}`,
          { class: "more" },
          more,
        ),
      );
  };
  fold.addEventListener("toggle", () => {
    if (fold.open && shown === 0) more();
  });
  folds.push({
    fold,
    first: run[0].index,
    last: run.at(-1).index,
    showUntil: (index) => {
      while (run[0].index + shown <= index) more();
    },
  });
  return fold;
}

// Structures of one kind in a row. A table that starts anew elsewhere starts a run of its own.
function runFrom(index) {
  const { structure, title } = doc.structures[index];
  let end = index + 1;
  let varied = false;
  for (; doc.structures[end]?.structure === structure; end += 1) {
    const next = doc.structures[end];
    if (varied && next.title === title && next.start > doc.structures[end - 1].end + 1n) break;
    varied ||= next.title !== title;
  }
  return doc.structures.slice(index, end);
}

export function startStructures() {
  const list = byId("structure-list");
  const parts = [];
  for (let i = 0; i < doc.structures.length;) {
    const run = runFrom(i);
    if (run.length >= FEWEST_FOLDED) parts.push(makeFold(run));
    else parts.push(...run.map(makeSection));
    i += run.length;
  }
  list.replaceChildren(...parts);
  if (doc.structures.length === 0) list.append(el("p", { class: "quiet" }, "No structure was found."));
  byId("structures-tools").append(
    button("Open all", {}, () => openAll(true)),
    button("Close all", {}, () => openAll(false)),
  );
}

// Of what is folded nothing is opened: that would be too much of the same.
function openAll(open) {
  for (const section of byId("structure-list").querySelectorAll("details.structure"))
    if (section.parentElement.id === "structure-list" || section.parentElement.parentElement.open) section.open = open;
}

// Opens the structure's section and brings it into sight. offset: of a byte to mark, or null.
export function showStructure(structure, offset = null) {
  const around = folds.find(({ first, last }) => structure.index >= first && structure.index <= last);
  if (around) {
    around.fold.open = true;
    around.showUntil(structure.index);
  }
  const { section, fill } = made.get(structure.index);
  section.open = true;
  fill();
  document.querySelector(".structure.chosen")?.classList.remove("chosen");
  section.classList.add("chosen");
  tellHeightNow(section.querySelector("summary"));
  tellHeightNow(section.querySelector(".side.bytes"));
  section.scrollIntoView({ block: "start" });
  if (offset === null) section.querySelector("summary").focus({ preventScroll: true });
  else made.get(structure.index).goTo(offset);
}
