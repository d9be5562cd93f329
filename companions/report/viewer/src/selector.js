// The choice of a load case, a combination or an envelope above the view.

import { h, select } from "./dom.js";

export class Selector {
  /** onchoose(selection) is called with a case, a combination or an envelope of the study. */
  constructor(study, onchoose) {
    this.study = study;
    this.onchoose = onchoose;
    this.list = [...study.all, ...study.envelopes];
    const title = (one) => (one.title ? `${one.name}: ${one.title}` : one.name);
    const group = (label, kind) => ({
      label,
      options: this.list
        .map((one, i) => [one, i])
        .filter(([one]) => one.kind === kind)
        .map(([one, i]) => [String(i), title(one)]),
    });
    const groups = [
      group("Cases", "case"),
      group("Combinations", "combination"),
      group("Envelopes", "envelope"),
    ].filter(({ options }) => options.length > 0);
    this.select = select("selection", groups, () => this.changed());
    this.select.setAttribute("aria-label", "case, combination or envelope");
    this.note = h("span", { class: "selection-note", id: "selection-note" });
    const step = (name, text, by) =>
      h("button", { "aria-label": `${name} one`, onclick: () => this.move(by) }, text);
    this.element = h(
      "div",
      { class: "selection screen-only" },
      h("label", { for: "selection" }, "Results of"),
      h(
        "span",
        { class: "selection-choice" },
        step("previous", "\u2039", -1),
        this.select,
        step("next", "\u203a", 1),
      ),
      this.note,
    );
  }

  get chosen() {
    return this.list[Number(this.select.value)];
  }

  show(selection) {
    this.select.value = String(this.list.indexOf(selection));
    this.note.textContent = this.describe(selection);
  }

  describe(selection) {
    if (selection.kind === "combination") return this.study.textOf(selection);
    if (selection.kind === "case") return "load case";
    const count = selection.members.length;
    return `least and largest values of ${count} ${count === 1 ? "combination" : "cases and combinations"}`;
  }

  /** The choice as text, for the printer. */
  printed(selection) {
    return h(
      "p",
      { class: "print-only" },
      h("b", {}, selection.name),
      `: ${this.describe(selection)}`,
    );
  }

  changed() {
    this.onchoose(this.chosen);
  }

  move(by) {
    const next = Number(this.select.value) + by;
    if (next < 0 || next >= this.list.length) return;
    this.onchoose(this.list[next]);
  }
}
