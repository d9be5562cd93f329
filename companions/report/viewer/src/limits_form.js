// The fields for the limits of the colours. They stay when the legend is drawn again, so that the
// keyboard stays where it is.

import { h } from "./dom.js";
import { complaint, messagePlace, numberField, numberIn } from "./number_field.js";

export class LimitsForm {
  /** ontake([low, high]) is called with typed limits that can be used, ontake(null) by the button. */
  constructor(ontake) {
    const input = (name, text) =>
      numberField({ id: `legend-${name}`, "aria-label": `${text} limit of the colours` });
    this.ontake = ontake;
    this.low = input("low", "lower");
    this.high = input("high", "upper");
    for (const one of this.fields) one.addEventListener("change", () => this.typed());
    this.unit = h("div");
    this.reset = h("button", { id: "legend-reset", onclick: () => this.takeAway() }, "Reset");
    this.message = messagePlace();
    this.element = h(
      "details",
      { class: "limits" },
      h("summary", {}, "Limits"),
      h("label", {}, "to", this.high),
      h("label", {}, "from", this.low),
      this.unit,
      this.reset,
      this.message,
    );
  }

  get fields() {
    return [this.low, this.high];
  }

  /** Shows the limits of a scale; isOther: the field is another one than before. */
  show(field, scale, isTyped, isOther) {
    this.low.value = String(Number(scale.low.toPrecision(6)));
    this.high.value = String(Number(scale.high.toPrecision(6)));
    this.unit.textContent = field.unit ? `in ${field.unit}` : "";
    this.reset.disabled = !isTyped;
    if (isOther) this.element.open = isTyped;
    this.tell("");
  }

  typed() {
    const texts = this.fields.map(({ value }) => value);
    const fault = faultOfLimits(texts);
    this.tell(fault);
    if (!fault) this.ontake(texts.map(numberIn));
  }

  /** The button is of no use afterwards: the keyboard goes to the first field. */
  takeAway() {
    this.ontake(null);
    this.high.focus();
  }

  tell(fault) {
    for (const one of this.fields) one.setAttribute("aria-invalid", String(fault !== ""));
    this.message.textContent = fault;
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
