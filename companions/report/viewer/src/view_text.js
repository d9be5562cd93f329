// The view in words, for screen readers: model, colours, diagram, and the selected object.

import { format, h } from "./dom.js";
import { reachScrollers } from "./scrollers.js";

const PAUSE = 400; // ms without changes until the text is made

const textOf = (element) => element.textContent.replace(/\s+/g, " ").trim();

/** The choices of the controls above the view, as "Colours: von Mises". */
function choicesIn(toolbar) {
  return [...toolbar.querySelectorAll("select")]
    .filter((one) => one.value)
    .map((one) => {
      const name =
        one.getAttribute("aria-label") ?? textOf(one.closest("label, .tool")?.firstElementChild);
      return `${name}: ${textOf(one.selectedOptions[0])}`;
    });
}

function factsOf(panel) {
  const heading = panel.querySelector("h3");
  if (!heading) return "";
  const rows = [...panel.querySelectorAll(".facts tr")].map(
    (row) => `${textOf(row.cells[0])} ${textOf(row.cells[1])}`,
  );
  return [textOf(heading), ...rows].join(", ");
}

function modelInWords(report) {
  const { model } = report;
  const kind = report.report.model.solids ? "Solid" : model.plane ? "Plane structure" : "Structure";
  const size = model.box.high.map((high, k) => format(high - model.box.low[k], 3));
  const unit = model.units.named ? ` ${model.units.length}` : "";
  return `${kind} of ${model.elements.count} elements and ${model.nodeCount} nodes, ${size
    .slice(0, report.report.model.translations)
    .join(" by ")}${unit}.`;
}

export class ViewText {
  constructor(report) {
    this.report = report;
    this.description = h("p", { id: "view-text" });
    this.announcement = h("p", { id: "announcement", "aria-live": "polite" });
    this.element = h("div", { class: "unseen" }, this.description, this.announcement);
    new MutationObserver(() => {
      this.announce();
      reachScrollers();
    }).observe(report.panel, { childList: true });
  }

  /** Makes the canvas a part of the page that keys reach and that has a name. */
  name(box) {
    box.tabIndex = 0;
    box.setAttribute("role", "application");
    box.setAttribute("aria-roledescription", "view of the structure");
    box.setAttribute("aria-label", "View of the structure. Arrow keys turn it.");
    box.setAttribute("aria-describedby", "view-text");
    this.report.stage.onFrame(() => this.describeSoon());
  }

  describeSoon() {
    clearTimeout(this.timer);
    this.timer = setTimeout(() => this.describe(), PAUSE);
  }

  describe() {
    const { report } = this;
    const factor = report.factor.value;
    const selected = factsOf(report.panel);
    this.description.textContent = [
      modelInWords(report),
      ...choicesIn(report.toolbar.element).map((choice) => `${choice}.`),
      factor ? `Deformed shape, displacements times ${format(factor, 3)}.` : "Undeformed shape.",
      selected ? `Selected: ${selected}.` : "Nothing is selected.",
    ].join(" ");
  }

  announce() {
    this.announcement.textContent = factsOf(this.report.panel) || "Nothing is selected.";
  }
}
