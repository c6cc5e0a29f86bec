// Makes elements. Whatever comes from the disk becomes a text node or an attribute, never markup.

const SVG = "http://www.w3.org/2000/svg";

function fill(element, attributes, children) {
  for (const [name, value] of Object.entries(attributes ?? {})) {
    if (value === undefined || value === null || value === false) continue;
    if (name.startsWith("on")) element.addEventListener(name.slice(2), value);
    else element.setAttribute(name, value === true ? "" : value);
  }
  element.append(...children.flat(Infinity).filter((child) => child !== null && child !== undefined));
  return element;
}

export function el(tag, attributes, ...children) {
  return fill(document.createElement(tag), attributes, children);
}

export function svg(tag, attributes, ...children) {
  return fill(document.createElementNS(SVG, tag), attributes, children);
}

// Replaces what an element holds.
export function put(element, ...children) {
  element.replaceChildren();
  return fill(element, {}, children);
}

export function byId(id) {
  return document.getElementById(id);
}

export function button(label, attributes, action) {
  return el("button", { type: "button", ...attributes, onclick: action }, label);
}

// A number whose digits stand in groups of three for the eye alone: copied, they are one number.
export function digits(number) {
  const text = String(number);
  if (text.length < 5) return text;
  const groups = [];
  for (let end = text.length; end > 0; end -= 3) groups.unshift(text.slice(Math.max(end - 3, 0), end));
  return groups.map((group, i) => (i === 0 ? group : el("span", { class: "group" }, group)));
}

export function sectorLink(sector, ...label) {
  return el("a", { href: `#sector-${sector}` }, label.length ? label : digits(sector));
}

// Tells a screen reader what has just happened.
export function announce(text) {
  let live = byId("live");
  if (!live) {
    live = el("div", { id: "live", class: "unseen", role: "status", "aria-live": "polite" });
    document.body.append(live);
  }
  live.textContent = text;
}

// One of the items takes part in the order of the Tab key; arrow keys move from item to item.
export function rove(container, selector, keys) {
  const items = () => [...container.querySelectorAll(selector)];
  container.addEventListener("keydown", (event) => {
    const step = keys[event.key];
    if (step === undefined || event.ctrlKey || event.altKey || event.metaKey) return;
    const all = items();
    const at = all.indexOf(event.target.closest(selector));
    if (at < 0) return;
    const to = all[Math.min(Math.max(at + step, 0), all.length - 1)];
    event.preventDefault();
    event.stopPropagation();
    to.focus();
  });
  container.addEventListener("focusin", (event) => {
    const item = event.target.closest(selector);
    if (!item) return;
    container.querySelectorAll(`${selector}[tabindex="0"]`).forEach((other) => other.setAttribute("tabindex", "-1"));
    item.setAttribute("tabindex", "0");
  });
}

const told = new WeakMap();

export function tellHeightNow(element, height = element.offsetHeight) {
  const { holder, name } = told.get(element);
  holder.style.setProperty(name, `${height}px`);
}

const heights = new ResizeObserver((changes) => {
  for (const { target, borderBoxSize } of changes) tellHeightNow(target, borderBoxSize[0].blockSize);
});

// The style of what is in the holder knows, by the name, how high the element is: what stays in sight at the top
// must hide nothing that one goes to.
export function tellHeight(element, holder, name) {
  told.set(element, { holder, name });
  heights.observe(element);
}
