// A field for a number, and the message beside it when the text is no number that can be used.

import { h } from "./dom.js";

const NUMBER = /^[+-]?(\d+\.?\d*|\.\d+)(e[+-]?\d+)?$/i;

/** "1,000" may be 1 or 1000. */
const UNCLEAR = /^[+-]?[1-9]\d{0,2},\d{3}$/;

/** The number of a text, with a point or a comma before the decimals; NaN when it is none. */
export function numberIn(text) {
  const trimmed = text.trim().replace("\u2212", "-");
  const plain = trimmed.replace(",", ".");
  if (!NUMBER.test(plain) || UNCLEAR.test(trimmed)) return NaN;
  const value = Number(plain);
  return Number.isFinite(value) ? value : NaN;
}

/** The message about a text that is no number, and about the value that is in force; "" for a number. */
export function complaint(text, stays) {
  if (!Number.isNaN(numberIn(text))) return "";
  return `${text.trim() || "an empty text"} is no number; ${stays}`;
}

/** A field, as text: browsers hide from the page a text that is no number in fields of numbers. */
export const numberField = (attributes) =>
  h("input", { type: "text", inputmode: "decimal", class: "number", ...attributes });

/** Shows a message beside a field whose text cannot be used; "" takes the message and the mark away. */
export function mark(field, place, message) {
  field.setAttribute("aria-invalid", String(message !== ""));
  place.textContent = message;
}

/** A coordinate as the text of a field: with four digits of the length that the model has there. */
export function coordinateText(value, length) {
  const decimals = 4 - Math.floor(Math.log10(length));
  return String(Number(value.toFixed(Math.min(100, Math.max(0, decimals)))));
}

/** The place of a message, which screen readers tell. */
export const messagePlace = () => h("span", { class: "field-message", role: "status" });
