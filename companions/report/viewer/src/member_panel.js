// What has been clicked: the diagrams of a beam, or the values of a shell or solid.

import { DIAGRAMS } from "./diagrams.js";
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
  const columns = names.map((name) => model.diagrams.column(name)).filter(Boolean);
  return columns.reduce(
    (largest, { values }) => values.reduce((a, b) => Math.max(a, Math.abs(b)), largest),
    0,
  );
}

/**
 * The diagrams of a member: {title, unit, positive, values, up, least}; up: sign of the drawing;
 * least: the smallest range that is drawn in full height.
 */
function diagramsOf(model, element) {
  const b = model.beamOf.get(element),
    { points } = model;
  const force = largestOf(model, ["N", "Vy", "Vz"]),
    moment = largestOf(model, ["T", "My", "Mz"]);
  const part = (values) => Float64Array.from(values.subarray(b * points, (b + 1) * points));
  const all = Object.entries(DIAGRAMS)
    .filter(([name]) => model.diagrams.column(name))
    .map(([name, { title, positive, sign }]) => {
      const { values, unit } = model.diagrams.column(name);
      const least = NOTHING * (isMoment(name) ? moment : force);
      return { name, title, positive, unit, values: part(values), up: sign, least };
    });
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
    values: along(axis),
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

function drawDiagram({ values, up, least }) {
  const { min, max, minAt, maxAt } = extremesOf(values);
  const largest = Math.max(-min, max, least) || 1;
  const [low, high] =
    up > 0 ? [Math.min(0, min), Math.max(0, max)] : [Math.min(0, -max), Math.max(0, -min)];
  const span = Math.max(high - low, least) || largest;
  const x = (i) => LEFT + (i / (values.length - 1)) * (WIDTH - LEFT - RIGHT);
  const y = (value) => 18 + ((high - up * value) / span) * (HEIGHT - 36);
  const drawing = svg("svg", { viewBox: `0 0 ${WIDTH} ${HEIGHT}`, class: "diagram" });
  for (const piece of pieces(values, x)) {
    const sign = piece.some(([, value]) => value < 0) ? "negative" : "positive";
    const points = piece.map(([px, value]) => `${px.toFixed(2)},${y(value).toFixed(2)}`);
    const feet = [
      `${piece[piece.length - 1][0].toFixed(2)},${y(0).toFixed(2)}`,
      `${piece[0][0].toFixed(2)},${y(0).toFixed(2)}`,
    ];
    drawing.append(svg("polygon", { points: [...points, ...feet].join(" "), class: sign }));
  }
  drawing.append(svg("line", { x1: LEFT, x2: WIDTH - RIGHT, y1: y(0), y2: y(0), class: "axis" }));
  const last = values.length - 1;
  const shown = new Set([0, last, minAt, maxAt]);
  for (const i of shown) {
    const between = i !== 0 && i !== last;
    if (between && [0, last].some((end) => Math.abs(values[end] - values[i]) < 1e-3 * largest))
      continue;
    const above = up * values[i] >= 0;
    drawing.append(svg("circle", { cx: x(i), cy: y(values[i]), r: 2 }));
    drawing.append(
      svg(
        "text",
        {
          x: x(i),
          y: y(values[i]) + (above ? -5 : 13),
          "text-anchor": i === 0 ? "start" : i === last ? "end" : "middle",
        },
        format(values[i], 4),
      ),
    );
  }
  const cursor = svg("line", { y1: 4, y2: HEIGHT - 4, class: "cursor", visibility: "hidden" });
  drawing.append(cursor);
  return { drawing, cursor, x };
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

function memberPanel(report, model, element) {
  const { elements, units } = model;
  const table = report.table("elements");
  const nodes = [0, 1].map((i) => model.nodeNumbers[model.node(element, i)]);
  const length = model.lengthOf(element);
  const lengthUnit = units.named ? units.length : "";
  const readout = h("div", { class: "readout" }, "Move over a diagram for its values.");
  const diagrams = diagramsOf(model, element);
  const drawn = diagrams.map((diagram) => ({ diagram, ...drawDiagram(diagram) }));
  const show = (i) => {
    for (const { cursor, x } of drawn) {
      cursor.setAttribute("x1", x(i));
      cursor.setAttribute("x2", x(i));
      cursor.setAttribute("visibility", "visible");
    }
    const place = withUnit((i / (model.points - 1)) * length, lengthUnit, 4);
    readout.textContent = [
      `x\u2032 = ${place}`,
      ...diagrams.map(({ name, values }) => `${name} = ${format(values[i], 5)}`),
    ].join("   ");
  };
  const follow = (event) => {
    const box = event.currentTarget.getBoundingClientRect();
    const t = (((event.clientX - box.left) / box.width) * WIDTH - LEFT) / (WIDTH - LEFT - RIGHT);
    show(Math.min(model.points - 1, Math.max(0, Math.round(t * (model.points - 1)))));
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
    readout,
    drawn.map(({ diagram, drawing }) => {
      drawing.addEventListener("pointermove", follow);
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
    h(
      "p",
      { class: "sign" },
      "Drawn from end 1 (left) to end 2 with the local axis y\u2032 or z\u2032 upwards; moments stand on the side of " +
        "the tension. Forces act on the side of end 1. Values between the ends include the loads along the member. Deflections are the displacements along " +
        "the local axes, those of the ends included.",
    ),
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
  const columns = table.columns.filter(({ name }) => !/^element$|^point$|Euler/.test(name));
  const heads = [
    "value",
    ...places.map((_, i) =>
      places.length === 1 ? "centroid" : `edge ${["1\u20132", "2\u20133", "3\u20131"][i]}`,
    ),
    "unit",
  ];
  return valueTable(
    heads,
    columns.map((column) => [
      column.name,
      ...places.map((row) => format(column.values[row])),
      column.unit,
    ]),
  );
}

function nodeTable(model, fields, element) {
  const nodes = Array.from({ length: model.elements.nodeCounts[element] }, (_, i) =>
    model.node(element, i),
  );
  const nodal = fields.filter((field) => "nodes" in field && field.group !== "Displacements");
  const heads = ["node", "ux", "uy", "uz", ...nodal.map((field) => field.label)];
  const values = nodal.map((field) => field.nodes);
  return valueTable(
    heads,
    nodes.map((node) => [
      format(model.nodeNumbers[node]),
      ...[0, 1, 2].map((k) => format(model.displacements[3 * node + k], 4)),
      ...values.map((of) => format(of[node], 4)),
    ]),
  );
}

function elementPanel(report, model, shells, fields, element) {
  const isShell = model.elements.kinds[element] === SHELL;
  return [
    h("h3", {}, `${isShell ? "Shell" : "Solid"} ${model.elements.numbers[element]}`),
    h(
      "table",
      { class: "facts" },
      fact("Mesh", format(model.elements.meshes[element])),
      fact("Material", format(report.table("elements").column("material").cell(element))),
    ),
    isShell
      ? h("div", { class: "wide" }, shellTable(report.table("shell_forces"), shells, element))
      : null,
    isShell
      ? h(
          "p",
          { class: "sign" },
          "Membrane forces: tension positive. Mx\u2032 and My\u2032: positive with tension on the side " +
            "of +z\u2032, from bending along x\u2032 and y\u2032. Shears: along +z\u2032 on the side that looks to +x\u2032 (+y\u2032).",
        )
      : null,
    h("div", { class: "wide" }, nodeTable(model, fields, element)),
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
