// Small helpers for the page. All text enters it as text nodes, never as markup.

const SVG = "http://www.w3.org/2000/svg";

function fill(element, attributes, children) {
  for (const [name, value] of Object.entries(attributes)) {
    if (name.startsWith("on")) element.addEventListener(name.slice(2), value);
    else if (value === true) element.setAttribute(name, "");
    else if (value !== false && value !== null && value !== undefined)
      element.setAttribute(name, value);
  }
  element.append(...children.flat().filter((child) => child !== null && child !== undefined));
  return element;
}

/** An element with attributes (onclick and the like: listeners) and children. */
export function h(tag, attributes = {}, ...children) {
  return fill(document.createElement(tag), attributes, children);
}

/** The same in a drawing. */
export function svg(tag, attributes = {}, ...children) {
  return fill(document.createElementNS(SVG, tag), attributes, children);
}

/** A unit or a count after a text. The space keeps the words apart for screen readers. */
export const aside = (text) => h("small", {}, ` ${text}`);

/** A number in at most six digits, as the result files have them. */
export function format(value, digits = 6) {
  if (value === null || value === undefined || Number.isNaN(value)) return "";
  if (Number.isInteger(value) && Math.abs(value) < 1e15) return String(value);
  return String(Number(value.toPrecision(digits)));
}

/** A select of [value, text] options, or of groups {label, options}. */
export function select(id, groups, onchange) {
  const option = ([value, text]) => h("option", { value }, text);
  const children = groups.map((group) =>
    Array.isArray(group)
      ? option(group)
      : h("optgroup", { label: group.label }, group.options.map(option)),
  );
  const element = h("select", { id }, children);
  element.addEventListener("change", () => onchange(element.value));
  return element;
}

export function checkbox(id, text, checked, onchange) {
  const box = h("input", { type: "checkbox", id, checked });
  box.addEventListener("change", () => onchange(box.checked));
  return h("label", { class: "check", for: id }, box, text);
}
