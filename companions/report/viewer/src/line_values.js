// A field along a straight line through solids or shells. Barycentric coordinates are linear along
// the line, so each tetrahedron or triangle gives one piece with its ends and the values there.

import { SHELL, SOLID, cross, dot, minus, unit } from "./model.js";
import { TETRAHEDRA } from "./section.js";

const SLACK = 1e-9; // of barycentric coordinates, for points on faces
const REACH = 0.25; // of the line's length: how far shells may be from it
const STEEP = 0.5; // cosine between the normals of a shell and of the first

/** The numbers x with x[0] a + x[1] b + x[2] c = p; null where a, b, c lie in one plane. */
function solve(a, b, c, p) {
  const det = dot(a, cross(b, c));
  const size = Math.hypot(...a) * Math.hypot(...b) * Math.hypot(...c);
  if (Math.abs(det) < 1e-12 * size) return null;
  return [dot(p, cross(b, c)) / det, dot(p, cross(c, a)) / det, dot(p, cross(a, b)) / det];
}

/** The part of 0..1 where all numbers first + t (last - first) are at least -SLACK; null for none. */
function rangeInside(first, last) {
  let [low, high] = [0, 1];
  for (let i = 0; i < first.length; ++i) {
    const [a, b] = [first[i] + SLACK, last[i] + SLACK];
    if (a < 0 && b < 0) return null;
    if (a < 0) low = Math.max(low, a / (a - b));
    else if (b < 0) high = Math.min(high, a / (a - b));
  }
  return high - low > 1e-7 ? [low, high] : null;
}

const mix = (a, b, t) => a + t * (b - a);

/** The piece of a line from p to q in a simplex, whose coordinates of a point coordinates(p) gives. */
function pieceIn(coordinates, p, q, values, element) {
  const first = coordinates(p),
    last = coordinates(q);
  const range = first && rangeInside(first, last);
  if (!range) return null;
  const valueAt = (t) =>
    values.reduce((sum, value, i) => sum + value * mix(first[i], last[i], t), 0);
  return { from: range[0], to: range[1], values: range.map(valueAt), element };
}

/** Whether the box of some nodes meets another box. */
function overlaps(local, nodes, low, high) {
  for (let k = 0; k < 3; ++k) {
    let least = Infinity,
      largest = -Infinity;
    for (const node of nodes) {
      const x = local[3 * node + k];
      if (x < least) least = x;
      if (x > largest) largest = x;
    }
    if (least > high[k] || largest < low[k]) return false;
  }
  return true;
}

function boxAround(p, q, margin) {
  return [Math.min, Math.max].map((choose, i) =>
    p.map((x, k) => choose(x, q[k]) + (i ? margin : -margin)),
  );
}

/** Pieces in the shown solids; nodal: values at nodes. */
function inSolids(model, isShown, nodal, p, q) {
  const { elements } = model;
  const [low, high] = boxAround(p, q, 1e-6 * model.box.size);
  const pieces = [];
  for (let e = 0; e < elements.count; ++e) {
    if (elements.kinds[e] !== SOLID || !isShown(e)) continue;
    for (const places of TETRAHEDRA[elements.nodeCounts[e]]) {
      const nodes = places.map((place) => model.node(e, place));
      if (!overlaps(model.local, nodes, low, high)) continue;
      const corners = nodes.map((node) => model.place(node));
      const [d, a, b, c] = [
        corners[3],
        ...corners.slice(0, 3).map((one) => minus(one, corners[3])),
      ];
      const coordinates = (point) => {
        const x = solve(a, b, c, minus(point, d));
        return x && [...x, 1 - x[0] - x[1] - x[2]];
      };
      const piece = pieceIn(
        coordinates,
        p,
        q,
        nodes.map((node) => nodal[node]),
        e,
      );
      if (piece) pieces.push(piece);
    }
  }
  return pieces;
}

function normalOf([a, b, c]) {
  return unit(cross(minus(b, a), minus(c, a)));
}

/** Calls use(triangle, nodes) for the shell triangles of a view; triangle: its place from 0. */
function eachShell(model, { triangles }, use) {
  const { nodes, owner } = triangles;
  for (let i = 0; i < owner.length; ++i)
    if (model.elements.kinds[owner[i]] === SHELL) use(i, nodes.subarray(3 * i, 3 * i + 3));
}

/** The normal of the shell whose middle is nearest to a place; null without shells. */
function nearestNormal(model, views, place) {
  const { local } = model;
  let least = Infinity,
    nearest = null;
  for (const view of views) {
    eachShell(model, view, (_, [a, b, c]) => {
      let distance = 0;
      for (let k = 0; k < 3; ++k)
        distance += ((local[3 * a + k] + local[3 * b + k] + local[3 * c + k]) / 3 - place[k]) ** 2;
      if (distance >= least) return;
      least = distance;
      nearest = [a, b, c];
    });
  }
  return nearest && normalOf(nearest.map((node) => model.place(node)));
}

/** The piece of the line in a triangle onto which it is projected along a normal. */
function pieceInShell(corners, normal, p, q, values, element) {
  const [a, b] = [minus(corners[0], corners[2]), minus(corners[1], corners[2])];
  const parts = (point) => solve(a, b, normal, minus(point, corners[2]));
  const coordinates = (point) => {
    const x = parts(point);
    return x && [x[0], x[1], 1 - x[0] - x[1]];
  };
  const piece = pieceIn(coordinates, p, q, values, element);
  if (!piece) return null;
  const height = mix(parts(p)[2], parts(q)[2], (piece.from + piece.to) / 2);
  return { ...piece, distance: Math.abs(height) };
}

/**
 * Pieces in shells: the line is projected on them along the normal of the shell that is nearest to
 * its middle. Of several sheets the nearest to the line counts.
 */
function inShells(model, allViews, p, q) {
  const views = allViews.filter(({ values }) => values);
  const normal = nearestNormal(
    model,
    views,
    p.map((x, k) => (x + q[k]) / 2),
  );
  if (!normal) return [];
  const reach = REACH * Math.hypot(...minus(q, p));
  const [low, high] = boxAround(p, q, reach + 1e-6 * model.box.size);
  const pieces = [];
  for (const view of views) {
    eachShell(model, view, (i, nodes) => {
      if (!overlaps(model.local, nodes, low, high)) return;
      const corners = Array.from(nodes, (node) => model.place(node));
      if (Math.abs(dot(normalOf(corners), normal)) < STEEP) return;
      const values = Array.from(view.values.subarray(3 * i, 3 * i + 3));
      const piece = pieceInShell(corners, normal, p, q, values, view.triangles.owner[i]);
      if (piece && piece.distance <= reach) pieces.push(piece);
    });
  }
  return nearestSheet(pieces, 1e-6 * model.box.size);
}

/** Leaves out pieces that have a nearer one beside more than half of them. */
function nearestSheet(pieces, slack) {
  const shared = (a, b) => Math.min(a.to, b.to) - Math.max(a.from, b.from);
  return pieces.filter(
    (a) =>
      !pieces.some(
        (b) =>
          b.distance < a.distance - slack &&
          shared(a, b) > 0.5 * Math.min(a.to - a.from, b.to - b.from),
      ),
  );
}

/**
 * The pieces of a field along the line from p to q (local places), in order:
 * {from, to, values: [at from, at to], element}, from and to in 0..1 along the line.
 * views: SurfaceViews with the values of shells as they are shown.
 */
export function valuesAlongLine({ model, isShown, views, field }, p, q) {
  const pieces = [
    ...(field.nodes ? inSolids(model, isShown, field.nodes, p, q) : []),
    ...inShells(model, views, p, q),
  ];
  pieces.sort((a, b) => a.from + a.to - b.from - b.to);
  return pieces.filter((piece, i) => i === 0 || !isSame(piece, pieces[i - 1]));
}

/** Along a face of two elements both give the same piece. */
function isSame(a, b) {
  const near = (x, y) => Math.abs(x - y) <= 1e-6 * Math.max(1e-3, Math.abs(x));
  return (
    near(a.from, b.from) &&
    near(a.to, b.to) &&
    a.values.every((value, i) => near(value, b.values[i]))
  );
}
