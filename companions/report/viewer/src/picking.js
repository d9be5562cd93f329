// The part of the model under a point of the canvas, in the deformed shape as it is drawn.

import { beamPoint } from "./beam_view.js";

const REACH = 8; // pixels around a beam
const BEHIND = 0.003; // by which a beam may be farther than a surface, in depth

/** Distance of p from the segment a-b in pixels, and the place t of the nearest point. */
function distanceTo(p, a, b) {
  const [dx, dy] = [b[0] - a[0], b[1] - a[1]];
  const length = dx * dx + dy * dy;
  const t =
    length > 0 ? Math.min(1, Math.max(0, ((p[0] - a[0]) * dx + (p[1] - a[1]) * dy) / length)) : 0;
  return { distance: Math.hypot(p[0] - a[0] - t * dx, p[1] - a[1] - t * dy), t };
}

function nearestBeam(stage, model, beamViews, factor, point) {
  const place = [0, 0, 0];
  let found = null;
  for (const { beams, group } of beamViews) {
    if (!group.visible) continue;
    for (const b of beams) {
      let last = null;
      for (let i = 0; i < model.points; ++i) {
        beamPoint(model, b, i, factor, place, 0);
        const next = stage.hides(place) ? null : stage.project(place);
        const hit = last && next && distanceTo(point, last, next);
        const depth = hit && last[2] + hit.t * (next[2] - last[2]);
        if (
          hit &&
          hit.distance < REACH &&
          (!found ||
            hit.distance < found.distance - 1 ||
            (hit.distance < found.distance + 1 && depth < found.depth))
        ) {
          found = { element: model.beams[b], distance: hit.distance, depth };
        }
        last = next;
      }
    }
  }
  return found;
}

/** Depth of a triangle of projected corners at a point, and the parts of its corners; null outside it. */
function hitOf([x, y], a, b, c) {
  const area = (b[0] - a[0]) * (c[1] - a[1]) - (c[0] - a[0]) * (b[1] - a[1]);
  if (area === 0) return null;
  const u = ((x - a[0]) * (c[1] - a[1]) - (c[0] - a[0]) * (y - a[1])) / area;
  const v = ((b[0] - a[0]) * (y - a[1]) - (x - a[0]) * (b[1] - a[1])) / area;
  if (u < 0 || v < 0 || u + v > 1) return null;
  return { depth: a[2] + u * (b[2] - a[2]) + v * (c[2] - a[2]), parts: [1 - u - v, u, v] };
}

/** The point of the undeformed shape in a triangle, from the parts of its corners. */
const between = (parts, corners) =>
  [0, 1, 2].map((k) => parts.reduce((sum, part, i) => sum + part * corners[i][k], 0));

function nearestTriangle(stage, model, surfaceViews, factor, point) {
  const projected = new Map();
  const project = (node) => {
    if (!projected.has(node)) {
      const place = [0, 1, 2].map(
        (k) => model.local[3 * node + k] + factor * model.displacements[3 * node + k],
      );
      projected.set(node, stage.project(place));
    }
    return projected.get(node);
  };
  let found = null;
  for (const { triangles, group, isEmpty } of surfaceViews) {
    if (!group.visible || isEmpty) continue;
    for (let i = 0; i < triangles.owner.length; ++i) {
      const nodes = triangles.nodes.subarray(3 * i, 3 * i + 3);
      const hit = hitOf(point, project(nodes[0]), project(nodes[1]), project(nodes[2]));
      if (!hit || (found && hit.depth >= found.depth)) continue;
      const place = between(
        hit.parts,
        Array.from(nodes, (node) => model.place(node)),
      );
      if (!stage.hides(place)) found = { element: triangles.owner[i], depth: hit.depth, place };
    }
  }
  return found;
}

/** The nearest of the filled faces of a section, as nearestTriangle. */
function nearestOfCut(stage, section, factor, point) {
  if (!section?.solids) return null;
  const { position, displacement } = section.fill.geometry.attributes;
  const corner = (array, i) => Array.from(array.subarray(3 * i, 3 * i + 3));
  let found = null;
  section.solids.owner.forEach((element, i) => {
    const vertices = [3 * i, 3 * i + 1, 3 * i + 2];
    const places = vertices.map((vertex) => corner(position.array, vertex));
    const projected = vertices.map((vertex, j) => {
      const moved = corner(displacement.array, vertex);
      return stage.project(places[j].map((x, k) => x + factor * moved[k]));
    });
    const hit = hitOf(point, ...projected);
    if (!hit || (found && hit.depth >= found.depth)) return;
    found = { element, depth: hit.depth, place: between(hit.parts, places) };
  });
  return found;
}

/** The surface or cut at a point of the canvas: {element, place (undeformed), depth}; null for none. */
export function pickSurface(stage, model, views, section, factor, point) {
  const surface = nearestTriangle(stage, model, views.surfaces, factor, point);
  const cut = nearestOfCut(stage, section, factor, point);
  return cut && (!surface || cut.depth < surface.depth) ? cut : surface;
}

/** The element (place in the model's list) at a point of the canvas; -1 for none. */
export function pick(stage, model, views, section, factor, point) {
  const beam = nearestBeam(stage, model, views.beams, factor, point);
  const surface = pickSurface(stage, model, views, section, factor, point);
  if (beam && (!surface || beam.depth < surface.depth + BEHIND)) return beam.element;
  return surface ? surface.element : -1;
}

/** Calls back with the place of every click that is no drag. */
export function onClick(canvas, use) {
  let start = null;
  canvas.addEventListener("pointerdown", (event) => {
    start = [event.clientX, event.clientY];
  });
  canvas.addEventListener("pointerup", (event) => {
    if (!start || Math.hypot(event.clientX - start[0], event.clientY - start[1]) > 4) return;
    const box = canvas.getBoundingClientRect();
    use([event.clientX - box.left, event.clientY - box.top]);
  });
}
