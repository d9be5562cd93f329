// A plane through the model: where it cuts solids and shells. All points lie on a straight edge
// between two given points, as (a, b, t): value(a) + t (value(b) - value(a)), so that any quantity
// of the given points follows.

import { SHELL, SOLID } from "./model.js";

/**
 * Tetrahedra, by places among the nodes of a solid. Ten nodes make eight: one at each corner, and
 * four around the line between the middles of two opposite edges. The quantity is linear in each.
 */
export const TETRAHEDRA = {
  4: [[0, 1, 2, 3]],
  10: [
    [0, 4, 6, 7],
    [4, 1, 5, 8],
    [6, 5, 2, 9],
    [7, 8, 9, 3],
    [4, 9, 5, 6],
    [4, 9, 6, 7],
    [4, 9, 7, 8],
    [4, 9, 8, 5],
  ],
};

/** Points on edges: three or two for each piece, with the element of the piece. */
class Pieces {
  constructor() {
    this.from = [];
    this.to = [];
    this.t = [];
    this.owner = [];
  }

  add(edges, owner, distance) {
    for (const [a, b] of edges) {
      this.from.push(a);
      this.to.push(b);
      this.t.push(distance(a) / (distance(a) - distance(b)));
    }
    this.owner.push(owner);
  }

  get count() {
    return this.t.length;
  }

  /** Interpolates `width` numbers of each point from `values`; at(point): its place in values. */
  interpolate(values, width, at = (point) => point) {
    const result = new Float32Array(width * this.count);
    for (let i = 0; i < this.count; ++i) {
      const a = width * at(this.from[i]),
        b = width * at(this.to[i]);
      for (let k = 0; k < width; ++k)
        result[width * i + k] = values[a + k] + this.t[i] * (values[b + k] - values[a + k]);
    }
    return result;
  }
}

/** Signed distances of all nodes from the plane normal · x = offset, in the model's local places. */
export function distancesFrom(model, normal, offset) {
  const result = new Float64Array(model.nodeCount);
  for (let i = 0; i < model.nodeCount; ++i) {
    result[i] = -offset;
    for (let k = 0; k < 3; ++k) result[i] += normal[k] * model.local[3 * i + k];
  }
  return result;
}

/** The cut of the shown solids: triangles, whose points lie between nodes. */
export function cutSolids(model, isShown, distances) {
  const { elements } = model;
  const pieces = new Pieces();
  const distance = (node) => distances[node];
  for (let e = 0; e < elements.count; ++e) {
    if (elements.kinds[e] !== SOLID || !isShown(e)) continue;
    for (const corners of TETRAHEDRA[elements.nodeCounts[e]]) {
      const below = [],
        above = [];
      for (const corner of corners) {
        const node = model.node(e, corner);
        (distances[node] < 0 ? below : above).push(node);
      }
      for (const triangle of crossing(below, above)) pieces.add(triangle, e, distance);
    }
  }
  return pieces;
}

/** The cut edges of a tetrahedron as triangles, from its nodes on either side. */
function crossing(below, above) {
  if (below.length === 0 || above.length === 0) return [];
  if (below.length === 2) {
    const [a, b] = below,
      [c, d] = above;
    const ring = [
      [a, c],
      [a, d],
      [b, d],
      [b, c],
    ];
    return [
      [ring[0], ring[1], ring[2]],
      [ring[0], ring[2], ring[3]],
    ];
  }
  return [below.flatMap((a) => above.map((b) => [a, b]))];
}

/**
 * The cut of the shells among triangles: segments, whose points lie between vertices of triangles
 * (places in triangles.nodes).
 */
export function cutShells(model, triangles, distances) {
  const pieces = new Pieces();
  const { nodes, owner } = triangles;
  const distance = (vertex) => distances[nodes[vertex]];
  for (let i = 0; i < owner.length; ++i) {
    if (model.elements.kinds[owner[i]] !== SHELL) continue;
    const below = [],
      above = [];
    for (let vertex = 3 * i; vertex < 3 * i + 3; ++vertex)
      (distance(vertex) < 0 ? below : above).push(vertex);
    if (below.length === 0 || above.length === 0) continue;
    pieces.add(
      below.flatMap((a) => above.map((b) => [a, b])),
      owner[i],
      distance,
    );
  }
  return pieces;
}

/** The outline of the plane in a box, in order around it. low, high: corners of the box. */
export function planeInBox(low, high, normal, offset) {
  const corner = (code) => [0, 1, 2].map((k) => ((code >> k) & 1 ? high[k] : low[k]));
  const distance = (p) => normal.reduce((sum, n, k) => sum + n * p[k], -offset);
  const points = [];
  for (let code = 0; code < 8; ++code) {
    for (const bit of [1, 2, 4]) {
      if (code & bit) continue;
      const [a, b] = [corner(code), corner(code | bit)];
      const [da, db] = [distance(a), distance(b)];
      if (da < 0 !== db < 0) points.push(a.map((x, k) => x + (da / (da - db)) * (b[k] - x)));
    }
  }
  return inOrder(points, normal);
}

/** Points of a convex polygon, sorted around its middle. */
function inOrder(points, normal) {
  if (points.length < 3) return [];
  const middle = [0, 1, 2].map((k) => points.reduce((sum, p) => sum + p[k], 0) / points.length);
  const [u, v] = basis(normal);
  const angle = (p) => {
    const [x, y] = [u, v].map((axis) =>
      axis.reduce((sum, a, k) => sum + a * (p[k] - middle[k]), 0),
    );
    return Math.atan2(y, x);
  };
  return points
    .map((p) => [angle(p), p])
    .sort((a, b) => a[0] - b[0])
    .map(([, p]) => p);
}

/** Two unit vectors across a unit vector and each other. */
function basis([x, y, z]) {
  const sign = z < 0 ? -1 : 1;
  const a = -1 / (sign + z),
    b = x * y * a;
  return [
    [1 + sign * x * x * a, sign * b, -sign * x],
    [b, sign + y * y * a, -y],
  ];
}
