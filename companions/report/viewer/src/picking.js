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
        const next = stage.project(place);
        const hit = last && distanceTo(point, last, next);
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

/** Depth of a triangle of projected corners at a point; null outside it. */
function depthAt([x, y], a, b, c) {
  const area = (b[0] - a[0]) * (c[1] - a[1]) - (c[0] - a[0]) * (b[1] - a[1]);
  if (area === 0) return null;
  const u = ((x - a[0]) * (c[1] - a[1]) - (c[0] - a[0]) * (y - a[1])) / area;
  const v = ((b[0] - a[0]) * (y - a[1]) - (x - a[0]) * (b[1] - a[1])) / area;
  return u < 0 || v < 0 || u + v > 1 ? null : a[2] + u * (b[2] - a[2]) + v * (c[2] - a[2]);
}

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
      const corners = [0, 1, 2].map((k) => project(triangles.nodes[3 * i + k]));
      const depth = depthAt(point, ...corners);
      if (depth !== null && (!found || depth < found.depth))
        found = { element: triangles.owner[i], depth };
    }
  }
  return found;
}

/** The element (place in the model's list) at a point of the canvas; -1 for none. */
export function pick(stage, model, views, factor, point) {
  const beam = nearestBeam(stage, model, views.beams, factor, point);
  const surface = nearestTriangle(stage, model, views.surfaces, factor, point);
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
