// The load cases of a report. The data block has the results of the cases; those of a combination or
// an envelope are computed from them, column by column, when they are first needed.

import { Column, Table, unpack, unpackLoads, withTables } from "./data.js";
import { DERIVED, TRANSLATIONS } from "./derived.js";
import { format } from "./dom.js";

/** Values count as equal when they differ by at most this part of the largest one in the column. */
const TIE = 1e-12;

/** The combined values of an envelope are kept for the second pass when they are not more. */
const MOST_KEPT = 1e7;

/** Weights of values at `count` chosen points for each of all points of a beam (Lagrange). */
function weightsOf(count, points) {
  const chosen = Array.from({ length: count }, (_, k) =>
    Math.floor((k * (points - 1)) / (count - 1)),
  );
  return Array.from({ length: points }, (_, point) =>
    chosen.map((own) =>
      chosen.reduce(
        (weight, other) => (other === own ? weight : (weight * (point - other)) / (own - other)),
        1,
      ),
    ),
  );
}

/** The values at all points of beams from those at `count` points of each. */
function alongBeams(values, count, points) {
  const weights = weightsOf(count, points),
    beams = values.length / count;
  const all = new Float64Array(beams * points);
  for (let b = 0; b < beams; ++b) {
    for (let i = 0; i < points; ++i) {
      let sum = 0;
      for (let k = 0; k < count; ++k) sum += weights[i][k] * values[b * count + k];
      all[b * points + i] = sum;
    }
  }
  return all;
}

/** A table of results: its keys, and the linear values of each case. */
class CaseTable {
  constructor({ name, rows, columns }, points) {
    Object.assign(this, { name, rows, points });
    this.keys = columns.filter(({ data }) => data).map(Column.unpacked);
    this.values = columns.filter(({ data }) => !data);
    this.linear = new Map(this.values.filter(({ cases }) => cases).map((one) => [one.name, one]));
    this.cache = new Map();
  }

  /** The values of a case in a linear column; null when all are 0. */
  ofCase(name, index) {
    const key = `${name} ${index}`;
    if (!this.cache.has(key)) this.cache.set(key, this.unpack(this.linear.get(name).cases[index]));
    return this.cache.get(key);
  }

  unpack(packed) {
    if (!packed) return null;
    const values = unpack(packed);
    return packed.points && packed.points < this.points
      ? alongBeams(values, packed.points, this.points)
      : values;
  }

  /** The values of a column in a combination, whose factors are [case, factor] pairs. */
  combined(name, factors) {
    const sums = new Float64Array(this.rows);
    if (this.linear.has(name)) {
      for (const [index, factor] of factors) {
        const values = this.ofCase(name, index);
        for (let i = 0; values && i < sums.length; ++i) sums[i] += factor * values[i];
      }
      return sums;
    }
    const { from, of } = DERIVED[name];
    const parts = from.map((one) =>
      this.linear.has(one) ? this.combined(one, factors) : new Float64Array(this.rows),
    );
    const at = new Array(parts.length);
    for (let i = 0; i < sums.length; ++i) {
      for (let k = 0; k < parts.length; ++k) at[k] = parts[k][i];
      sums[i] = of(...at);
    }
    return sums;
  }

  /** The extremes of a column over combinations, each with the place of the one that governs. */
  extremes(name, combinations) {
    return this.extremesOf((factors) => this.combined(name, factors), combinations);
  }

  /** The same of values that are computed from the factors of a combination. */
  extremesOf(valuesOf, combinations) {
    const kept = this.rows * combinations.length <= MOST_KEPT ? [] : null;
    const low = new Float64Array(this.rows).fill(Infinity),
      high = new Float64Array(this.rows).fill(-Infinity);
    let largest = 0;
    for (const { factors } of combinations) {
      const values = valuesOf(factors);
      kept?.push(values);
      for (let i = 0; i < values.length; ++i) {
        if (values[i] < low[i]) low[i] = values[i];
        if (values[i] > high[i]) high[i] = values[i];
        if (Math.abs(values[i]) > largest) largest = Math.abs(values[i]);
      }
    }
    const tie = TIE * largest;
    const [below, above] = [low.map((value) => value + tie), high.map((value) => value - tie)];
    const lowBy = new Int32Array(this.rows),
      highBy = new Int32Array(this.rows);
    // The last one that qualifies in descending order is the first of the file.
    for (let k = combinations.length - 1; k >= 0; --k) {
      const values = kept ? kept[k] : valuesOf(combinations[k].factors);
      for (let i = 0; i < values.length; ++i) {
        if (values[i] <= below[i]) [low[i], lowBy[i]] = [values[i], k];
        if (values[i] >= above[i]) [high[i], highBy[i]] = [values[i], k];
      }
    }
    return { low, high, lowBy, highBy };
  }

  /** Names and units of the values; `hidden`: of the size of displacements along beams. */
  listed() {
    return this.values.map(({ name, unit }) => ({ name, unit }));
  }

  hidden() {
    const u = this.linear.has("ux") && !this.values.some(({ name }) => name === "u");
    return u ? [{ name: "u", unit: this.linear.get("ux").unit }] : [];
  }

  ofCombination({ factors }) {
    const make = ({ name, unit }) => new Column(name, unit, () => this.combined(name, factors));
    return new Table(this.name, this.rows, [...this.keys, ...this.listed().map(make)]);
  }

  ofEnvelope(combinations) {
    const words = combinations.map(({ name }) => name);
    const make = ({ name, unit }) => {
      let found = null;
      const part = (key) => () => (found ??= this.extremes(name, combinations))[key];
      return [
        new Column(`${name} min`, unit, part("low")),
        new Column(`${name} min by`, "", part("lowBy"), words),
        new Column(`${name} max`, unit, part("high")),
        new Column(`${name} max by`, "", part("highBy"), words),
      ];
    };
    return new Table(
      this.name,
      this.rows,
      [...this.keys, ...this.listed().flatMap(make)],
      this.hidden().flatMap(make),
    );
  }
}

/** Adds a multiple of a sparse or dense list of numbers to sums by key. */
function addTo(sums, key, factor, values) {
  const sum = sums.get(key) ?? values.map(() => 0);
  values.forEach((value, k) => {
    sum[k] += factor * value;
  });
  sums.set(key, sum);
}

const NO_LOADS = {
  surfaces: new Float64Array(0),
  beams: new Int32Array(0),
  q: new Float64Array(0),
};

export class Study {
  constructor(data) {
    const { cases, combinations, envelopes, tables } = data.study;
    this.data = data;
    this.cases = cases.map((one, index) => ({
      ...one,
      kind: "case",
      factors: [[index, 1]],
      loads: unpackLoads(one.loads),
      tables: one.tables.map(Table.unpacked),
    }));
    this.all = [...this.cases, ...combinations.map((one) => ({ ...one, kind: "combination" }))];
    this.envelopes = envelopes.map((one) => ({ ...one, kind: "envelope" }));
    this.shared = data.tables.map(Table.unpacked);
    const points = data.model.beamDivisions + 1;
    this.tables = tables.map(
      (table) => new CaseTable(table, table.name === "beam_diagrams" ? points : 0),
    );
  }

  /** The factors as text: "1.35 G + 1.5 Q". */
  textOf({ factors }) {
    return factors
      .map(([index, factor], k) => {
        const sign = factor < 0 ? (k ? " \u2212 " : "\u2212") : k ? " + " : "";
        return `${sign}${format(Math.abs(factor))} ${this.cases[index].name}`;
      })
      .join("");
  }

  /** The report of a case, a combination or an envelope. */
  view(selection) {
    const isEnvelope = selection.kind === "envelope";
    const results = isEnvelope
      ? this.tables.map((table) =>
          table.ofEnvelope(selection.members.map((member) => this.all[member])),
        )
      : this.tables.map((table) => table.ofCombination(selection));
    const factors = isEnvelope ? [] : selection.factors;
    return withTables(
      {
        ...this.data,
        selection,
        isEnvelope,
        balances: this.cases,
        equilibrium: isEnvelope ? null : this.equilibriumOf(factors),
        loads: isEnvelope ? NO_LOADS : this.loadsOf(factors),
        movesAlong: isEnvelope ? (directions) => this.movesAlong(selection, directions) : null,
      },
      [...this.shared, ...this.actions(selection, factors), ...results],
    );
  }

  /**
   * The extremes over an envelope of the displacements of beams in directions, three numbers for each beam;
   * words: the names of the combinations.
   */
  movesAlong({ members }, directions) {
    const table = this.tables.find(({ name }) => name === "beam_diagrams");
    const combinations = members.map((member) => this.all[member]);
    const valuesOf = (factors) => {
      const sums = new Float64Array(table.rows);
      TRANSLATIONS.forEach((name, k) => {
        if (!table.linear.has(name)) return;
        const values = table.combined(name, factors);
        for (let i = 0; i < sums.length; ++i)
          sums[i] += values[i] * directions[3 * Math.floor(i / table.points) + k];
      });
      return sums;
    };
    return {
      ...table.extremesOf(valuesOf, combinations),
      words: combinations.map(({ name }) => name),
    };
  }

  /** Supports with settlements, and loads. */
  actions(selection, factors) {
    const ofCase = selection.kind === "case" ? selection.tables : [];
    const named = (name) => ofCase.find((table) => table.name === name);
    return [
      named("supports") ?? this.supportsOf(factors),
      named("nodal_loads") ?? this.nodalLoadsOf(factors),
      named("element_loads"),
    ].filter(Boolean);
  }

  tableOfCase(index, name) {
    return this.cases[index].tables.find((table) => table.name === name);
  }

  /** Prescribed values are combined, stiffnesses of springs are not. */
  supportsOf(factors) {
    const first = this.tableOfCase(0, "supports");
    if (!first) return null;
    const columns = first.columns.map((column) => {
      const component = column.name.match(/^value(\d)$/)?.[1];
      if (!component) return column;
      const flags = first.column(`flag${component}`).values;
      return new Column(column.name, column.unit, () => {
        const values = Float64Array.from(column.values, (value, i) => (flags[i] === 1 ? 0 : value));
        for (const [index, factor] of factors) {
          const own = this.tableOfCase(index, "supports").column(column.name).values;
          for (let i = 0; i < values.length; ++i) if (flags[i] === 1) values[i] += factor * own[i];
        }
        return values;
      });
    });
    return new Table("supports", first.rows, columns);
  }

  nodalLoadsOf(factors) {
    const sums = new Map();
    let columns = null;
    for (const [index, factor] of factors) {
      const table = this.tableOfCase(index, "nodal_loads");
      if (!table) continue;
      columns = table.columns;
      const [nodes, ...values] = columns.map((column) => column.values);
      for (let row = 0; row < table.rows; ++row)
        addTo(
          sums,
          nodes[row],
          factor,
          values.map((column) => column[row]),
        );
    }
    if (!columns) return null;
    const nodes = Int32Array.from(sums.keys()).sort();
    const make = ({ name, unit }, k) =>
      new Column(name, unit, () =>
        k === 0 ? nodes : Float64Array.from(nodes, (node) => sums.get(node)[k - 1]),
      );
    return new Table("nodal_loads", nodes.length, columns.map(make));
  }

  loadsOf(factors) {
    const surfaces = new Float64Array(this.cases[0].loads.surfaces.length),
      sums = new Map();
    for (const [index, factor] of factors) {
      const { surfaces: own, beams, q } = this.cases[index].loads;
      for (let i = 0; i < surfaces.length; ++i) surfaces[i] += factor * own[i];
      beams.forEach((beam, i) =>
        addTo(sums, beam, factor, Array.from(q.subarray(3 * i, 3 * i + 3))),
      );
    }
    const beams = Int32Array.from(sums.keys()).sort();
    return { surfaces, beams, q: Float64Array.from(Array.from(beams, (b) => sums.get(b)).flat()) };
  }

  /** Of a case its own; of a combination the sums, without a residual. */
  equilibriumOf(factors) {
    if (factors.length === 1 && factors[0][1] === 1) return this.cases[factors[0][0]].equilibrium;
    const sum = (part) =>
      [0, 1, 2, 3, 4, 5].map((k) =>
        factors.reduce(
          (value, [index, factor]) => value + factor * this.cases[index].equilibrium[part][k],
          0,
        ),
      );
    const { center } = this.cases[0].equilibrium;
    return { center, loads: sum("loads"), reactions: sum("reactions"), residual: null };
  }
}
