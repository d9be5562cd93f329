// What has been clicked: the diagrams of a beam, or the values of a shell or solid.

import { DIAGRAMS, curvesOf, hasDiagram } from "./diagrams.js";
import { listenAlong } from "./diagram_keys.js";
import { format, h, svg, withUnit } from "./dom.js";
import { extremesOf } from "./fields.js";
import { BEAM, SHELL, dot } from "./model.js";

const WIDTH = 400,
  HEIGHT = 76,
  LEFT = 8,
  RIGHT = 8;

const NOTHING = 1e-6; // of the largest value in the model: what only rounding has left is drawn flat

const isMoment = (name) => /^[TM]/.test(name);

function largestOf(model, names) {
  const curves = names.flatMap((name) => curvesOf(model.diagrams, name));
  return curves.reduce(
    (largest, { values }) => values.reduce((a, b) => Math.max(a, Math.abs(b)), largest),
    0,
  );
}

/**
 * The diagrams of a member: {name, title, unit, positive, curves, up, least}; curves: {label, values,
 * by}, two of an envelope, whose `by` names the combination that governs at a point; up: sign of the
 * drawing; least: the smallest range that is drawn in full height.
 */
function diagramsOf(model, element) {
  if (!model.diagrams) return []; // without results
  const b = model.beamOf.get(element),
    { points } = model;
  const force = largestOf(model, ["N", "Vy", "Vz"]),
    moment = largestOf(model, ["T", "My", "Mz"]);
  const part = ({ label, values, by }) => ({
    label,
    values: Float64Array.from(values.subarray(b * points, (b + 1) * points)),
    by: by ? (i) => by.cell(b * points + i) : null,
  });
  const all = Object.entries(DIAGRAMS)
    .filter(([name]) => hasDiagram(model.diagrams, name))
    .map(([name, { title, positive, sign }]) => {
      const curves = curvesOf(model.diagrams, name);
      const least = NOTHING * (isMoment(name) ? moment : force);
      const { unit } = curves[0];
      return { name, title, positive, unit, curves: curves.map(part), up: sign, least };
    });
  if (all.some(({ curves }) => curves.length > 1)) return all;
  const [, y, z] = model.beamAxes(element);
  const along = (axis) =>
    Float64Array.from({ length: points }, (_, i) => {
      const place = 3 * (b * points + i);
      return dot(model.beamDisplacements.subarray(place, place + 3), axis);
    });
  const deflection = (axis, name) => ({
    name,
    title: `Deflection ${name}`,
    positive: `along +${name[1]}\u2032`,
    unit: model.units.length,
    curves: [{ label: "", values: along(axis), by: null }],
    up: 1,
    least: NOTHING * model.largest,
  });
  all.push(deflection(y, "uy\u2032"));
  if (!model.plane) all.push(deflection(z, "uz\u2032"));
  return all;
}

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
      const zero = [x(i - 1 + t), 0];
      piece.push(zero);
      close();
      piece = [zero];
    }
    piece.push([x(i), values[i]]);
  }
  close();
  return found;
}

/** The places of values in the drawing: x of a point, y of a value. */
function scalesOf({ curves, up, least }) {
  const ranges = curves.map(({ values }) => extremesOf(values));
  const min = Math.min(...ranges.map((range) => range.min)),
    max = Math.max(...ranges.map((range) => range.max));
  const largest = Math.max(-min, max, least) || 1;
  const [low, high] =
    up > 0 ? [Math.min(0, min), Math.max(0, max)] : [Math.min(0, -max), Math.max(0, -min)];
  const span = Math.max(high - low, least) || largest;
  const last = curves[0].values.length - 1;
  return {
    largest,
    x: (i) => LEFT + (i / last) * (WIDTH - LEFT - RIGHT),
    y: (value) => 18 + ((high - up * value) / span) * (HEIGHT - 36),
  };
}

const pointText = (px, py) => `${px.toFixed(2)},${py.toFixed(2)}`;

function areasOf({ values }, { x, y }) {
  return pieces(values, x).map((piece) => {
    const sign = piece.some(([, value]) => value < 0) ? "negative" : "positive";
    const points = piece.map(([px, value]) => pointText(px, y(value)));
    const feet = [pointText(piece[piece.length - 1][0], y(0)), pointText(piece[0][0], y(0))];
    return svg("polygon", { points: [...points, ...feet].join(" "), class: sign });
  });
}

/** The range between the least and the largest values, and its two borders. */
function bandOf([low, high], { x, y }) {
  const line = ({ values }) => Array.from(values, (value, i) => pointText(x(i), y(value)));
  const [below, above] = [line(low), line(high)];
  return [
    svg("polygon", { points: [...below, ...[...above].reverse()].join(" "), class: "band" }),
    svg("polyline", { points: below.join(" "), class: "negative line" }),
    svg("polyline", { points: above.join(" "), class: "positive line" }),
  ];
}

/** A dot and a number at a point of a curve, the number above or below it. */
function markOf(values, i, above, { x, y }) {
  const last = values.length - 1;
  return [
    svg("circle", { cx: x(i), cy: y(values[i]), r: 2 }),
    svg(
      "text",
      {
        x: x(i),
        y: y(values[i]) + (above ? -5 : 13),
        "text-anchor": i === 0 ? "start" : i === last ? "end" : "middle",
      },
      format(values[i], 4),
    ),
  ];
}

/** Marked are the ends and the extremes that differ from them; of an envelope only its extremes. */
function marksOf({ curves, up }, scales) {
  if (curves.length > 1) {
    const [low, high] = curves.map(({ values }) => values);
    const { min } = extremesOf(low),
      { max } = extremesOf(high);
    // The first of points that differ by rounding only.
    const firstAt = (values, extreme) =>
      values.findIndex((value) => Math.abs(value - extreme) <= 1e-9 * scales.largest);
    const marks = markOf(high, firstAt(high, max), up > 0, scales);
    if (max - min > 1e-3 * scales.largest)
      marks.push(...markOf(low, firstAt(low, min), up < 0, scales));
    return marks;
  }
  const [{ values }] = curves;
  const { minAt, maxAt } = extremesOf(values);
  const last = values.length - 1;
  const isNear = (i) => (end) => Math.abs(values[end] - values[i]) < 1e-3 * scales.largest;
  return [...new Set([0, last, minAt, maxAt])]
    .filter((i) => i === 0 || i === last || ![0, last].some(isNear(i)))
    .flatMap((i) => markOf(values, i, up * values[i] >= 0, scales));
}

function drawDiagram(diagram) {
  const scales = scalesOf(diagram);
  const { curves } = diagram;
  const cursor = svg("line", { y1: 4, y2: HEIGHT - 4, class: "cursor", visibility: "hidden" });
  const axis = { x1: LEFT, x2: WIDTH - RIGHT, y1: scales.y(0), y2: scales.y(0), class: "axis" };
  const drawing = svg(
    "svg",
    { viewBox: `0 0 ${WIDTH} ${HEIGHT}`, class: "diagram" },
    curves.length > 1 ? bandOf(curves, scales) : areasOf(curves[0], scales),
    svg("line", axis),
    marksOf(diagram, scales),
    cursor,
  );
  return { drawing, cursor, x: scales.x };
}

/** A row of a list of facts. */
const fact = (name, ...value) => h("tr", {}, h("th", {}, name), h("td", {}, value));

function hinges(code) {
  const texts = {
    11: "continuous",
    10: "hinged at end 2",
    1: "hinged at end 1",
    0: "hinged at both ends",
  };
  return texts[code] ?? "";
}

/** "Mz = 3.2", or of an envelope "Mz min = -1.5 (ULS 2)" and the same for the largest value. */
function valuesAt({ name, curves }, i) {
  return curves.map(({ label, values, by }) => {
    const text = `${label ? `${name} ${label}` : name} = ${format(values[i], 5)}`;
    return by ? `${text} (${by(i)})` : text;
  });
}

function signsOfDiagrams(isEnvelope) {
  const texts = [
    "Drawn from end 1 (left) to end 2 with the local axis y\u2032 or z\u2032 upwards; moments stand on the side of the tension.",
    "Forces act on the side of end 1. Values between the ends include the loads along the member.",
    isEnvelope
      ? "Red: the largest values; blue: the least ones."
      : "Deflections are the displacements along the local axes, those of the ends included.",
  ];
  return h("p", { class: "sign" }, texts.join(" "));
}

function memberPanel(report, model, element) {
  const { elements, units } = model;
  const table = report.table("elements");
  const nodes = [0, 1].map((i) => model.nodeNumbers[model.node(element, i)]);
  const length = model.lengthOf(element);
  const lengthUnit = units.named ? units.length : "";
  const { isEnvelope } = report;
  const readout = h(
    "div",
    { class: "readout" },
    isEnvelope
      ? "Move over a diagram for its values and for what governs."
      : "Move over a diagram for its values.",
  );
  const diagrams = diagramsOf(model, element);
  const drawn = diagrams.map((diagram) => ({ diagram, ...drawDiagram(diagram) }));
  const show = (i, hovered) => {
    for (const { cursor, x } of drawn) {
      cursor.setAttribute("x1", x(i));
      cursor.setAttribute("x2", x(i));
      cursor.setAttribute("visibility", "visible");
    }
    const place = withUnit((i / (model.points - 1)) * length, lengthUnit, 4);
    const shown = isEnvelope ? [hovered] : diagrams;
    readout.textContent = [
      `x\u2032 = ${place}`,
      ...shown.flatMap((diagram) => valuesAt(diagram, i)),
    ].join("   ");
  };
  listenAlong(
    drawn.map(({ drawing }) => drawing),
    diagrams.map(({ title }) => title),
    model.points,
    (i, k) => {
      show(i, diagrams[k]);
      return readout.textContent;
    },
  );
  const follow = (hovered) => (event) => {
    const box = event.currentTarget.getBoundingClientRect();
    const t = (((event.clientX - box.left) / box.width) * WIDTH - LEFT) / (WIDTH - LEFT - RIGHT);
    show(Math.min(model.points - 1, Math.max(0, Math.round(t * (model.points - 1)))), hovered);
  };
  return [
    h("h3", {}, `Member ${elements.numbers[element]}`),
    h(
      "table",
      { class: "facts pairs" },
      fact("Nodes", `${nodes[0]} (end 1) to ${nodes[1]} (end 2)`),
      fact("Length", withUnit(length, lengthUnit)),
      fact("Material", format(table.column("material").cell(element))),
      fact("Ends", hinges(table.column("hinge_code").cell(element))),
    ),
    model.diagrams ? readout : null,
    drawn.map(({ diagram, drawing }) => {
      drawing.addEventListener("pointermove", follow(diagram));
      return h(
        "figure",
        {},
        h(
          "figcaption",
          {},
          h("b", {}, diagram.title),
          diagram.unit ? ` in ${diagram.unit}` : "",
          h("span", { class: "sign" }, `positive: ${diagram.positive}`),
        ),
        drawing,
      );
    }),
    model.diagrams ? signsOfDiagrams(isEnvelope) : null,
  ];
}

/** A table of the values of an element's rows or nodes. */
function valueTable(heads, rows) {
  return h(
    "table",
    { class: "values" },
    h(
      "thead",
      {},
      h(
        "tr",
        {},
        heads.map((head) => h("th", {}, head)),
      ),
    ),
    h(
      "tbody",
      {},
      rows.map((cells) =>
        h(
          "tr",
          {},
          cells.map((cell, i) => h(i ? "td" : "th", {}, cell)),
        ),
      ),
    ),
  );
}

function shellTable(table, shells, element) {
  const places = Array.from({ length: shells.count[element] }, (_, i) => shells.first[element] + i);
  const columns = table.columns.filter(
    ({ name, words }) => !words && !/^element$|^point$|Euler/.test(name),
  );
  const cell = (column, row) => {
    const by = table.column(`${column.name} by`);
    return [format(column.values[row]), by ? h("small", {}, by.cell(row)) : null];
  };
  const heads = [
    "value",
    ...places.map((_, i) =>
      places.length === 1 ? "centroid" : `edge ${["1\u20132", "2\u20133", "3\u20131"][i]}`,
    ),
    "unit",
  ];
  return valueTable(
    heads,
    columns.map((column) => [column.name, ...places.map((row) => cell(column, row)), column.unit]),
  );
}

function nodeTable(model, fields, isEnvelope, element) {
  const nodes = Array.from({ length: model.elements.nodeCounts[element] }, (_, i) =>
    model.node(element, i),
  );
  const nodal = fields.filter(
    (field) => "nodes" in field && (isEnvelope || field.group !== "Displacements"),
  );
  const axes = isEnvelope ? [] : [0, 1, 2];
  const heads = ["node", ...axes.map((k) => ["ux", "uy", "uz"][k]), ...nodal.map((f) => f.label)];
  const values = nodal.map((field) => field.nodes);
  return valueTable(
    heads,
    nodes.map((node) => [
      format(model.nodeNumbers[node]),
      ...axes.map((k) => format(model.displacements[3 * node + k], 4)),
      ...values.map((of) => format(of[node], 4)),
    ]),
  );
}

function elementPanel(report, model, shells, fields, element) {
  const isShell = model.elements.kinds[element] === SHELL;
  const forces = report.table("shell_forces");
  return [
    h("h3", {}, `${isShell ? "Shell" : "Solid"} ${model.elements.numbers[element]}`),
    h(
      "table",
      { class: "facts" },
      fact("Mesh", format(model.elements.meshes[element])),
      fact("Material", format(report.table("elements").column("material").cell(element))),
    ),
    isShell && forces ? h("div", { class: "wide" }, shellTable(forces, shells, element)) : null,
    isShell && forces
      ? h(
          "p",
          { class: "sign" },
          "Membrane forces: tension positive. Mx\u2032 and My\u2032: positive with tension on the side " +
            "of +z\u2032, from bending along x\u2032 and y\u2032. Shears: along +z\u2032 on the side that looks to +x\u2032 (+y\u2032).",
        )
      : null,
    report.hasResults
      ? h("div", { class: "wide" }, nodeTable(model, fields, report.isEnvelope, element))
      : null,
  ];
}

/** The content of the panel for an element; the hint of an empty panel for -1. */
export function panelOf(report, model, shells, fields, element) {
  if (element < 0) {
    return [
      h(
        "p",
        { class: "hint" },
        model.beams.length
          ? "Click on a member in the view, or on a row of a table, for its diagrams and values."
          : "Click on an element in the view, or on a row of a table, for its values.",
      ),
    ];
  }
  return model.elements.kinds[element] === BEAM
    ? memberPanel(report, model, element)
    : elementPanel(report, model, shells, fields, element);
}
