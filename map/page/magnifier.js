// Which stretch of the disk the magnifier shows: wheel, drag and keys move it, from the whole disk to one sector.

import { doc } from "./document.js";

export const view = { from: 0n, length: 1n };

let changed = () => {};

export function onViewChange(action) {
  changed = action;
}

export function setView(from, length) {
  const kept = length < 1n ? 1n : length > doc.sectors ? doc.sectors : length;
  const most = doc.sectors - kept;
  view.from = from < 0n ? 0n : from > most ? most : from;
  view.length = kept;
  changed();
}

export function showAll() {
  setView(0n, doc.sectors);
}

// factor below 1 magnifies; what is at the fraction of the width stays where it is.
export function zoom(factor, at = 0.5) {
  let length = BigInt(Math.max(Math.round(Number(view.length) * factor), 1));
  if (factor > 1 && length <= view.length) length = view.length + 1n;
  if (factor < 1 && length >= view.length && length > 1n) length = view.length - 1n;
  setView(view.from + BigInt(Math.round((Number(view.length) - Number(length)) * at)), length);
}

export function pan(fraction) {
  let by = BigInt(Math.round(Number(view.length) * fraction));
  if (by === 0n) by = fraction > 0 ? 1n : -1n;
  setView(view.from + by, view.length);
}

// Shows the stretch with some room around it.
export function lookAt(first, last) {
  const end = last < first ? first : last;
  const length = end - first + 1n;
  const room = length / 8n > 2n ? length / 8n : 2n;
  setView(first - room, length + 2n * room);
}

// Shows the sector, in the present magnification where it is in sight.
export function reveal(sector) {
  if (sector >= view.from && sector < view.from + view.length && view.length <= 4096n) return;
  lookAt(sector > 24n ? sector - 24n : 0n, sector + 24n);
}

const KEYS = {
  "+": () => zoom(0.5),
  "=": () => zoom(0.5),
  "-": () => zoom(2),
  _: () => zoom(2),
  0: showAll,
  ArrowLeft: () => pan(-0.2),
  ArrowRight: () => pan(0.2),
  PageUp: () => pan(-0.9),
  PageDown: () => pan(0.9),
  Home: () => setView(0n, view.length),
  End: () => setView(doc.sectors, view.length),
};

export function listen(element) {
  element.addEventListener("keydown", (event) => {
    const action = KEYS[event.key];
    if (!action || event.ctrlKey || event.altKey || event.metaKey) return;
    event.preventDefault();
    action();
  });
  element.addEventListener(
    "wheel",
    (event) => {
      event.preventDefault();
      const box = element.getBoundingClientRect();
      if (event.shiftKey || Math.abs(event.deltaX) > Math.abs(event.deltaY)) {
        pan((event.deltaX || event.deltaY) / box.width);
      } else {
        zoom(Math.min(Math.max(2 ** (event.deltaY / 240), 0.25), 4), (event.clientX - box.left) / box.width);
      }
    },
    { passive: false },
  );
  drag(element);
}

// A drag moves the bar below the pointer. What was dragged is not clicked.
function drag(element) {
  let start = null;
  element.addEventListener("pointerdown", (event) => {
    if (event.button === 0) start = { x: event.clientX, from: view.from, moved: false, id: event.pointerId };
  });
  element.addEventListener("pointermove", (event) => {
    if (!start) return;
    const by = event.clientX - start.x;
    if (!start.moved && Math.abs(by) < 4) return;
    if (!start.moved) element.setPointerCapture(start.id);
    start.moved = true;
    setView(start.from - BigInt(Math.round((by / element.clientWidth) * Number(view.length))), view.length);
  });
  const end = () => {
    if (start?.moved)
      element.addEventListener("click", (event) => event.stopPropagation(), { capture: true, once: true });
    start = null;
  };
  element.addEventListener("pointerup", end);
  element.addEventListener("pointercancel", () => {
    start = null;
  });
}
