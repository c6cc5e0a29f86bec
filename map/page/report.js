// The report's own text of a structure, without the raw dump at its end. Equal paragraphs in a row are folded.

import { button, el } from "./dom.js";

function folded(count, paragraph) {
  const block = el(
    "p",
    { class: "folded" },
    button(`${count} more like it`, { "aria-expanded": "false" }, () => {
      block.replaceWith(el("pre", {}, Array(count).fill(paragraph).join("\n\n")));
    }),
  );
  return block;
}

// The title line says what the section's own heading says.
export function reportBody(structure) {
  const lines = structure.text.split("\n");
  if (lines[0].startsWith("Reading sector # ")) lines.shift();
  return lines
    .join("\n")
    .replaceAll("\0", " ")
    .replace(/^\n+|\s+$/g, "");
}

export function reportBlocks(structure) {
  const paragraphs = reportBody(structure).split(/\n{2,}/);
  const blocks = [];
  let gathered = [];
  const flush = () => {
    if (gathered.length) blocks.push(el("pre", {}, gathered.join("\n\n")));
    gathered = [];
  };
  for (let i = 0; i < paragraphs.length;) {
    let equal = 1;
    while (paragraphs[i + equal] === paragraphs[i]) equal += 1;
    gathered.push(paragraphs[i]);
    if (equal > 2) {
      flush();
      blocks.push(folded(equal - 1, paragraphs[i]));
      i += equal;
    } else {
      i += 1;
    }
  }
  flush();
  return blocks;
}
