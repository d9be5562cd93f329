// The structure by positions instead of numbers, in typed arrays: nodes, elements, displacements.

import { EMPTY, unpack } from "./data.js";

export const BEAM = 0,
  SHELL = 1,
  SOLID = 2;
const KINDS = { beam: BEAM, shell: SHELL, solid: SOLID };
const AXES = ["x", "y", "z"];

/** Three columns of a table as one array of triples; missing ones are 0. */
export function triples(table, names, rows = table.rows) {
  const result = new Float64Array(3 * rows);
  names.forEach((name, k) => {
    const values = table.column(name)?.values;
    for (let i = 0; values && i < rows; ++i) result[3 * i + k] = values[i];
  });
  return result;
}

function positions(numbers) {
  const map = new Map();
  numbers.forEach((number, i) => map.set(number, i));
  return map;
}

function readElements(table, nodeAt) {
  const count = table.rows;
  const kindColumn = table.column("kind");
  const kinds = Uint8Array.from({ length: count }, (_, i) => KINDS[kindColumn.cell(i)]);
  const nodeColumns = table.columns.filter((column) => /^node\d+$/.test(column.name));
  const width = nodeColumns.length;
  const nodes = new Int32Array(count * width).fill(-1);
  nodeColumns.forEach(({ values }, k) => {
    for (let i = 0; i < count; ++i)
      if (values[i] !== EMPTY) nodes[i * width + k] = nodeAt.get(values[i]);
  });
  const nodeCounts = new Uint8Array(count);
  for (let i = 0; i < count; ++i) {
    while (nodeCounts[i] < width && nodes[i * width + nodeCounts[i]] >= 0) ++nodeCounts[i];
  }
  const numbers = table.column("element").values;
  const [meshes, materials] = ["mesh", "material"].map((name) => table.column(name).values);
  return { count, kinds, nodes, width, nodeCounts, numbers, meshes, materials };
}

function boxOf(xyz) {
  const low = [Infinity, Infinity, Infinity],
    high = [-Infinity, -Infinity, -Infinity];
  for (let i = 0; i < xyz.length; ++i) {
    low[i % 3] = Math.min(low[i % 3], xyz[i]);
    high[i % 3] = Math.max(high[i % 3], xyz[i]);
  }
  const center = low.map((value, k) => (value + high[k]) / 2);
  const size = Math.hypot(...high.map((value, k) => value - low[k])) || 1;
  return { low, high, center, size };
}

export class Model {
  constructor(report) {
    const nodes = report.table("nodes");
    this.plane = report.model.plane && !report.model.solids;
    this.units = report.units;
    this.nodeNumbers = nodes.column("node").values;
    this.nodeCount = nodes.rows;
    this.nodeAt = positions(this.nodeNumbers);
    this.xyz = triples(nodes, AXES);
    this.box = boxOf(this.xyz);
    this.elements = readElements(report.table("elements"), this.nodeAt);
    this.elementAt = positions(this.elements.numbers);
    this.axes = unpack(report.axes);
    const displacements = report.table("displacements"); // null without results
    this.displacements = displacements
      ? triples(displacements, ["ux", "uy", "uz"])
      : new Float32Array(3 * this.nodeCount);
    this.points = report.model.beamDivisions + 1;
    this.readBeams(report.table("beam_diagrams"));
    /** Coordinates from the middle of the box: small numbers for the graphics. */
    this.local = Float32Array.from(this.xyz, (value, i) => value - this.box.center[i % 3]);
    this.largest = Math.max(
      largestLength(this.displacements),
      largestLength(this.beamDisplacements),
    );
  }

  /** Beams in the order of their diagrams: beam b has the rows from b·points on. */
  readBeams(diagrams) {
    this.beams = [];
    this.beamOf = new Map();
    for (let i = 0; i < this.elements.count; ++i) {
      if (this.elements.kinds[i] !== BEAM) continue;
      this.beamOf.set(i, this.beams.length);
      this.beams.push(i);
    }
    this.diagrams = diagrams;
    this.beamDisplacements = diagrams
      ? triples(diagrams, ["ux", "uy", "uz"])
      : new Float64Array(3 * this.points * this.beams.length);
  }

  has(kind) {
    return this.elements.kinds.includes(kind);
  }

  node(element, i) {
    return this.elements.nodes[element * this.elements.width + i];
  }

  /** Local coordinates of a node as an array. */
  place(node) {
    return [this.local[3 * node], this.local[3 * node + 1], this.local[3 * node + 2]];
  }

  /** The nodes (places in their list) at the corners of an element: its ends, three or four. */
  corners(element) {
    const kind = this.elements.kinds[element];
    const count = kind === BEAM ? 2 : kind === SHELL ? 3 : 4;
    return Array.from({ length: count }, (_, i) => this.node(element, i));
  }

  /** The mean of the local coordinates of nodes. */
  middleOf(nodes) {
    return [0, 1, 2].map(
      (k) => nodes.reduce((sum, node) => sum + this.local[3 * node + k], 0) / nodes.length,
    );
  }

  lengthOf(element) {
    const a = this.place(this.node(element, 0)),
      b = this.place(this.node(element, 1));
    return Math.hypot(b[0] - a[0], b[1] - a[1], b[2] - a[2]);
  }

  /** The axes x', y', z' of a beam. */
  beamAxes(element) {
    const a = this.place(this.node(element, 0)),
      b = this.place(this.node(element, 1));
    const x = unit(a.map((value, k) => b[k] - value));
    const y = Array.from(this.axes.subarray(3 * element, 3 * element + 3));
    return [x, y, cross(x, y)];
  }

  /** The axes x', y', z' of a shell; z' is the normal of its corners. */
  shellAxes(element) {
    const [a, b, c] = [0, 1, 2].map((i) => this.place(this.node(element, i)));
    const z = unit(cross(minus(b, a), minus(c, a)));
    const x = Array.from(this.axes.subarray(3 * element, 3 * element + 3));
    return [x, cross(z, x), z];
  }
}

function largestLength(values) {
  let largest = 0;
  for (let i = 0; i < values.length; i += 3) {
    largest = Math.max(largest, Math.hypot(values[i], values[i + 1], values[i + 2]));
  }
  return largest;
}

export const minus = (a, b) => [a[0] - b[0], a[1] - b[1], a[2] - b[2]];
export const dot = (a, b) => a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
export const cross = (a, b) => [
  a[1] * b[2] - a[2] * b[1],
  a[2] * b[0] - a[0] * b[2],
  a[0] * b[1] - a[1] * b[0],
];
export function unit(a) {
  const length = Math.hypot(...a) || 1;
  return a.map((value) => value / length);
}
