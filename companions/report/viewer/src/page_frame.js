// The fixed parts of the page in their order.

import { h } from "./dom.js";
import { footnoteOf } from "./page_contents.js";
import { pageBar } from "./page_bar.js";

/** On narrow screens: the button that shows the controls above the view. */
function toolbarFold() {
  const button = h(
    "button",
    {
      class: "toolbar-fold",
      "aria-expanded": "false",
      "aria-controls": "toolbar",
      onclick: () => {
        const isOpen = button.parentElement.classList.toggle("open");
        button.setAttribute("aria-expanded", String(isOpen));
      },
    },
    "View options",
  );
  return button;
}

/** Puts the parts of a report into the document. */
export function layOutPage(report) {
  document
    .getElementById("report")
    .append(
      h("div", { class: "top" }, report.parts.head, pageBar(report)),
      ...(report.selector ? [report.selector.element] : []),
      h(
        "section",
        { class: "view", "aria-labelledby": "view-title" },
        h("h2", { class: "unseen", id: "view-title" }, "View"),
        h(
          "div",
          { class: "stage" },
          toolbarFold(),
          report.toolbar.element,
          report.motions.element,
          h(
            "div",
            { class: "frame" },
            h("div", { class: "canvas-cell" }, report.canvasBox),
            report.legend.element,
          ),
        ),
        report.panel,
      ),
      report.parts.cards,
      report.parts.tables,
      h("footer", {}, footnoteOf(report)),
      report.viewText.element,
      report.sheet.element,
    );
}
