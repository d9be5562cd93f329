// Forces and deflections along members: the curves of all beams, and their extremes in every member.

import { Column } from "./data.js";
import { DIAGRAMS, curvesOf, hasDiagram } from "./diagrams.js";
import { dot } from "./model.js";

/** Values below this part of the largest force or moment of the model are rounding errors, drawn as 0. */
const NOTHING = 1e-6;

/** Values of a quantity that differ by less than this part of the largest one count as equal. */
const TIE = 1e-9;

const isMoment = (name) => /^[TM]/.test(name);

const sizeOf = (values) => values.reduce((largest, value) => Math.max(largest, Math.abs(value)), 0);

/**
 * The extremes of values at some points, and their positions among the points: the first of those that
 * differ by at most `tie`.
 */
export function firstExtremes(rows, values, tie) {
  let [min, max] = [Infinity, -Infinity];
  for (const row of rows) {
    if (values[row] < min) min = values[row];
    if (values[row] > max) max = values[row];
  }
  const minAt = rows.findIndex((row) => values[row] <= min + tie);
  const maxAt = rows.findIndex((row) => values[row] >= max - tie);
  return { min: values[rows[minAt]], max: values[rows[maxAt]], minAt, maxAt };
}

export class MemberResults {
  constructor(report, model, members) {
    Object.assign(this, { report, model, members });
    const forces = Object.keys(DIAGRAMS).filter((name) => hasDiagram(model.diagrams, name));
    this.quantities = [
      ...forces.map((name) => this.force(name)),
      ...(model.diagrams ? this.deflections() : []),
    ];
  }

  /**
   * A quantity: {name, title, unit, positive, up, curves, noise}. curves: {label, values, by}, one, or two of an
   * envelope: its least and its largest values, `by` with the combinations that govern. Values are those of all
   * points of all beams. up: sign of the drawing; noise: the smallest range that is drawn in full height.
   */
  force(name) {
    const { title, positive, sign } = DIAGRAMS[name];
    const curves = curvesOf(this.model.diagrams, name);
    const all = this;
    return {
      name,
      title,
      positive,
      unit: curves[0].unit,
      up: sign,
      curves,
      get noise() {
        return NOTHING * all.largest(isMoment(name));
      },
    };
  }

  /** The largest force, or moment, of all beams. */
  largest(moments) {
    this.sizes ??= {};
    return (this.sizes[moments] ??= Math.max(
      0,
      ...this.quantities
        .filter(({ name }) => name in DIAGRAMS && isMoment(name) === moments)
        .flatMap(({ curves }) => curves.map(({ values }) => sizeOf(values))),
    ));
  }

  /** The displacements along the local axes y' and z', of an envelope their extremes. */
  deflections() {
    const { model } = this;
    const deflection = (axis, name) => ({
      name,
      title: `Deflection ${name}`,
      positive: `along +${name[1]}\u2032`,
      unit: model.units.length,
      up: 1,
      curves: this.report.isEnvelope ? this.movesOfEnvelope(axis) : [this.moves(axis)],
      noise: NOTHING * model.largest,
    });
    const all = [deflection(1, "uy\u2032"), deflection(2, "uz\u2032")];
    return model.plane ? all.slice(0, 1) : all;
  }

  /** A local axis (1: y', 2: z') of every beam, three numbers each. */
  directions(axis) {
    return Float64Array.from(this.model.beams.flatMap((e) => this.model.beamAxes(e)[axis]));
  }

  moves(axis) {
    const { beamDisplacements: u, points } = this.model;
    const along = () => {
      const directions = this.directions(axis);
      return new Float64Array(u.length / 3).map((_, i) => {
        const beam = 3 * Math.floor(i / points);
        return dot(u.subarray(3 * i, 3 * i + 3), directions.subarray(beam, beam + 3));
      });
    };
    let values = null;
    return {
      label: "",
      by: null,
      get values() {
        return (values ??= along());
      },
    };
  }

  movesOfEnvelope(axis) {
    let moves = null;
    const found = () => (moves ??= this.report.movesAlong(this.directions(axis)));
    const curve = (label, key) => ({
      label,
      get values() {
        return found()[key];
      },
      get by() {
        return new Column(`${label} by`, "", () => found()[`${key}By`], found().words);
      },
    });
    return [curve("min", "low"), curve("max", "high")];
  }

  /** The distance of a point of the list from the beginning of its member. */
  distance(point) {
    const { model, members } = this;
    const b = Math.floor(point / model.points);
    return members.offset[b] + ((point % model.points) / (model.points - 1)) * members.lengthOf(b);
  }

  /** The points of a member in order, as places in the values of a curve; a node between beams has two. */
  pointsOf(member) {
    const { points } = this.model;
    const beams = this.members.beamsOf(member);
    const rows = new Int32Array(beams.length * points);
    beams.forEach((b, k) => {
      for (let i = 0; i < points; ++i) rows[k * points + i] = b * points + i;
    });
    return rows;
  }

  /** The size of differences between values of a quantity that are only rounding. */
  tieOf({ curves, noise }) {
    return TIE * Math.max(noise, ...curves.map(({ values }) => sizeOf(values)));
  }

  /** The beam (place in the list of elements) with the largest bending moment; -1 without beams. */
  mostBent() {
    const count = this.model.beams.length * this.model.points;
    return this.mostBentAt(new Int32Array(count).map((_, point) => point));
  }

  /** The same of a member; its first beam where nothing bends. */
  mostBentOf(member) {
    const found = this.mostBentAt(this.pointsOf(member));
    return found < 0 ? this.model.beams[this.members.beamsOf(member)[0]] : found;
  }

  mostBentAt(points) {
    let found = -1,
      largest = 0;
    for (const { name, curves } of this.quantities) {
      if (!/^M/.test(name)) continue;
      for (const { values } of curves) {
        for (const point of points) {
          if (Math.abs(values[point]) <= largest) continue;
          largest = Math.abs(values[point]);
          found = this.model.beams[Math.floor(point / this.model.points)];
        }
      }
    }
    return found;
  }
}
