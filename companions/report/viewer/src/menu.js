// A menu of the toolbar: a button that opens a small panel with groups of controls.

import { h } from "./dom.js";

/** groups: [heading, ...controls] each; empty groups are left out. */
export function menu(id, text, groups) {
  const shown = groups.filter(([, ...controls]) => controls.flat().some(Boolean));
  const element = h(
    "details",
    { class: "menu", id: `menu-${id}` },
    h("summary", {}, text),
    h(
      "div",
      { class: "menu-panel" },
      shown.map(([heading, ...controls]) =>
        h(
          "fieldset",
          {},
          heading ? h("legend", {}, heading) : null,
          ...controls.flat().filter(Boolean),
        ),
      ),
    ),
  );
  element.addEventListener("keydown", (event) => {
    if (event.key !== "Escape" || !element.open) return;
    event.stopPropagation();
    element.open = false;
    element.querySelector("summary").focus();
  });
  return element;
}

/** Closes an open menu at a press outside it. */
export function closeMenusOutside(root) {
  document.addEventListener("pointerdown", (event) => {
    for (const open of root.querySelectorAll("details.menu[open]"))
      if (!open.contains(event.target)) open.open = false;
  });
}
