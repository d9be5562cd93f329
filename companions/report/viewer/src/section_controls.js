// The menu of the section cut: direction and place of the plane, and the handle that drags it.

import { h, select } from "./dom.js";
import { unit } from "./model.js";
import {
  complaint,
  coordinateText,
  mark,
  messagePlace,
  numberField,
  numberIn,
} from "./number_field.js";

const AXES = { x: [1, 0, 0], y: [0, 1, 0], z: [0, 0, 1] };
const STEPS = 1000; // of the slider
const SLACK = 1e-4; // of the model's length: a typed place may be rounded as the shown ones are

export class SectionControls {
  /** onchange() is called when the plane has changed. */
  constructor(stage, model, onchange) {
    Object.assign(this, { stage, model, onchange });
    this.viewNormal = [0, 1, 0];
    this.sign = 1;
    this.axis = select(
      "cut-axis",
      [
        ["", "no cut"],
        ["x", "across X"],
        ["y", "across Y"],
        ["z", "across Z"],
        ["view", "along the view"],
      ],
      () => this.begin(),
    );
    this.axis.setAttribute("aria-label", "direction of the cut");
    this.slider = h("input", {
      type: "range",
      id: "cut-slider",
      min: 0,
      max: STEPS,
      step: 1,
      value: STEPS / 2,
      "aria-label": "place of the cut",
    });
    this.slider.addEventListener("input", () =>
      this.place(this.low + (this.slider.value / STEPS) * this.length),
    );
    this.number = numberField({ id: "cut-place", "aria-label": "place of the cut" });
    this.message = messagePlace();
    this.number.addEventListener("change", () => this.typed());
    this.flip = h("button", { id: "cut-flip", onclick: () => this.turn() }, "Other side");
    this.rows = h(
      "div",
      { class: "cut-rows", hidden: true },
      h("div", {}, this.slider),
      h("label", {}, "at", this.number, model.units.named ? model.units.length : ""),
      this.flip,
      this.message,
    );
    this.handle = h("button", { class: "cut-handle", hidden: true, "aria-label": "drag the cut" });
    stage.container.append(this.handle);
    this.listen();
    stage.onFrame(() => this.placeHandle());
  }

  get controls() {
    return [this.axis, this.rows];
  }

  /** {normal, offset} of the plane; null without. */
  get plane() {
    if (!this.axis.value) return null;
    return { normal: this.normal.map((x) => this.sign * x), offset: this.sign * this.offset };
  }

  get normal() {
    return AXES[this.axis.value] ?? this.viewNormal;
  }

  /** From the number that is shown to the offset: a coordinate, or a distance from the model's middle. */
  get shift() {
    const k = "xyz".indexOf(this.axis.value);
    return k < 0 ? 0 : this.model.box.center[k];
  }

  /** A new direction: through the middle. Along the view: across the direction of sight, as it is now. */
  begin() {
    const { model } = this;
    if (this.axis.value === "view") this.viewNormal = unit(this.stage.sight);
    let [low, high] = [Infinity, -Infinity];
    for (let i = 0; i < model.local.length; i += 3) {
      const x = this.normal.reduce((sum, n, k) => sum + n * model.local[i + k], 0);
      low = Math.min(low, x);
      high = Math.max(high, x);
    }
    this.low = low;
    this.length = high - low || 1;
    this.sign = this.seesFrontOf(this.normal) ? 1 : -1;
    this.rows.hidden = !this.axis.value;
    this.place((low + high) / 2);
  }

  /** What lies before the plane is left out at first. */
  seesFrontOf(normal) {
    return normal.reduce((sum, n, k) => sum + n * this.stage.sight[k], 0) >= 0;
  }

  /** Takes the typed place, or tells why it cannot. */
  typed() {
    const { value: text } = this.number;
    const fault = this.faultOf(text);
    if (fault) mark(this.number, this.message, fault);
    else this.place(numberIn(text) - this.shift);
  }

  /** The message about a typed place that cannot be used; "" for one that can. */
  faultOf(text) {
    const { low, length, shift } = this;
    const stays = `${this.textOf(this.offset)} stays`;
    const noNumber = complaint(text, stays);
    if (noNumber) return noNumber;
    const part = (numberIn(text) - shift - low) / length;
    if (part >= -SLACK && part <= 1 + SLACK) return "";
    const [first, last] = [low, low + length].map((offset) => this.textOf(offset));
    return `${text.trim()} is outside the model, from ${first} to ${last}; ${stays}`;
  }

  /** The shown number of an offset. */
  textOf(offset) {
    return coordinateText(offset + this.shift, this.length);
  }

  /** Moves the plane; beyond the model it stays at the model's end. */
  place(offset) {
    this.offset = Math.min(this.low + this.length, Math.max(this.low, offset));
    this.slider.value = String(((this.offset - this.low) / this.length) * STEPS);
    this.number.value = this.textOf(this.offset);
    mark(this.number, this.message, "");
    this.onchange();
  }

  turn() {
    this.sign = -this.sign;
    this.onchange();
  }

  /** A point of the plane, where the handle is. */
  get middle() {
    return this.normal.map((n) => n * this.offset);
  }

  placeHandle() {
    this.handle.hidden = !this.axis.value;
    if (this.handle.hidden) return;
    const [x, y] = this.stage.project(this.middle);
    const inside = (value, most) => Math.min(most - 16, Math.max(16, value));
    this.handle.style.left = `${inside(x, this.stage.width)}px`;
    this.handle.style.top = `${inside(y, this.stage.height)}px`;
  }

  listen() {
    const { handle } = this;
    handle.addEventListener("pointerdown", (event) => {
      handle.setPointerCapture(event.pointerId);
      this.last = [event.clientX, event.clientY];
    });
    handle.addEventListener("pointermove", (event) => {
      if (!handle.hasPointerCapture(event.pointerId)) return;
      this.drag(event.clientX - this.last[0], event.clientY - this.last[1]);
      this.last = [event.clientX, event.clientY];
    });
    handle.addEventListener("keydown", ({ key }) => {
      const step = { ArrowUp: 1, ArrowRight: 1, ArrowDown: -1, ArrowLeft: -1 }[key];
      if (step) this.place(this.offset + 0.01 * step * this.length);
    });
  }

  /** Moves the plane with the pointer; across a direction that points at the eye, upward is nearer. */
  drag(dx, dy) {
    const from = this.stage.project([0, 0, 0]),
      to = this.stage.project(this.normal.map((n) => n * this.length));
    const [x, y] = [(to[0] - from[0]) / this.length, (to[1] - from[1]) / this.length]; // pixels a length
    const size = Math.hypot(x, y);
    const least = 0.2 / this.stage.pixel;
    this.place(
      this.offset + (size < least ? -dy * this.stage.pixel : (dx * x + dy * y) / (size * size)),
    );
  }
}
