// The panel of a member: its ends, beams and material, and one diagram over its whole length for every
// force and deflection.

import { listenAlong } from "./diagram_keys.js";
import { h } from "./dom.js";
import { drawChart, positionAt } from "./member_chart.js";
import { firstExtremes } from "./member_results.js";
import { styleOf, styled } from "./numbers.js";
import { fact, linkTo, unitAfter } from "./panel_parts.js";

/** A drawing passes about this many points; a long member leaves some out, but no end and no extreme. */
const MOST_DRAWN = 3000;

/** Links to the beams of a member; of very long ones only those near the chosen one. */
const MOST_LINKS = 24;

/** A member as it is drawn: its points, their places, and the beams between them. */
class Line {
  constructor(results, member, element) {
    const { model, members } = results;
    Object.assign(this, { results, model, members, member, element });
    this.beams = members.beamsOf(member);
    this.length = members.lengths[member];
    this.points = results.pointsOf(member);
    this.distances = Float64Array.from(this.points, (point) => results.distance(point));
    this.positions = this.distances.map((distance) => distance / this.length);
    this.own = model.beamOf.get(element);
    this.unit = unitAfter(model.units, model.units.length);
    this.style = styleOf(this.distances, 4);
  }

  /** Places along the member, as text with a unit. */
  place(distance) {
    return styled(distance, this.style) + this.unit;
  }

  /** Positions from 0 to 1 between beams, and the two ends of the chosen beam. */
  get borders() {
    return Array.from(this.beams.subarray(1), (b) => this.members.offset[b] / this.length);
  }

  get chosen() {
    const begin = this.members.offset[this.own];
    return [begin / this.length, (begin + this.members.lengthOf(this.own)) / this.length];
  }

  /** The point nearest to a position; at a node with two values the one on the side of the position. */
  nearest(position) {
    const { positions } = this;
    let [low, high] = [0, positions.length - 1];
    while (high - low > 1) {
      const middle = (low + high) >> 1;
      if (positions[middle] <= position) low = middle;
      else high = middle;
    }
    return position - positions[low] <= positions[high] - position ? low : high;
  }

  /** The points that a curve passes. */
  drawn(extremes) {
    const { points } = this.model;
    const step = Math.max(1, Math.ceil(this.points.length / MOST_DRAWN));
    const kept = new Set(extremes.flatMap(({ minAt, maxAt }) => [minAt, maxAt]));
    const isEnd = (i) => i % points === 0 || i % points === points - 1;
    return Int32Array.from(this.points.keys()).filter(
      (i) => i % step === 0 || isEnd(i) || kept.has(i),
    );
  }

  /** A quantity along this member, as drawChart takes it. */
  diagram(quantity) {
    const { up, noise, title } = quantity;
    const tie = this.results.tieOf(quantity);
    const curves = quantity.curves.map(({ label, values, by }) => ({
      label,
      values: Float64Array.from(this.points, (point) => values[point]),
      by: by ? (i) => by.cell(this.points[i]) : null,
    }));
    const extremes = curves.map(({ values }) =>
      firstExtremes(Int32Array.from(this.points.keys()), values, tie),
    );
    const marked = curves.flatMap(({ values }, k) => [
      values[0],
      values[values.length - 1],
      extremes[k].min,
      extremes[k].max,
    ]);
    const isNothing = (value) => value === 0 || Math.abs(value) < noise;
    const textFor = (values, digits) => {
      const style = styleOf(
        values.filter((value) => !isNothing(value)),
        digits,
      );
      return (value) => (isNothing(value) ? "0" : styled(value, style));
    };
    return {
      title,
      quantity,
      unit: unitAfter(this.model.units, quantity.unit),
      curves,
      extremes,
      up,
      noise,
      positions: this.positions,
      drawn: this.drawn(extremes),
      text: textFor(marked, 4),
      fineText: textFor(Float64Array.from(curves.flatMap(({ values }) => [...values])), 5),
      borders: this.borders,
      chosen: this.chosen,
      isOne: this.beams.length === 1,
      isNothing: extremes.every(({ min, max }) => isNothing(min) && isNothing(max)),
    };
  }
}

/** "Mz = 3.2 kN*m", or of an envelope "Mz min = -1.5 kN*m (ULS 2)" and the same for the largest value. */
function valuesAt({ quantity: { name }, unit, curves, fineText }, i) {
  return curves.map(({ label, values, by }) => {
    const text = `${label ? `${name} ${label}` : name} = ${fineText(values[i])}${unit}`;
    return by ? `${text} (${by(i)})` : text;
  });
}

/** "least -60.0 kN at 3.00 m, largest 30.0 kN at 6.00 m", in an envelope with the governing combination. */
function extremesText({ curves, extremes, text, unit }, line) {
  const value = (k, i) => text(curves[k].values[i]) + unit;
  const part = (word, k, i) => {
    const { by } = curves[k];
    const governing = by ? ` (${by(i)})` : "";
    return `${word} ${value(k, i)} at ${line.place(line.distances[i])}${governing}`;
  };
  const last = curves.length - 1;
  const [low, high] = [extremes[0].minAt, extremes[last].maxAt];
  if (last === 0 && value(0, low) === value(0, high)) return `${value(0, low)} everywhere`;
  return [part("least", 0, low), part("largest", last, high)].join(", ");
}

function hinges(code) {
  const texts = {
    10: "hinged at end 2",
    1: "hinged at end 1",
    0: "hinged at both ends",
  };
  return texts[code] ?? "";
}

/** "node 3 (support)": where a member ends, and why. */
function endText(line, i, choose) {
  const { members, member, model } = line;
  const why = members.whyEnds(member, i);
  const number = model.nodeNumbers[members.endNode(member, i)];
  return [linkTo("node", number, choose), why ? ` (${why})` : ""];
}

function beamLinks(line, choose) {
  const { model, beams, own, element } = line;
  const at = beams.indexOf(own);
  const first = Math.max(0, Math.min(at - MOST_LINKS / 2, beams.length - MOST_LINKS));
  const shown = beams.subarray(first, first + MOST_LINKS);
  const links = Array.from(shown, (b) => {
    const number = model.elements.numbers[model.beams[b]];
    return model.beams[b] === element
      ? h("b", { class: "chosen" }, number)
      : linkTo("beam", number, choose, String(number));
  });
  const dots = (left) => (left ? ["\u2026 "] : []);
  return [
    ...dots(first > 0),
    ...links.flatMap((link) => [link, " "]),
    ...dots(first + shown.length < beams.length),
    beams.length > MOST_LINKS ? `(${beams.length})` : "",
  ];
}

function memberFacts(line, choose) {
  const { members, member, beams } = line;
  const material = line.results.report.table("elements").column("material").cell(line.element);
  return h(
    "table",
    { class: "facts" },
    fact("From", endText(line, 0, choose)),
    fact("To", members.isRing(member) ? "itself: a ring" : endText(line, 1, choose)),
    fact("Length", line.place(line.length)),
    fact("Material", material === 0 ? "of the element" : String(material)),
    fact(beams.length === 1 ? "Beam" : "Beams", beamLinks(line, choose)),
  );
}

/** The chosen beam: its nodes, its place in the member, its hinges. */
function beamFacts(line, choose) {
  const { model, members, element, own, beams } = line;
  const number = model.elements.numbers[element];
  const nodes = [0, 1].map((i) => model.nodeNumbers[model.node(element, i)]);
  const begin = members.offset[own];
  const code = line.results.report.table("elements").column("hinge_code").cell(element);
  return h(
    "p",
    { class: "beam-facts" },
    h("b", {}, `Beam ${number}`),
    ": ",
    linkTo("node", nodes[0], choose),
    " (end 1) to ",
    linkTo("node", nodes[1], choose),
    " (end 2)",
    beams.length > 1
      ? `, from ${line.place(begin)} to ${line.place(begin + members.lengthOf(own))} of the member`
      : null,
    hinges(code) ? `, ${hinges(code)}` : null,
  );
}

function explanation(isEnvelope, isOne) {
  return h(
    "p",
    { class: "sign" },
    [
      "Drawn from the first node (left) to the last with the local axis y\u2032 or z\u2032 upwards; moments are on the side of the tension.",
      "Forces act on the side of end 1 of each beam. Values between the nodes include the loads along the beams.",
      isOne ? "" : "Lines separate the beams of the member; the chosen beam is shaded.",
      "Deflections are the displacements along the local axes, those of the ends included.",
      isEnvelope ? "Red: the largest values; blue: the least ones." : "",
    ].join(" "),
  );
}

/** The title of a diagram and its extremes; of one without values only that. */
function captionOf(diagram, line) {
  const { title, unit, positive } = diagram.quantity;
  const extremes = extremesText(diagram, line);
  if (diagram.isNothing) return [h("b", {}, title), `: ${extremes}`];
  return [
    h("b", {}, title),
    unit ? ` in ${unit}` : "",
    h("span", { class: "sign" }, `positive: ${positive}`),
    h("div", { class: "extremes" }, extremes),
  ];
}

/** The diagrams, and a line above them with the values at the pointer. */
function diagramsOf(line, isEnvelope) {
  const { results, members, model } = line;
  const readout = h(
    "div",
    { class: results.quantities.length > 4 ? "readout tall" : "readout" },
    isEnvelope
      ? "Move over a diagram for its values and for what governs."
      : "Move over a diagram for its values.",
  );
  const diagrams = results.quantities.map((quantity) => line.diagram(quantity));
  const drawn = diagrams.map((diagram) => ({ diagram, ...drawChart(diagram) }));
  const show = (i, hovered) => {
    for (const { moveTo } of drawn) moveTo(line.positions[i]);
    const b = Math.floor(line.points[i] / model.points);
    const own = line.distances[i] - members.offset[b];
    const beam = `beam ${model.elements.numbers[model.beams[b]]}, x\u2032 = ${line.place(own)}`;
    const isOne = line.beams.length === 1;
    const texts = [
      isOne ? `x\u2032 = ${line.place(own)}` : `at ${line.place(line.distances[i])} (${beam})`,
      ...(isEnvelope ? [hovered] : diagrams).flatMap((diagram) => valuesAt(diagram, i)),
    ];
    readout.replaceChildren(...texts.flatMap((text) => [h("span", {}, text), "   "]));
  };
  const shown = drawn.filter(({ diagram }) => !diagram.isNothing);
  listenAlong(
    shown.map(({ drawing }) => drawing),
    shown.map(({ diagram }) => diagram.title),
    line.points.length,
    (i, k) => {
      show(i, shown[k].diagram);
      return readout.textContent;
    },
  );
  const figure = ({ diagram, drawing }) => {
    drawing.addEventListener("pointermove", (event) => {
      const box = event.currentTarget.getBoundingClientRect();
      const position = positionAt((event.clientX - box.left) / box.width);
      show(line.nearest(Math.min(1, Math.max(0, position))), diagram);
    });
    return h(
      "figure",
      {},
      h("figcaption", {}, captionOf(diagram, line)),
      diagram.isNothing ? null : drawing,
    );
  };
  return [readout, drawn.map(figure)];
}

/** The panel of the member of a beam (place in the list of elements); choose(kind, number) follows its links. */
export function memberPanel(results, element, choose) {
  const { members, model, report } = results;
  const member = members.of[model.beamOf.get(element)];
  const line = new Line(results, member, element);
  const isOne = line.beams.length === 1;
  return [
    h("h3", {}, `Member ${members.names[member]}`),
    memberFacts(line, choose),
    beamFacts(line, choose),
    ...diagramsOf(line, report.isEnvelope),
    explanation(report.isEnvelope, isOne),
  ];
}
