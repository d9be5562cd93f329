// The controls above the view. Each sets something in the report's view and draws it anew.

import { DIAGRAMS, hasDiagram } from "./diagrams.js";
import { checkbox, h, select } from "./dom.js";
import { menu } from "./menu.js";
import { SHELL, SOLID } from "./model.js";
import { messagePlace, numberField } from "./number_field.js";
import { savePng, saveSvg } from "./picture.js";
import { hasPrincipalStresses } from "./principal.js";
import { LARGE } from "./scene.js";

const SPACE_LOOKS = [
  ["iso", "3D"],
  ["front", "XZ"],
  ["side", "YZ"],
  ["top", "XY"],
];
const PLANE_LOOKS = [["top", "Fit"]];

/** A control with its name; further controls beside it have names of their own. */
const tool = (text, control, ...others) =>
  h("span", { class: "tool" }, h("label", { for: control.id }, text), control, others);

function range(id, attributes, oninput) {
  const input = h("input", { type: "range", id, ...attributes });
  input.addEventListener("input", oninput);
  return input;
}

function fieldGroups(fields) {
  const names = [...new Set(fields.map(({ group }) => group))];
  return names.map((label) => ({
    label,
    options: fields.filter(({ group }) => group === label).map((field) => [field.id, field.label]),
  }));
}

/** What can be hidden of one kind, if there is a choice. */
function partChecks(view, kind, numbers) {
  if (numbers.length < 2) return [];
  const kinds = { mesh: "meshes", material: "materials" }[kind];
  return numbers.map((number) =>
    checkbox(`${kind}${number}`, `${kind} ${number}`, !view.visibility[kinds].has(number), (on) =>
      view.showPart(kinds, number, on),
    ),
  );
}

/** An option of a select, or the same of an envelope or of a single result; else none. */
function optionLike(element, value) {
  const has = (wanted) => [...element.options].some((option) => option.value === wanted);
  return [value, `${value} max`, value.replace(/ (min|max)$/, "")].find(has) ?? "";
}

export class Toolbar {
  constructor(view) {
    const { model, report } = view;
    const { isEnvelope } = report;
    const diagrams = Object.entries(DIAGRAMS).filter(([name]) => hasDiagram(model.diagrams, name));
    this.colours = select("colours", [["", "none"], ...fieldGroups(view.fields)], () =>
      view.colour(),
    );
    this.smooth = checkbox("smooth", "smooth", true, () => view.colour());
    this.diagram = select(
      "diagram",
      [["", "none"], ...diagrams.map(([name, { title }]) => [name, title])],
      () => view.showDiagram(),
    );
    this.diagramSize = range(
      "diagram-size",
      { min: 0.1, max: 3, step: 0.05, value: 1, "aria-label": "size of the diagram" },
      () => view.showDiagram(),
    );
    this.directions = select(
      "directions",
      [
        ["", "none"],
        ...(report.table("shell_forces")
          ? [
              ["N", "membrane forces"],
              ["M", "moments"],
            ]
          : []),
        ...(hasPrincipalStresses(report) ? [["S", "stresses"]] : []),
      ],
      () => view.showDirections(),
    );
    this.makeDeformation(view);
    this.element = h(
      "div",
      { class: "toolbar", id: "toolbar", role: "group", "aria-label": "view" },
      view.fields.length === 0
        ? null
        : tool("Colours", this.colours, report.table("shell_forces") ? this.smooth : null),
      diagrams.length ? tool("Diagram", this.diagram, this.diagramSize) : null,
      this.directions.options.length > 1 && !isEnvelope && report.hasResults
        ? tool("Principal", this.directions)
        : null,
      isEnvelope || !report.hasResults
        ? null
        : tool("Deformed", this.deformation, "\u00d7", this.factor, this.factorMessage),
      this.showMenu(view),
      menu("save", "Save", [
        [
          "Picture",
          h("button", { id: "save-png", onclick: () => savePng(view) }, "PNG with legend"),
          model.has(SHELL) || model.has(SOLID)
            ? null
            : h("button", { id: "save-svg", onclick: () => saveSvg(view) }, "SVG with legend"),
        ],
      ]),
      h(
        "span",
        { class: "tool looks" },
        (model.plane ? PLANE_LOOKS : SPACE_LOOKS).map(([name, text]) =>
          h(
            "button",
            {
              "data-look": name,
              "aria-label": `view ${text}`,
              onclick: () => view.stage.look(name),
            },
            text,
          ),
        ),
      ),
    );
  }

  /** The scale of the deformation: a slider, and a number to type. */
  makeDeformation(view) {
    this.deformation = range("deformation", { min: 0, max: 2, step: 0.01, value: 1 }, () => {
      view.deformation.slide();
      this.factorMessage.textContent = "";
      view.deform();
    });
    this.factor = numberField({ id: "factor", "aria-label": "scale of the deformation" });
    this.factorMessage = messagePlace();
    this.factor.addEventListener("change", () => {
      this.factorMessage.textContent = view.deformation.type(this.factor.value);
      view.deform();
    });
  }

  /** Everything that is switched on and off. */
  showMenu(view) {
    const { report, model } = view;
    const { isEnvelope } = report;
    const symbol = (name, shown) => checkbox(name, name, shown, (on) => view.showSymbols(name, on));
    const materials = report.table("materials").column("material").values;
    this.axes = select(
      "axes",
      [
        ["", "none"],
        ["selected", "of the selected element"],
        ["all", "of all"],
      ],
      () => view.showAxes(),
    );
    this.axes.setAttribute("aria-label", "local axes");
    return menu("show", "Show", [
      [
        "Symbols",
        symbol("supports", true),
        isEnvelope ? null : symbol("loads", true),
        isEnvelope || !report.hasResults ? null : symbol("reactions", false),
      ],
      [
        "Model",
        checkbox("numbers", "numbers", false, (on) => view.showNumbers(on)),
        model.has(SHELL) || model.has(SOLID)
          ? checkbox("lines", "mesh lines", model.elements.count <= LARGE, (on) =>
              view.showLines(on),
            )
          : null,
      ],
      ["Local axes", model.beams.length || model.has(SHELL) ? this.axes : null],
      [
        "Meshes",
        partChecks(
          view,
          "mesh",
          Array.from({ length: report.model.meshes }, (_, i) => i + 1),
        ),
      ],
      ["Materials", partChecks(view, "material", [...materials])],
    ]);
  }

  /** Adds a menu before the buttons of the views. */
  add(element) {
    this.element.querySelector(".looks").before(element);
  }

  get controls() {
    return [...this.element.querySelectorAll("select, input")];
  }

  /** The values of the controls by their names. */
  get state() {
    const valueOf = (one) => (one.type === "checkbox" ? one.checked : one.value);
    return Object.fromEntries(this.controls.map((one) => [one.id, valueOf(one)]));
  }

  /** Takes over the values of another toolbar where this one has the same control. */
  adopt(state) {
    for (const one of this.controls) {
      const value = state[one.id];
      if (value === undefined) continue;
      if (one.type === "checkbox") one.checked = value;
      else if (one.tagName === "SELECT") one.value = optionLike(one, value);
      else one.value = value;
    }
  }

  get isSmooth() {
    return this.smooth.querySelector("input").checked;
  }
}
