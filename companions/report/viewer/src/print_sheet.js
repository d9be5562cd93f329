// The report on paper. It is made when the browser is about to print, by the button of the page or
// by its own command, in light colours, and thrown away afterwards.

import { scaleInWords, timesInWords } from "./deformation.js";
import { h } from "./dom.js";
import { panelOf } from "./panel.js";
import { cardsOf, footnoteOf, headOf } from "./page_contents.js";
import { largestMembers } from "./print_members.js";
import { printedTables } from "./print_tables.js";
import { picturesOf, viewsOf } from "./print_views.js";
import { theme } from "./theme.js";

/** Of a picture, in pixels of the page: the width of A4 less its margins, and its proportion. */
const WIDTH = 688,
  HEIGHT = 430;

/** The choices of the print dialog, as long as nobody changes them. */
export function usualChoices(report) {
  return {
    views: ["current"],
    selected: true,
    members: report.model.beams.length ? 3 : 0,
    rows: 60,
  };
}

function figures(report, chosen) {
  if (!report.stage) return [];
  const views = viewsOf(report).filter(({ id }) => chosen.includes(id));
  return picturesOf(report, views, WIDTH, HEIGHT).map((canvas, i) =>
    h(
      "figure",
      { class: "print-view" },
      canvas,
      printedLegend(report.legend.element),
      h("figcaption", {}, captionOf(report, views[i])),
    ),
  );
}

/** Without the fields for its limits, which paper cannot use. */
function printedLegend(legend) {
  if (legend.hidden) return null;
  const copy = legend.cloneNode(true);
  copy.querySelector(".limits")?.remove();
  return copy;
}

/** "View XZ, deformed \u00d7 200"; the shapes have their names: "Deformed shape \u00d7 200". */
function captionOf(report, view) {
  if (view.factor !== null) return view.text + timesInWords(view.factor);
  const name = view.id === "current" ? "View" : view.text;
  return report.hasResults ? `${name}, ${scaleInWords(report.factor.value)}` : name;
}

function sheet(report, selection) {
  const content = panelOf(report, selection).flat(2).filter(Boolean);
  return h("article", { class: "print-element" }, content);
}

/** True when an element is a beam of one of the members that have these beams. */
function isOfOne({ model, members }, element, beams) {
  const memberOf = (one) => members.of[model.beamOf.get(one)];
  return model.beamOf.has(element) && beams.some((beam) => memberOf(beam) === memberOf(element));
}

/** The panels that are printed: the selected one, and the members with the largest forces. */
function panels(report, { selected, members }) {
  const { selected: element, selectedNode: node } = report;
  const found = largestMembers(report.results, members);
  const isChosen = selected && (node >= 0 || (element >= 0 && !isOfOne(report, element, found)));
  const sheets = found.map((beam) => sheet(report, { element: beam, node: -1 }));
  return [
    isChosen ? [h("h2", {}, "Selected"), sheet(report, { element, node })] : [],
    found.length ? [h("h2", {}, "Members with the largest forces"), ...sheets] : [],
  ].flat();
}

export class PrintSheet {
  constructor(report) {
    this.report = report;
    this.choices = usualChoices(report);
    this.element = h("div", { id: "print-sheet", class: "print-only", "aria-hidden": "true" });
    window.addEventListener("beforeprint", () => this.fill());
    window.addEventListener("afterprint", () => this.clear());
  }

  fill() {
    const { report, choices } = this;
    theme.forceLight(true);
    const [head, cards] = [headOf(report), cardsOf(report)];
    this.element.replaceChildren(
      ...[
        head,
        figures(report, choices.views),
        panels(report, choices),
        cards,
        choices.rows ? printedTables(report.report.tables, choices.rows) : null,
        h("footer", {}, footnoteOf(report)),
      ]
        .flat()
        .filter(Boolean),
    );
    for (const one of this.element.querySelectorAll("[id]")) one.removeAttribute("id");
    for (const one of this.element.querySelectorAll("details")) one.open = true;
  }

  clear() {
    this.element.replaceChildren();
    theme.forceLight(false);
  }
}
