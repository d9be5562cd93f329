// The legend of the colours: bands between round numbers, the extremes of the data, and the limits
// of the colours, which can be typed.

import { cssColour } from "./colours.js";
import { h } from "./dom.js";
import { complaint, messagePlace, numberField, numberIn } from "./number_field.js";
import { numberStyle, ticksBetween } from "./ticks.js";

export class Legend {
  /** onchange() is called when limits have changed. */
  constructor(onchange) {
    this.onchange = onchange;
    this.element = h("div", { class: "legend", id: "legend", hidden: true });
    this.limits = new Map(); // [low, high] by field
    this.content = null; // what is shown: {title, unit, bands, marks, notes}
  }

  /** The typed limits of a field; null without. */
  limitsOf(field) {
    return this.limits.get(field.id) ?? null;
  }

  /** Shows a field with its scale and extremes; null hides the legend. */
  show(field, scale, extremes) {
    this.element.hidden = !field;
    this.content = field && contentOf(field, scale, extremes);
    if (!field) return;
    this.element.dataset.min = extremes.min;
    this.element.dataset.max = extremes.max;
    const { title, unit, bands, marks, notes } = this.content;
    this.element.replaceChildren(
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
      this.form(field, scale),
    );
  }

  /** Two numbers and a button that takes them away. */
  form(field, scale) {
    const input = (name, value) =>
      numberField({
        id: `legend-${name}`,
        value: String(Number(value.toPrecision(6))),
        "aria-label": `${name === "low" ? "lower" : "upper"} limit of the colours`,
      });
    const low = input("low", scale.low),
      high = input("high", scale.high);
    const message = messagePlace();
    const take = () => {
      const texts = [low.value, high.value];
      const fault = faultOfLimits(texts);
      for (const one of [low, high]) one.setAttribute("aria-invalid", String(fault !== ""));
      message.textContent = fault;
      if (fault) return;
      this.limits.set(field.id, texts.map(numberIn));
      this.onchange();
    };
    for (const one of [low, high]) one.addEventListener("change", take);
    const reset = () => {
      this.limits.delete(field.id);
      this.onchange();
    };
    return h(
      "details",
      { class: "limits", open: this.limitsOf(field) !== null },
      h("summary", {}, "Limits"),
      h("label", {}, "to", high),
      h("label", {}, "from", low),
      field.unit ? h("div", {}, `in ${field.unit}`) : null,
      h(
        "button",
        { id: "legend-reset", disabled: this.limitsOf(field) === null, onclick: reset },
        "Reset",
      ),
      message,
    );
  }
}

/** The message about the typed lower and upper limit; "" for limits that can be used. */
function faultOfLimits(texts) {
  const stays = "the colours stay as they are";
  const noNumber = texts.map((text) => complaint(text, stays)).find(Boolean);
  if (noNumber) return noNumber;
  const [low, high] = texts.map(numberIn);
  if (low < high) return "";
  return `The lower limit ${low} is not below the upper limit ${high}; ${stays}`;
}

/** A value far beyond typed limits, without the power of ten of the scale. */
const unscaled = (value, unit) => [value.toExponential(2), unit].filter(Boolean).join(" ");

/** Bands from above with their parts of the height, marks with their places (0 above, 1 below). */
function contentOf(field, scale, extremes) {
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
  const short = (value) => (text(value).length > 8 ? unscaled(value, field.unit) : text(value));
  const at = (name, place) => `${name} ${short(extremes[name])} at ${place}`;
  return {
    title: field.title,
    unit: [factor, field.unit].filter(Boolean).join(" "),
    bands,
    marks,
    notes: [
      at("max", extremes.maxAt),
      at("min", extremes.minAt),
      scale.cutsAbove ? `\u25b2 the colour above holds for more than ${text(high)}` : null,
      scale.cutsBelow ? `\u25bc the colour below holds for less than ${text(low)}` : null,
    ].filter(Boolean),
  };
}
