// Tables, links and units that the panels of members, elements and nodes share.

import { h } from "./dom.js";

/** A unit as it follows a number; nothing where the problem file names none. */
export const unitAfter = (units, unit) => (units.named && unit ? ` ${unit}` : "");

/** A row of a list of facts; value: text, elements, or a list of both. */
export const fact = (name, ...value) => h("tr", {}, h("th", {}, name), h("td", {}, value.flat(3)));

/** A button that chooses a "node", "beam", "element" or "member" by its number: "node 3". */
export const linkTo = (kind, number, choose, text = `${kind} ${number}`) =>
  h(
    "button",
    { class: "link", "aria-label": `${kind} ${number}`, onclick: () => choose(kind, number) },
    text,
  );

/** A table with heads, and rows whose first cell names them. */
export function valueTable(heads, rows) {
  const line = (cells, tags) =>
    h(
      "tr",
      {},
      cells.map((cell, i) => h(tags[i ? 1 : 0], {}, cell)),
    );
  return h(
    "table",
    { class: "values" },
    h("thead", {}, line(heads, ["th", "th"])),
    h(
      "tbody",
      {},
      rows.map((cells) => line(cells, ["th", "td"])),
    ),
  );
}
