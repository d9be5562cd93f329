// The legend of the colours: bands between the extremes of the data.

import { BANDS, cssColour } from "./colours.js";
import { format, h } from "./dom.js";

/** Shows a field with its scale and extremes; null hides the legend. */
export function showLegend(element, field, scale, extremes) {
  element.hidden = !field;
  if (!field) return;
  const ticks = 4;
  const bands = Array.from({ length: BANDS }, (_, i) =>
    h("span", { style: `background:${cssColour(scale.band(BANDS - 1 - i))}` }),
  );
  const marks = Array.from({ length: ticks + 1 }, (_, i) => {
    const value = scale.value(1 - i / ticks);
    return h("span", { style: `top:${(100 * i) / ticks}%` }, format(value, i % ticks ? 3 : 6));
  });
  element.dataset.min = extremes.min;
  element.dataset.max = extremes.max;
  element.replaceChildren(
    h(
      "div",
      { class: "legend-title" },
      field.title,
      field.unit ? h("span", {}, ` ${field.unit}`) : null,
    ),
    h(
      "div",
      { class: "legend-scale" },
      h("div", { class: "bands" }, bands),
      h("div", { class: "marks" }, marks),
    ),
    h(
      "div",
      { class: "legend-note" },
      `max at ${extremes.maxAt}`,
      h("br"),
      `min at ${extremes.minAt}`,
    ),
  );
}
