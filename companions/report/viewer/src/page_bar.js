// The commands of the whole page, at the right of its title: print, keys, light or dark.

import { openDialog } from "./dialog.js";
import { h, select } from "./dom.js";
import { openPrintDialog } from "./print_dialog.js";
import { theme } from "./theme.js";
import { keysOf } from "./view_keys.js";

function openKeys(model) {
  const rows = keysOf(model).map(([keys, text]) =>
    h("tr", {}, h("th", { scope: "row" }, keys), h("td", {}, text)),
  );
  openDialog("Keys", h("table", { class: "facts keys" }, h("tbody", {}, rows)));
}

export function pageBar(report) {
  const appearance = select(
    "appearance",
    [
      ["auto", "Auto"],
      ["light", "Light"],
      ["dark", "Dark"],
    ],
    (choice) => theme.choose(choice),
  );
  appearance.value = theme.choice;
  appearance.setAttribute("aria-label", "Appearance: as the system, light or dark");
  return h(
    "div",
    { class: "page-bar screen-only" },
    h("button", { id: "print", onclick: () => openPrintDialog(report) }, "Print\u2026"),
    h("button", { id: "keys", onclick: () => openKeys(report.model) }, "Keys"),
    appearance,
  );
}
