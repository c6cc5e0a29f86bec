// Copies as text what the page shows.

import { announce, button } from "./dom.js";
import { bytesOf, doc } from "./document.js";
import { placeText } from "./fields.js";
import { sectorsOf, sizeText } from "./format.js";
import { hexText } from "./hex.js";
import { reportBody } from "./report.js";

// Where the page may not use the clipboard, the browser copies what is selected.
function copySelected(text) {
  const area = document.createElement("textarea");
  area.className = "unseen";
  area.value = text;
  document.body.append(area);
  area.select();
  const done = document.execCommand("copy");
  area.remove();
  return done;
}

async function copy(text) {
  try {
    await navigator.clipboard.writeText(text);
    return true;
  } catch {
    return copySelected(text);
  }
}

export function copyButton(label, textOf) {
  const made = button(label, { class: "copy" }, async () => {
    const done = await copy(textOf());
    made.textContent = done ? "Copied" : "Not copied";
    announce(made.textContent);
    setTimeout(() => {
      made.textContent = label;
    }, 1500);
  });
  return made;
}

export function structureText(structure) {
  const alike = structure.count === 1 ? "" : `, ${structure.count} alike`;
  const head = `${structure.title}\nsector ${structure.sector}${alike}`;
  const fields = structure.fields.map((field) => `${field.label}\t${field.value}\t${placeText(field)}`).join("\n");
  return [head, structure.messages.join("\n"), fields, reportBody(structure), hexText(bytesOf(structure))]
    .filter((part) => part !== "")
    .join("\n\n")
    .concat("\n");
}

export function mapText() {
  const rows = doc.extents.map((extent) => {
    const sectors = sectorsOf(extent);
    return [
      extent.first,
      extent.last,
      sectors === null ? "" : sizeText(sectors * doc.sectorSize),
      extent.kind,
      extent.type_name,
      extent.name,
      extent.source,
      extent.flags.join(" "),
    ].join("\t");
  });
  return `first\tlast\tsize\tkind\ttype\tname\tsource\tflags\n${rows.join("\n")}\n`;
}
