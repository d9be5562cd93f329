// What can be shown in colours: values at nodes, at the result points of shells, along beams.

import { SHELL } from "./model.js";

/** Least and largest of values, and their places. */
export function extremesOf(values) {
  const found = { min: Infinity, max: -Infinity, minAt: -1, maxAt: -1 };
  for (let i = 0; i < values.length; ++i) {
    if (values[i] < found.min) [found.min, found.minAt] = [values[i], i];
    if (values[i] > found.max) [found.max, found.maxAt] = [values[i], i];
  }
  return found;
}

/** A component of triples; their lengths for k < 0. */
function component(triples, k) {
  const values = new Float64Array(triples.length / 3);
  for (let i = 0; i < values.length; ++i) {
    const place = 3 * i;
    values[i] =
      k < 0
        ? Math.hypot(triples[place], triples[place + 1], triples[place + 2])
        : triples[place + k];
  }
  return values;
}

/** A field: {id, label, group, unit, nodes, points, beams}; of the three only those it has. */
function displacementFields(model, translations) {
  const all = [
    ["u", "|u|  size", -1],
    ["ux", "ux", 0],
    ["uy", "uy", 1],
    ["uz", "uz", 2],
  ];
  return all.slice(0, 1 + translations).map(([id, label, k]) => ({
    id,
    label,
    group: "Displacements",
    title: k < 0 ? "Displacement" : `Displacement ${id}`,
    unit: model.units.length,
    get nodes() {
      return component(model.displacements, k);
    },
    get beams() {
      return component(model.beamDisplacements, k);
    },
  }));
}

/** Of an envelope the least and the largest values: of nodes, and along beams. */
function displacementExtremes(report, model) {
  const table = report.table("displacements");
  const names = table.columns
    .map(({ name }) => name)
    .filter((name) => /^u.? (min|max)$/.test(name));
  return names.map((name) => ({
    id: name,
    label: name.startsWith("u ") ? name.replace("u", "|u|") : name,
    group: "Displacements",
    title: `Displacement ${name}`,
    unit: model.units.length,
    get nodes() {
      return table.column(name).values;
    },
    get beams() {
      return model.diagrams?.column(name).values;
    },
  }));
}

function columnFields(table, group, place, skip) {
  if (!table) return [];
  return table.columns
    .filter((column) => !column.words && !skip.test(column.name))
    .map((column) => ({
      id: `${place}:${column.name}`,
      label: column.name.replace("_", " "),
      group,
      title: column.name.replace("_", " "),
      unit: column.unit,
      get [place]() {
        return column.values;
      },
    }));
}

export function fieldsOf(report, model) {
  if (!report.hasResults) return [];
  return [
    ...(report.isEnvelope
      ? displacementExtremes(report, model)
      : displacementFields(model, report.model.translations)),
    ...columnFields(report.table("shell_forces"), "Shells", "points", /^element$|^point$|Euler/),
    ...columnFields(report.table("stresses"), "Solids", "nodes", /^node$/),
    ...columnFields(model.diagrams, "Beams", "beams", /^(element|point|[xyz])$|^u[xyz]?( |$)/),
  ];
}

/** Extremes over all that a field has, with the kind and number of their places. */
export function extremesOfField(field, model, shells) {
  const parts = [];
  const add = (values, kind, numberAt) => {
    if (!values?.length) return;
    const e = extremesOf(values);
    parts.push({
      min: e.min,
      max: e.max,
      kind,
      minNumber: numberAt(e.minAt),
      maxNumber: numberAt(e.maxAt),
    });
  };
  const { numbers } = model.elements;
  add(field.nodes, "node", (i) => model.nodeNumbers[i]);
  add(field.points, "element", (i) => numbers[shells.owner[i]]);
  add(field.beams, "beam", (i) => numbers[model.beams[Math.floor(i / model.points)]]);
  const low = parts.reduce((a, b) => (b.min < a.min ? b : a));
  const high = parts.reduce((a, b) => (b.max > a.max ? b : a));
  return {
    min: low.min,
    max: high.max,
    minAt: `${low.kind} ${low.minNumber}`,
    maxAt: `${high.kind} ${high.maxNumber}`,
  };
}

/** The result points of shells: their elements, and the values that they give at corners. */
export class ShellPoints {
  constructor(model, table) {
    this.model = model;
    const { elements } = model;
    this.first = new Int32Array(elements.count).fill(-1);
    this.count = new Uint8Array(elements.count);
    this.owner = new Int32Array(table ? table.rows : 0);
    const numbers = table?.column("element").values ?? [];
    for (let row = 0; row < numbers.length; ++row) {
      const element = model.elementAt.get(numbers[row]);
      if (this.first[element] < 0) this.first[element] = row;
      ++this.count[element];
      this.owner[row] = element;
    }
  }

  /** Value at node `corner` of an element: of its one point, or linear through the middles of its edges. */
  atCorner(values, element, corner) {
    const first = this.first[element];
    if (first < 0) return NaN;
    if (this.count[element] === 1) return values[first];
    if (corner >= 3) return values[first + corner - 3];
    const [one, two, opposite] = [corner, (corner + 2) % 3, (corner + 1) % 3].map(
      (i) => values[first + i],
    );
    return one + two - opposite;
  }

  mean(values, element) {
    const first = this.first[element];
    let sum = 0;
    for (let i = 0; i < this.count[element]; ++i) sum += values[first + i];
    return sum / this.count[element];
  }

  /** The shells at every node: those of node n are list[start[n]..start[n+1]). */
  neighbours() {
    if (this.adjacent) return this.adjacent;
    const { elements, nodeCount } = this.model;
    const start = new Int32Array(nodeCount + 1);
    const visit = (use) => {
      for (let e = 0; e < elements.count; ++e) {
        for (let i = 0; elements.kinds[e] === SHELL && i < 3; ++i) use(this.model.node(e, i), e);
      }
    };
    visit((node) => ++start[node + 1]);
    for (let i = 0; i < nodeCount; ++i) start[i + 1] += start[i];
    const next = start.slice();
    const list = new Int32Array(start[nodeCount]);
    visit((node, e) => {
      list[next[node]++] = e;
    });
    this.adjacent = { start, list };
    return this.adjacent;
  }

  /** x' and z' of every shell, six numbers each. */
  frames() {
    if (this.frame) return this.frame;
    const { elements } = this.model;
    this.frame = new Float32Array(6 * elements.count);
    for (let e = 0; e < elements.count; ++e) {
      if (elements.kinds[e] !== SHELL) continue;
      const [x, , z] = this.model.shellAxes(e);
      this.frame.set([...x, ...z], 6 * e);
    }
    return this.frame;
  }

  /** Whether two shells see their values in nearly the same axes: turned by less than 15 degrees. */
  agree(a, b) {
    const frame = this.frames(),
      limit = 0.966;
    let x = 0,
      z = 0;
    for (let k = 0; k < 3; ++k) {
      x += frame[6 * a + k] * frame[6 * b + k];
      z += frame[6 * a + 3 + k] * frame[6 * b + 3 + k];
    }
    return (
      x > limit && z > limit && this.model.elements.meshes[a] === this.model.elements.meshes[b]
    );
  }

  /** Corner values of all shells, 3 each, averaged at nodes over the shells that agree. */
  smoothed(values) {
    const { model } = this;
    const { start, list } = this.neighbours();
    const result = new Float32Array(3 * model.elements.count);
    const cornerOf = (element, node) => [0, 1, 2].find((i) => model.node(element, i) === node);
    for (let node = 0; node < model.nodeCount; ++node) {
      for (let i = start[node]; i < start[node + 1]; ++i) {
        let sum = 0,
          count = 0;
        for (let j = start[node]; j < start[node + 1]; ++j) {
          if (!this.agree(list[i], list[j])) continue;
          sum += this.atCorner(values, list[j], cornerOf(list[j], node));
          ++count;
        }
        result[3 * list[i] + cornerOf(list[i], node)] = sum / count;
      }
    }
    return result;
  }
}

/**
 * Values at the vertices of the triangles of a mesh: of nodes as they are, of shells by element or
 * smoothed; NaN where the field has none.
 */
export function vertexValues(field, triangles, shells, smooth) {
  const { nodes, owner, corner } = triangles;
  const result = new Float32Array(nodes.length).fill(NaN);
  const { nodes: nodal, points } = field;
  if (nodal) {
    for (let i = 0; i < nodes.length; ++i) result[i] = nodal[nodes[i]];
  } else if (points) {
    const corners = smooth ? shells.smoothed(points) : null;
    for (let i = 0; i < nodes.length; ++i) {
      const element = owner[(i / 3) | 0],
        k = corner[i];
      if (!smooth) result[i] = shells.mean(points, element);
      else if (k < 3) result[i] = corners[3 * element + k];
      else result[i] = (corners[3 * element + k - 3] + corners[3 * element + ((k - 2) % 3)]) / 2;
    }
  }
  return result;
}
