// The search field and what it finds, as one types.

import { announce, byId, digits, el, rove } from "./dom.js";
import { counted } from "./format.js";
import { search } from "./index.js";

const MOST = 100;

let field;
let panel;
let waiting = 0;

function hrefOf(result) {
  if (result.extent) return `#extent-${result.extent.index}`;
  if (!result.structure) return `#sector-${result.sector}`;
  return `#sector-${result.structure.sector}${result.offset === null ? "" : `+${result.offset}`}`;
}

function resultRow(result, index) {
  const sector = result.extent?.first ?? result.structure?.sector ?? result.sector;
  const kind = result.extent?.kind ?? result.kind;
  const [before, found, after] = result.snippet;
  return el(
    "li",
    {},
    el(
      "a",
      { href: hrefOf(result), tabindex: index === 0 ? 0 : -1, onclick: close },
      el("span", { class: "sector" }, digits(sector)),
      el(
        "span",
        { class: "found" },
        el("strong", {}, result.title),
        kind ? el("span", { class: "quiet" }, ` ${kind}`) : "",
        found ? el("span", { class: "snippet" }, before, el("mark", {}, found), after) : "",
      ),
    ),
  );
}

function close() {
  panel.hidden = true;
  field.setAttribute("aria-expanded", "false");
}

function run() {
  const query = field.value;
  if (query.trim() === "") {
    close();
    return;
  }
  const { results, count } = search(query, MOST);
  const said =
    count === 0
      ? "Nothing found"
      : count > results.length
        ? `${count} places, the first ${results.length} shown`
        : counted(count, "place");
  panel.replaceChildren(el("p", { class: "count" }, said), el("ul", {}, results.map(resultRow)));
  panel.hidden = false;
  panel.dataset.query = query;
  field.setAttribute("aria-expanded", "true");
  announce(said);
}

export function startSearch() {
  field = el("input", {
    type: "search",
    id: "search-field",
    placeholder: "Search names, values, sectors, hex bytes",
    autocomplete: "off",
    spellcheck: "false",
    "aria-label": "Search names, values, sector numbers and hex bytes",
    "aria-controls": "results",
    "aria-expanded": "false",
    role: "combobox",
    "aria-haspopup": "true",
  });
  panel = el("div", { id: "results", role: "region", "aria-label": "Search results", hidden: true });
  byId("search").append(field, panel);
  byId("search").hidden = false;
  field.addEventListener("input", () => {
    clearTimeout(waiting);
    waiting = setTimeout(run, 90);
  });
  field.addEventListener("focus", () => {
    if (field.value.trim() !== "" && panel.hidden) run();
  });
  rove(panel, "a", { ArrowDown: 1, ArrowUp: -1 });
  byId("search").addEventListener("keydown", (event) => {
    if (event.key === "Escape") {
      close();
      field.focus();
      close();
    } else if (event.target === field && event.key === "ArrowDown") {
      event.preventDefault();
      panel.querySelector("a")?.focus();
    } else if (event.target === field && event.key === "Enter") {
      clearTimeout(waiting);
      run();
      panel.querySelector("a")?.click();
    }
  });
  document.addEventListener("pointerdown", (event) => {
    if (!byId("search").contains(event.target)) close();
  });
  document.addEventListener("keydown", (event) => {
    if (event.key !== "/" || event.target.closest("input, textarea")) return;
    event.preventDefault();
    field.focus();
    field.select();
  });
}
