// Numbers as text: with the same number of digits in a column for the eye, and in full for files.

import { powerText } from "./ticks.js";

/** Significant digits of the largest value of a column; no value gets more in a decimal fraction. */
const DIGITS = 5;

/** Significant digits of a value that counts: one of at least FAINT times the largest. */
const LEAST_DIGITS = 3,
  FAINT = 1e-3;

/** Powers of ten of the largest value within which a column is written in full. */
const LOWEST = -5,
  HIGHEST = 4;

/** From here on a value has a power of ten. */
const LARGE = 10 ** (HIGHEST + 1);

/**
 * How a set of values is written: divided by 10^exponent, with `decimals` digits after the point.
 * The exponent is a multiple of three, and 0 unless the largest is very large or very small. The largest gets `digits` significant digits, up to DIGITS
 * where a value that counts would have fewer than three; fewer when no value needs them. So values
 * of a hundredth of the largest always have three.
 */
export function styleOf(values, digits = DIGITS) {
  const largest = largestOf(values);
  if (largest === 0) return { decimals: 0, exponent: 0 };
  const power = powerOf(Number(largest.toPrecision(DIGITS)));
  const exponent = exponentOf(power);
  if (exponent === 0) return { decimals: decimalsOf(values, largest, digits), exponent };
  const scaled = Float64Array.from(values, (value) => divided(value, exponent));
  return { decimals: decimalsOf(scaled, divided(largest, exponent), digits), exponent };
}

/** The common power of ten of values whose largest has the power `power`; 0 for none. */
const exponentOf = (power) => (power >= LOWEST && power <= HIGHEST ? 0 : 3 * Math.floor(power / 3));

const powerOf = (value) => Math.floor(Math.log10(value));

/** value / 10^exponent; powers up to 22 are exact as numbers. */
const divided = (value, exponent) =>
  exponent > 0 ? value / 10 ** exponent : value * 10 ** -exponent;

/** The decimals of values in full. */
function decimalsOf(values, largest, digits) {
  const power = powerOf(largest);
  const ofLeast = LEAST_DIGITS - 1 - powerOf(leastOf(values, FAINT * largest));
  const most = Math.max(0, digits - 1 - power, Math.min(ofLeast, DIGITS - 1 - power));
  return neededDecimals(values, most);
}

/** The largest absolute value that is finite. */
function largestOf(values) {
  let largest = 0;
  for (let i = 0; i < values.length; ++i) {
    const size = Math.abs(values[i]);
    if (size > largest && size < Infinity) largest = size;
  }
  return largest;
}

/** The least absolute value that is not below a bound. */
function leastOf(values, bound) {
  let least = Infinity;
  for (let i = 0; i < values.length; ++i) {
    const size = Math.abs(values[i]);
    if (size < least && size >= bound) least = size;
  }
  return least;
}

/** The least number of decimals, up to `most`, with which all values read as with `most`. */
function neededDecimals(values, most) {
  const scale = 10 ** most;
  let needed = 0;
  for (let i = 0; i < values.length && needed < most; ++i) {
    let whole = Math.abs(Math.round(values[i] * scale));
    let zeros = 0;
    while (whole > 0 && whole % 10 === 0 && zeros < most) {
      whole /= 10;
      ++zeros;
    }
    if (whole > 0) needed = Math.max(needed, most - zeros);
  }
  return needed;
}

/** A value in a style, without the power of ten; an empty text for none. */
function digitsOf(value, { decimals, exponent }) {
  if (value === null || value === undefined || Number.isNaN(value)) return "";
  const text = divided(value, exponent).toFixed(decimals);
  return /^-[0.]*$/.test(text) ? text.slice(1) : text;
}

/**
 * A value in a style, with its power of ten: "123.46×10³"; an empty text for none. Among large values
 * one below LARGE is written in full.
 */
export function styled(value, style) {
  if (style.exponent > 0 && Math.abs(value) < LARGE)
    return digitsOf(value, { decimals: 0, exponent: 0 });
  const text = digitsOf(value, style);
  if (text === "" || style.exponent === 0) return text;
  return value === 0 ? "0" : text + powerText(style.exponent);
}

/** The texts of values that are read together. */
export function styledTogether(values, digits = DIGITS) {
  const style = styleOf(values, digits);
  return Array.from(values, (value) => styled(value, style));
}

/** A single value in at most four significant digits: "1.235\u00d710\u2076", "2.25". */
export const shortText = (value) => styledTogether([Number(value.toPrecision(4))], 4)[0];

/** A rest that rounding leaves: two digits tell its size. */
export function restText(value) {
  if (value === 0) return "0";
  const isUsual = Math.abs(value) >= 0.01 && Math.abs(value) < 100;
  return isUsual ? value.toPrecision(2) : value.toExponential(1);
}

/** A single value in exactly `digits` significant digits, for columns of mixed units. */
export function significant(value, digits = 4) {
  if (value === null || value === undefined || Number.isNaN(value)) return "";
  if (value === 0) return "0";
  const rounded = Number(value.toPrecision(digits));
  const power = powerOf(Math.abs(rounded));
  const exponent = exponentOf(power);
  const decimals = Math.max(0, digits - 1 - power + exponent);
  return divided(rounded, exponent).toFixed(decimals) + powerText(exponent);
}

/** The style that the cells of a column share; null for words and whole numbers. */
function styleOfColumn(column) {
  if (column.words || column.isInteger) return null;
  return (column.style ??= styleOf(valuesWith(column)));
}

/** The values of a column and of those that are read together with it. */
function valuesWith({ values, partner }) {
  if (!partner) return values;
  const all = new Float64Array(values.length + partner.values.length);
  all.set(values);
  all.set(partner.values, values.length);
  return all;
}

/** The unit of a column with the power of ten of its cells: "×10³ kN". */
export const unitOfColumn = (column) =>
  [powerText(styleOfColumn(column)?.exponent ?? 0), column.unit].filter(Boolean).join(" ");

/** The text of a cell; numbers of a column have the same number of decimals and the power of ten of its head. */
export function cellText(column, row) {
  const cell = column.cell(row);
  if (cell === null) return "";
  if (column.words) return cell.replaceAll("_", " ");
  if (column.name === "hinge_code") return String(cell).padStart(2, "0"); // 01: a hinge at end 1
  const style = styleOfColumn(column);
  return style ? digitsOf(cell, style) : String(cell);
}

/**
 * The fewest digits that give the same number again, with or without an exponent, whichever is
 * shorter: the way in which the files of the command line have numbers.
 */
export function shortest(value) {
  if (Number.isNaN(value)) return "";
  if (Object.is(value, -0)) return "-0";
  if (value === 0 || !Number.isFinite(value)) return String(value).replace("Infinity", "inf");
  const [, sign, mantissa, power] = value.toExponential().match(/^(-?)([\d.]+)e([+-]\d+)$/);
  const digits = mantissa.replace(".", "");
  const exponent = Number(power);
  const plain = plainText(value, digits, exponent);
  const size = String(Math.abs(exponent)).padStart(2, "0");
  const scientific = `${mantissa}e${exponent < 0 ? "-" : "+"}${size}`;
  return sign + (plain.length <= scientific.length ? plain : scientific);
}

/** Digits d.ddd·10^exponent without an exponent; large whole numbers exactly. */
function plainText(value, digits, exponent) {
  if (exponent < 0) return `0.${"0".repeat(-exponent - 1)}${digits}`;
  if (digits.length > exponent + 1)
    return `${digits.slice(0, exponent + 1)}.${digits.slice(exponent + 1)}`;
  return BigInt(Math.abs(value)).toString();
}
