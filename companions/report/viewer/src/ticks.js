// Round numbers for scales: steps of 1, 2 or 5 times a power of ten, and the texts of their ticks.

/** The least step of 1, 2, 5 times a power of ten that is at least `value` (> 0). */
export function roundStep(value) {
  const power = 10 ** Math.floor(Math.log10(value));
  return ([1, 2, 5].find((step) => step * power >= value * (1 - 1e-9)) ?? 10) * power;
}

/** The multiples of a step from low to high, both included where they are multiples. */
export function ticksBetween(low, high, step) {
  const ticks = [];
  for (let i = Math.ceil(low / step - 1e-6); i <= high / step + 1e-6; ++i) ticks.push(i * step);
  return ticks;
}

const SUPERSCRIPTS = "\u2070\u00b9\u00b2\u00b3\u2074\u2075\u2076\u2077\u2078\u2079";

/** "×10⁶" of the exponent 6; "" of 0. */
export function powerText(exponent) {
  if (exponent === 0) return "";
  const digits = [...String(Math.abs(exponent))].map((digit) => SUPERSCRIPTS[digit]).join("");
  return `\u00d710${exponent < 0 ? "\u207b" : ""}${digits}`;
}

/**
 * How to write the numbers of one scale: {text(value), factor}. All have the same decimals, the
 * largest has at least three digits. Very large and very small numbers have a common power of ten,
 * a multiple of 3, in `factor` ("" or "×10⁶").
 */
export function numberStyle(low, high, step) {
  const largest = Math.max(Math.abs(low), Math.abs(high)) || 1;
  const exponent =
    largest >= 1e5 || largest < 1e-2 ? 3 * Math.floor(Math.log10(largest) / 3 + 1e-9) : 0;
  const power = 10 ** exponent;
  const decimalsOfStep = Math.ceil(-Math.log10(step / power) - 1e-9);
  const decimalsOfLargest = 2 - Math.floor(Math.log10(largest / power) + 1e-9);
  const decimals = Math.max(0, decimalsOfStep, decimalsOfLargest);
  return {
    text: (value) => (value / power).toFixed(decimals).replace(/^-(0(\.0*)?)$/, "$1"),
    factor: powerText(exponent),
  };
}
