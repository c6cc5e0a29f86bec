// What an extent looks like: its category gives colour and pattern, its flags what must not be overlooked.

import { svg } from "./dom.js";
import { doc, isPartition } from "./document.js";

const CATEGORIES = [
  ["bitlocker", "BitLocker, LUKS", /bitlocker|luks|truecrypt|\bfve\b/i],
  ["ntfs", "NTFS", /^ntfs/i],
  ["refs", "ReFS", /refs/i],
  ["exfat", "exFAT", /^exfat/i],
  ["fat", "FAT, EFI system", /fat|efi system/i],
  ["ldm", "Dynamic disk", /ldm|dynamic/i],
  ["spaces", "Storage Spaces, Replica", /storage|replica/i],
  ["linux", "Linux", /linux|ext[234]|xfs|btrfs|swap|lvm|raid|f2fs|erofs|squashfs|zfs/i],
];

export const ALARMING = ["overlaps", "beyond-end", "reversed", "damaged", "unsound", "copy-differs"];

export function isAlarming(extent) {
  return extent.flags.some((flag) => ALARMING.includes(flag));
}

function byName(name) {
  return CATEGORIES.find(([, , pattern]) => pattern.test(name))?.[0] ?? "other";
}

// Gives each extent its category. A partition looks like the volume in it.
export function categorise() {
  const volumes = new Map();
  for (const extent of doc.extents) if (extent.kind === "volume") volumes.set(extent.first, extent.type_name);
  for (const extent of doc.extents) {
    if (extent.kind === "gap") extent.category = "gap";
    else if (extent.kind === "structure") extent.category = "structure";
    else if (extent.kind === "area") extent.category = byName(extent.source);
    else if (isPartition(extent) && volumes.has(extent.first)) {
      extent.content = volumes.get(extent.first);
      extent.category = byName(extent.content);
    } else extent.category = byName(extent.type_name);
  }
}

export function categoryNames() {
  const present = new Set(doc.extents.map((extent) => extent.category));
  const known = [["structure", "Partitioning"], ...CATEGORIES, ["other", "Other"], ["gap", "Claimed by nothing"]];
  return known.filter(([name]) => present.has(name)).map(([name, label]) => [name, label]);
}

// What a title of an extent is for people.
export function titleOf(extent) {
  if (extent.kind === "gap") return "Claimed by nothing";
  const type = extent.type_name || extent.type || extent.kind;
  return extent.name && extent.name !== type ? `${extent.name} (${type})` : type;
}

const STROKES = {
  fat: ["M-2,2 l4,-4 M0,8 l8,-8 M6,10 l4,-4", 8],
  exfat: ["M2,2 h1.6 M6,6 h1.6", 8],
  refs: ["M3,0 v8", 6],
  bitlocker: ["M0,0 l8,8 M8,0 l-8,8", 8],
  ldm: ["M0,3 h8", 6],
  spaces: ["M0,4 h8 M4,0 v8", 8],
  linux: ["M-2,6 l4,4 M0,0 l8,8 M6,-2 l4,4", 8],
  gap: ["M0,8 l8,-8", 8],
};

// One pattern for each category, and one for what must not be overlooked.
export function patterns() {
  const names = ["structure", ...CATEGORIES.map(([name]) => name), "other", "gap"];
  const made = names.map((name) => {
    const [path, size] = STROKES[name] ?? ["", 8];
    return svg(
      "pattern",
      { id: `look-${name}`, width: size, height: size, patternUnits: "userSpaceOnUse" },
      svg("rect", { width: size, height: size, class: `look-${name}` }),
      path && svg("path", { d: path, class: `stroke-${name}` }),
    );
  });
  made.push(
    svg(
      "pattern",
      { id: "look-alarm", width: 10, height: 10, patternUnits: "userSpaceOnUse" },
      svg("rect", { width: 10, height: 10, class: "alarm-ground" }),
      svg("path", { d: "M-3,3 l6,-6 M-3,13 l16,-16 M7,13 l6,-6", class: "alarm-stripe" }),
    ),
  );
  return svg("svg", { class: "definitions", width: 0, height: 0, "aria-hidden": "true" }, svg("defs", {}, made));
}

export function swatch(category) {
  return svg(
    "svg",
    { class: "swatch", width: 14, height: 14, "aria-hidden": "true" },
    svg("rect", { x: 0.5, y: 0.5, width: 13, height: 13, rx: 2, class: "swatch-edge", fill: `url(#look-${category})` }),
  );
}
