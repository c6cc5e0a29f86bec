// How numbers and places are said.

const UNITS = ["B", "KiB", "MiB", "GiB", "TiB", "PiB", "EiB"];

export function big(number) {
  return number === null || number === undefined ? null : BigInt(number);
}

// In tenths of a unit.
function rounded(bytes, scale) {
  return (bytes * 10n + scale / 2n) / scale;
}

// A size in binary units, rounded to one decimal, as the table on a terminal has it.
export function sizeText(bytes) {
  let unit = 0;
  let scale = 1n;
  while (unit + 1 < UNITS.length && rounded(bytes, scale) >= 10240n) {
    scale *= 1024n;
    unit += 1;
  }
  if (unit === 0) return `${bytes} B`;
  const tenths = rounded(bytes, scale);
  return `${tenths / 10n}.${tenths % 10n} ${UNITS[unit]}`;
}

export function counted(number, one, many) {
  return `${number} ${String(number) === "1" ? one : (many ?? `${one}s`)}`;
}

export function hex(number, width) {
  return number.toString(16).toUpperCase().padStart(width, "0");
}

export function offsetText(offset, width = 3) {
  return `0x${hex(offset, width)}`;
}

export function sectorsOf(extent) {
  if (extent.flags.includes("empty")) return 0n;
  return extent.end < extent.start ? null : extent.end - extent.start + 1n;
}

export function rangeText(first, last) {
  return first === last ? `sector ${first}` : `sectors ${first} to ${last}`;
}
