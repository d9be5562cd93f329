// The values of the shown field along a straight line: the form for its two points, the line in the
// view, the chart and its file.

import * as THREE from "three";
import { chart } from "./chart.js";
import { h } from "./dom.js";
import { valuesAlongLine } from "./line_values.js";
import { minus } from "./model.js";
import {
  complaint,
  coordinateText,
  mark,
  messagePlace,
  numberField,
  numberIn,
} from "./number_field.js";
import { fileBase, fileName, save } from "./save.js";
import { DETAIL } from "./scene.js";
import { theme } from "./theme.js";

const LEAST = 1e-6; // of the model's size: shorter lines have no direction

export class LineTool {
  /** view: the report; box: where the chart goes. */
  constructor(view, box) {
    Object.assign(this, { view, box });
    this.points = [null, null]; // local places
    this.wanted = 0; // points that are still to be picked
    const coordinate = (name, k) =>
      numberField({
        id: `line-${name}-${"xyz"[k]}`,
        "aria-label": `${"xyz"[k]} of point ${name}`,
        placeholder: "xyz"[k],
      });
    this.inputs = ["A", "B"].map((name) => [0, 1, 2].map((k) => coordinate(name, k)));
    for (const input of this.inputs.flat()) input.addEventListener("change", () => this.typed());
    this.message = messagePlace();
    this.pickButton = h(
      "button",
      { id: "line-pick", onclick: () => this.beginPicking() },
      "Pick two points",
    );
    this.clearButton = h("button", { id: "line-clear", onclick: () => this.clear() }, "Clear");
    this.controls = [
      h(
        "div",
        { class: "line-fields" },
        ["A", "B"].map((name, i) =>
          h("div", { class: "point" }, h("span", {}, name), this.inputs[i]),
        ),
        this.message,
      ),
      h("div", { class: "buttons" }, this.pickButton, this.clearButton),
    ];
  }

  beginPicking() {
    this.clear();
    this.wanted = 2;
    this.pickButton.closest("details").open = false;
    this.hint("Click on two points of the surface or of the cut.");
  }

  hint(text) {
    this.box.hidden = false;
    this.box.replaceChildren(h("p", { class: "hint" }, text));
  }

  /** Whether the tool waits for a click in the view. */
  get isPicking() {
    return this.wanted > 0;
  }

  /** Takes a point of the model (local place, or null beside it). */
  take(place) {
    if (!place) return;
    const which = 2 - this.wanted--;
    this.setPoint(which, place);
    if (this.wanted > 0) this.hint("Click on the second point.");
    this.refresh();
  }

  setPoint(which, place) {
    this.points[which] = place;
    const { center, size } = this.view.model.box;
    this.inputs[which].forEach((input, k) => {
      input.value = coordinateText(place[k] + center[k], size);
    });
    this.markFaults();
  }

  /** Takes the points whose coordinates are all numbers; the others stay as they are. */
  typed() {
    const { center } = this.view.model.box;
    this.inputs.forEach((inputs, i) => {
      const values = inputs.map((input) => numberIn(input.value));
      if (!values.some(Number.isNaN)) this.points[i] = values.map((x, k) => x - center[k]);
    });
    this.markFaults();
    this.refresh();
  }

  /** Tells which text is no number. A point that is not complete yet may have empty fields. */
  markFaults() {
    const faultOf = (input, i) =>
      input.value.trim() || this.points[i] ? complaint(input.value, "the line stays as it is") : "";
    const faults = this.inputs.map((inputs, i) => inputs.map((input) => faultOf(input, i)));
    this.inputs.flat().forEach((input, k) => mark(input, this.message, faults.flat()[k]));
    this.message.textContent = faults.flat().find(Boolean) ?? "";
  }

  clear() {
    this.points = [null, null];
    this.wanted = 0;
    for (const input of this.inputs.flat()) input.value = "";
    this.markFaults();
    this.box.hidden = true;
    this.box.replaceChildren();
    this.refresh();
  }

  /** Draws line and chart for the field that is shown. */
  refresh() {
    const { labels, stage } = this.view;
    const marks = this.points.map((place, i) => place && { place, text: "AB"[i] }).filter(Boolean);
    labels.set("line", theme.css("scene-label-load"), marks);
    this.drawLine();
    stage.draw();
    if (marks.length < 2) return;
    const { field, model } = this.view;
    if (Math.hypot(...minus(...this.points)) < LEAST * model.box.size)
      this.hint("A and B are the same place: a line needs two.");
    else if (!field) this.hint("Choose colours: their values are shown along the line.");
    else this.showChart(field);
  }

  drawLine() {
    if (this.line) this.view.stage.scene.remove(this.line);
    this.line = null;
    if (this.points.includes(null)) return;
    const geometry = new THREE.BufferGeometry().setFromPoints(
      this.points.map((place) => new THREE.Vector3(...place)),
    );
    const material = new THREE.LineBasicMaterial({
      color: theme.hex("scene-selected"),
      depthTest: false,
      transparent: true,
    });
    this.line = new THREE.Line(geometry, material);
    this.line.renderOrder = 3;
    this.line.layers.set(DETAIL);
    this.view.stage.scene.add(this.line);
  }

  /** The pieces of the field along the line: see valuesAlongLine. */
  pieces(field) {
    const { model, settings, views } = this.view;
    const context = { model, isShown: settings.isShown, views: views.surfaces, field };
    return valuesAlongLine(context, ...this.points);
  }

  showChart(field) {
    const { model, report } = this.view;
    const pieces = this.pieces(field);
    if (pieces.length === 0) {
      this.hint("The line meets nothing that has values of these colours.");
      return;
    }
    const length = Math.hypot(...minus(this.points[1], this.points[0]));
    const unit = model.units.named ? model.units.length : "";
    const ends = pieces.map(({ from, to, values }) => ({
      from: [from * length, values[0]],
      to: [to * length, values[1]],
    }));
    const saveValues = () =>
      save(
        fileName(...fileBase(report), "line", "csv"),
        [this.csv(field, pieces, length)],
        "text/csv",
      );
    this.box.hidden = false;
    this.box.replaceChildren(
      h(
        "div",
        { class: "chart-head" },
        h("b", {}, `${field.title} from A to B`),
        h(
          "span",
          {},
          h("button", { id: "line-csv", onclick: saveValues }, "CSV"),
          h("button", { onclick: () => this.clear() }, "Close"),
        ),
      ),
      chart(
        ends,
        length,
        { title: "distance from A", unit },
        { title: field.title, unit: field.unit },
      ),
    );
  }

  /** Both ends of each piece, coordinates and values in full digits. */
  csv(field, pieces, length) {
    const { model } = this.view;
    const [a, b] = this.points;
    const cell = (text) => (/[",\n]/.test(text) ? `"${text.replaceAll('"', '""')}"` : text);
    const head = (name, unit) => cell(unit ? `${name} [${unit}]` : name);
    const { length: unit } = model.units;
    const rows = pieces.flatMap(({ from, to, values, element }) =>
      [from, to].map((t, i) => [
        t * length,
        ...a.map((x, k) => x + t * (b[k] - x) + model.box.center[k]),
        values[i],
        model.elements.numbers[element],
      ]),
    );
    const heads = ["distance", "x", "y", "z"].map((name) => head(name, unit));
    const lines = [[...heads, head(field.title, field.unit), "element"], ...rows];
    return lines.map((line) => `${line.join(",")}\n`).join("");
  }
}
