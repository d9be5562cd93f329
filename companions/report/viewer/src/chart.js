// A chart of values over a length, in pieces that may jump at their ends.

import { h, svg } from "./dom.js";
import { numberStyle, roundStep, ticksBetween } from "./ticks.js";

const WIDTH = 760,
  HEIGHT = 210,
  LEFT = 74,
  RIGHT = 14,
  TOP = 12,
  BOTTOM = 38;

/** Ticks of an axis: the range, and the numbers with their texts. */
function axisOf(low, high, count) {
  const step = roundStep((high - low || Math.abs(high) || 1) / count);
  const [from, to] = [Math.floor(low / step + 1e-9) * step, Math.ceil(high / step - 1e-9) * step];
  const style = numberStyle(from, to, step);
  return { from, to: to > from ? to : from + step, ticks: ticksBetween(from, to, step), style };
}

/**
 * points: pieces {from: [x, y], to: [x, y]}; x, y: {title, unit} of the axes. The element has the
 * drawing, and under it the values at the pointer.
 */
export function chart(pieces, length, x, y) {
  const values = pieces.flatMap(({ from, to }) => [from[1], to[1]]);
  const across = { ...axisOf(0, length, 8), to: length };
  const up = axisOf(Math.min(0, ...values), Math.max(0, ...values), 5);
  const px = (value) => LEFT + ((WIDTH - LEFT - RIGHT) * value) / length;
  const py = (value) => TOP + ((HEIGHT - TOP - BOTTOM) * (up.to - value)) / (up.to - up.from);
  const titled = ({ title, unit }, { factor }) => [title, factor, unit].filter(Boolean).join(" ");
  const cursor = svg("line", {
    class: "cursor",
    y1: TOP,
    y2: HEIGHT - BOTTOM,
    visibility: "hidden",
  });
  const drawing = svg(
    "svg",
    {
      class: "diagram chart",
      viewBox: `0 0 ${WIDTH} ${HEIGHT}`,
      role: "img",
      "aria-label": y.title,
    },
    up.ticks
      .map((value) => [
        svg("line", { class: "grid", x1: LEFT, x2: WIDTH - RIGHT, y1: py(value), y2: py(value) }),
        svg("text", { x: LEFT - 6, y: py(value) + 4, "text-anchor": "end" }, up.style.text(value)),
      ])
      .flat(),
    across.ticks
      .filter((value) => value <= length * (1 + 1e-9))
      .map((value) => [
        svg("line", { class: "grid", x1: px(value), x2: px(value), y1: TOP, y2: HEIGHT - BOTTOM }),
        svg(
          "text",
          { x: px(value), y: HEIGHT - BOTTOM + 15, "text-anchor": "middle" },
          across.style.text(value),
        ),
      ])
      .flat(),
    svg(
      "text",
      { x: (LEFT + WIDTH - RIGHT) / 2, y: HEIGHT - 6, "text-anchor": "middle" },
      titled(x, across.style),
    ),
    svg(
      "text",
      {
        x: 12,
        y: (TOP + HEIGHT - BOTTOM) / 2,
        "text-anchor": "middle",
        transform: `rotate(-90 12 ${(TOP + HEIGHT - BOTTOM) / 2})`,
      },
      titled(y, up.style),
    ),
    svg("line", { class: "axis", x1: LEFT, x2: WIDTH - RIGHT, y1: py(0), y2: py(0) }),
    svg("path", { class: "curve", d: path(pieces, px, py) }),
    cursor,
  );
  const readout = h("div", { class: "readout" });
  drawing.addEventListener("pointermove", (event) => {
    const box = drawing.getBoundingClientRect();
    const place =
      ((event.clientX - box.left) * (WIDTH / box.width) - LEFT) / (WIDTH - LEFT - RIGHT);
    const at = Math.min(1, Math.max(0, place)) * length;
    cursor.setAttribute("x1", px(at));
    cursor.setAttribute("x2", px(at));
    cursor.setAttribute("visibility", "visible");
    readout.textContent = textAt(pieces, at, x, y);
  });
  return h("div", {}, drawing, readout);
}

/** Neighbouring pieces that meet are one line. */
function path(pieces, px, py) {
  const point = ([a, b]) => `${px(a).toFixed(2)} ${py(b).toFixed(2)}`;
  let last = "";
  return pieces
    .map(({ from, to }) => {
      const start = point(from) === last ? "" : `M${point(from)}`;
      last = point(to);
      return `${start}L${last}`;
    })
    .join("");
}

function textAt(pieces, at, x, y) {
  const found = pieces.filter(({ from, to }) => from[0] <= at && at <= to[0]);
  const value = ({ from, to }) =>
    from[1] + ((at - from[0]) / (to[0] - from[0])) * (to[1] - from[1]);
  const text = (number, unit) => `${Number(number.toPrecision(4))}${unit ? ` ${unit}` : ""}`;
  const values = [...new Set(found.map((piece) => text(value(piece), y.unit)))];
  return `at ${text(at, x.unit)}: ${values.join(" and ") || "no value"}`;
}
