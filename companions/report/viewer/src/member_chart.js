// The drawing of one quantity along a member: a curve, or the band between the two of an envelope.

import { svg } from "./dom.js";

const WIDTH = 400,
  HEIGHT = 76,
  LEFT = 8,
  RIGHT = 8;

/** Lines between beams are left out when they would be closer than this, in units of the drawing. */
const CLOSEST = 3;

/** Space that a number takes: part of the length, and units of the drawing. */
const TEXT_WIDTH = 0.12,
  TEXT_HEIGHT = 11;

/** The position along the member, from 0 to 1, of a place across the drawing, from 0 to 1. */
export const positionAt = (across) => (across * WIDTH - LEFT) / (WIDTH - LEFT - RIGHT);

const xOf = (position) => LEFT + position * (WIDTH - LEFT - RIGHT);

/** Polygon pieces of one sign each, so that they can be coloured. */
function pieces(values, x) {
  const found = [];
  let piece = [[x(0), values[0]]];
  const close = () => {
    if (piece.length > 1) found.push(piece);
  };
  for (let i = 1; i < values.length; ++i) {
    if (values[i - 1] * values[i] < 0) {
      const t = values[i - 1] / (values[i - 1] - values[i]);
      const zero = [x(i - 1) + t * (x(i) - x(i - 1)), 0];
      piece.push(zero);
      close();
      piece = [zero];
    }
    piece.push([x(i), values[i]]);
  }
  close();
  return found;
}

/** The height in the drawing of a value. */
function heightsOf({ extremes, up, noise }) {
  const min = Math.min(...extremes.map((one) => one.min)),
    max = Math.max(...extremes.map((one) => one.max));
  const largest = Math.max(-min, max, noise) || 1;
  const [low, high] =
    up > 0 ? [Math.min(0, min), Math.max(0, max)] : [Math.min(0, -max), Math.max(0, -min)];
  const span = Math.max(high - low, noise) || largest;
  return { largest, y: (value) => 18 + ((high - up * value) / span) * (HEIGHT - 36) };
}

const pointText = (px, py) => `${px.toFixed(2)},${py.toFixed(2)}`;

function areasOf(values, x, y) {
  return pieces(values, x).map((piece) => {
    const sign = piece.some(([, value]) => value < 0) ? "negative" : "positive";
    const points = piece.map(([px, value]) => pointText(px, y(value)));
    const feet = [pointText(piece[piece.length - 1][0], y(0)), pointText(piece[0][0], y(0))];
    return svg("polygon", { points: [...points, ...feet].join(" "), class: sign });
  });
}

/** The range between the least and the largest values, and its two borders. */
function bandOf([low, high], x, y) {
  const line = (values) => Array.from(values, (value, i) => pointText(x(i), y(value)));
  const [below, above] = [line(low), line(high)];
  return [
    svg("polygon", { points: [...below, ...[...above].reverse()].join(" "), class: "band" }),
    svg("polyline", { points: below.join(" "), class: "negative line" }),
    svg("polyline", { points: above.join(" "), class: "positive line" }),
  ];
}

/** A dot and a number at a value, the number above or below it. */
function markOf(position, value, above, y, text) {
  const anchor = position < 0.06 ? "start" : position > 0.94 ? "end" : "middle";
  return [
    svg("circle", { cx: xOf(position), cy: y(value), r: 2 }),
    svg(
      "text",
      { x: xOf(position), y: y(value) + (above ? -5 : 13), "text-anchor": anchor },
      text(value),
    ),
  ];
}

/** Marked are the ends and the extremes that differ from them; of an envelope only its extremes. */
function marksOf({ positions, curves, extremes, up, text }, { largest, y }) {
  const mark = (values, i, above) => markOf(positions[i], values[i], above, y, text);
  if (curves.length > 1) {
    const [low, high] = extremes;
    const marks = mark(curves[1].values, high.maxAt, up > 0);
    if (high.max - low.min > 1e-3 * largest)
      marks.push(...mark(curves[0].values, low.minAt, up < 0));
    return marks;
  }
  const [{ values }] = curves,
    [{ minAt, maxAt }] = extremes;
  const last = values.length - 1;
  const covers = (i) => (j) =>
    Math.abs(positions[i] - positions[j]) < TEXT_WIDTH &&
    Math.abs(y(values[i]) - y(values[j])) < TEXT_HEIGHT;
  const isNear = (i) => (end) => Math.abs(values[end] - values[i]) < 1e-3 * largest;
  const shown = [0, last];
  for (const i of new Set([minAt, maxAt]))
    if (!shown.some(covers(i)) && ![0, last].some(isNear(i))) shown.push(i);
  return shown.flatMap((i) => mark(values, i, up * values[i] >= 0));
}

/** Lines where one beam ends and the next begins, and the range of the chosen beam. */
function beamsOf({ borders, chosen, isOne }) {
  if (isOne) return [];
  const [from, to] = chosen.map(xOf);
  const range = { x: from, y: 2, width: to - from, height: HEIGHT - 4, class: "own" };
  const lines = [];
  let last = -Infinity;
  for (const x of borders.map(xOf)) {
    if (x - last < CLOSEST) continue;
    lines.push(svg("line", { x1: x, x2: x, y1: 4, y2: HEIGHT - 4, class: "border" }));
    last = x;
  }
  return [svg("rect", range), ...lines];
}

/**
 * Draws a diagram: {positions, curves, extremes, drawn, up, noise, text, borders, chosen, isOne}. positions: of its
 * points, from 0 to 1; drawn: the points that the curves pass; extremes: of each curve; text(value); borders: positions
 * between beams; chosen: the two ends of the chosen beam. Returns the drawing and moveTo(position) of its line.
 */
export function drawChart(diagram) {
  const { positions, curves, drawn } = diagram;
  const heights = heightsOf(diagram);
  const { y } = heights;
  const x = (i) => xOf(positions[drawn[i]]);
  const shown = curves.map(({ values }) => Float64Array.from(drawn, (i) => values[i]));
  const cursor = svg("line", { y1: 4, y2: HEIGHT - 4, class: "cursor", visibility: "hidden" });
  const drawing = svg(
    "svg",
    {
      viewBox: `0 0 ${WIDTH} ${HEIGHT}`,
      class: "diagram",
      role: "img",
      "aria-label": diagram.title,
    },
    beamsOf(diagram),
    curves.length > 1 ? bandOf(shown, x, y) : areasOf(shown[0], x, y),
    svg("line", { x1: LEFT, x2: WIDTH - RIGHT, y1: y(0), y2: y(0), class: "axis" }),
    marksOf(diagram, heights),
    cursor,
  );
  const moveTo = (position) => {
    cursor.setAttribute("x1", xOf(position));
    cursor.setAttribute("x2", xOf(position));
    cursor.setAttribute("visibility", "visible");
  };
  return { drawing, moveTo };
}
