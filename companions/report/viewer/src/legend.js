// The legend of the colours: bands between round numbers, the extremes of the data, and the limits
// of the colours, which can be typed.

import { cssColour } from "./colours.js";
import { h } from "./dom.js";
import { LimitsForm } from "./limits_form.js";
import { numberStyle, ticksBetween } from "./ticks.js";

export class Legend {
  /** onchange() is called when limits have changed. */
  constructor(onchange) {
    this.onchange = onchange;
    this.drawing = h("div");
    this.form = new LimitsForm((limits) => this.take(limits));
    this.element = h(
      "div",
      { class: "legend", id: "legend", hidden: true },
      this.drawing,
      this.form.element,
    );
    this.field = null;
    this.limits = new Map(); // [low, high] by field
    this.content = null; // what is shown: {title, unit, bands, marks, notes}
  }

  /** The typed limits of a field; null without. */
  limitsOf(field) {
    return this.limits.get(field.id) ?? null;
  }

  /** Takes typed limits of the shown field; null takes them away. */
  take(limits) {
    if (limits) this.limits.set(this.field.id, limits);
    else this.limits.delete(this.field.id);
    this.onchange();
  }

  /** Shows a field with its scale and extremes; null hides the legend. */
  show(field, scale, extremes) {
    this.element.hidden = !field;
    const isTyped = field && this.limitsOf(field) !== null;
    this.content = field && contentOf(field, scale, extremes, isTyped);
    const isOther = field?.id !== this.field?.id;
    this.field = field;
    if (!field) return;
    this.element.dataset.min = extremes.min;
    this.element.dataset.max = extremes.max;
    const { title, unit, bands, marks, notes } = this.content;
    this.drawing.replaceChildren(
      h("div", { class: "legend-title" }, title, unit ? h("span", {}, ` ${unit}`) : null),
      h(
        "div",
        { class: "legend-scale" },
        h(
          "div",
          { class: "bands" },
          bands.map(({ rgb, part }) =>
            h("span", { style: `background:${cssColour(rgb)};flex:${part}` }),
          ),
        ),
        h(
          "div",
          { class: "marks" },
          marks.map(({ text, place }) => h("span", { style: `top:${100 * place}%` }, text)),
        ),
      ),
      h(
        "div",
        { class: "legend-note" },
        notes.map((line) => h("div", {}, line)),
      ),
    );
    this.form.show(field, scale, isTyped, isOther);
  }
}

/** A value far beyond typed limits, or far below them, without the power of ten of the scale. */
const unscaled = (value, unit) => [value.toExponential(2), unit].filter(Boolean).join(" ");

/** Bands from above with their parts of the height, marks with their places (0 above, 1 below). */
function contentOf(field, scale, extremes, isTyped) {
  const { low, high, step } = scale;
  const { text, factor } = numberStyle(low, high, step);
  const bands = [];
  for (let i = scale.bands - 1; i >= 0; --i) {
    const part = Math.min(high, scale.limit(i + 1)) - Math.max(low, scale.limit(i));
    bands.push({ rgb: scale.band(i), part: part / (high - low) });
  }
  const every = scale.bands > 7 ? 2 : 1;
  const ticks = ticksBetween(low, high, every * step).reverse();
  const marks = ticks.map((value) => ({
    text: text(value),
    place: (high - value) / (high - low),
  }));
  const isLost = (value) =>
    isTyped && value !== 0 && Math.abs(value) < 0.1 * Math.max(Math.abs(low), Math.abs(high));
  const short = (value) =>
    text(value).length > 8 || isLost(value) ? unscaled(value, field.unit) : text(value);
  const at = (name, place) => `${name} ${short(extremes[name])} at ${place}`;
  return {
    title: field.title,
    unit: [factor, field.unit].filter(Boolean).join(" "),
    bands,
    marks,
    notes: [
      at("max", extremes.maxAt),
      at("min", extremes.minAt),
      extremes.isOfAll ? "of all elements, hidden ones too" : null,
      scale.cutsAbove ? `\u25b2 the colour above holds for more than ${text(high)}` : null,
      scale.cutsBelow ? `\u25bc the colour below holds for less than ${text(low)}` : null,
    ].filter(Boolean),
  };
}
