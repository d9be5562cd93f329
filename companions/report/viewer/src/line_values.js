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

function overlaps(corners, low, high) {
  return [0, 1, 2].every((k) => {
    const of = corners.map((corner) => corner[k]);
    return Math.min(...of) <= high[k] && Math.max(...of) >= low[k];
  });
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
      const corners = nodes.map((node) => model.place(node));
      if (!overlaps(corners, low, high)) continue;
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

/** The shell triangles of the views that have values: {corners, values, element}. */
function shellTriangles(model, views) {
  const found = [];
  for (const { triangles, values } of views) {
    if (!values) continue;
    triangles.owner.forEach((element, i) => {
      if (model.elements.kinds[element] !== SHELL) return;
      const vertices = [3 * i, 3 * i + 1, 3 * i + 2];
      found.push({
        corners: vertices.map((vertex) => model.place(triangles.nodes[vertex])),
        values: vertices.map((vertex) => values[vertex]),
        element,
      });
    });
  }
  return found;
}

/**
 * Pieces in shells: the line is projected on them along the normal of the shell that is nearest to
 * its middle. Of several sheets the nearest to the line counts.
 */
function inShells(model, views, p, q) {
  const all = shellTriangles(model, views);
  if (all.length === 0) return [];
  const middle = p.map((x, k) => (x + q[k]) / 2);
  const away = ({ corners }) =>
    Math.hypot(...[0, 1, 2].map((k) => corners.reduce((sum, c) => sum + c[k], 0) / 3 - middle[k]));
  const nearest = all.reduce((a, b) => (away(b) < away(a) ? b : a));
  const normal = normalOf(nearest.corners);
  const reach = REACH * Math.hypot(...minus(q, p));
  const [low, high] = boxAround(p, q, reach + 1e-6 * model.box.size);
  const pieces = [];
  for (const { corners, values, element } of all) {
    if (!overlaps(corners, low, high)) continue;
    if (Math.abs(dot(normalOf(corners), normal)) < STEEP) continue;
    const [a, b, c] = [minus(corners[0], corners[2]), minus(corners[1], corners[2]), normal];
    const height = (point) => solve(a, b, c, minus(point, corners[2]))?.[2];
    const coordinates = (point) => {
      const x = solve(a, b, c, minus(point, corners[2]));
      return x && [x[0], x[1], 1 - x[0] - x[1]];
    };
    const piece = pieceIn(coordinates, p, q, values, element);
    if (!piece) continue;
    piece.distance = Math.abs(mix(height(p), height(q), (piece.from + piece.to) / 2));
    if (piece.distance <= reach) pieces.push(piece);
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
