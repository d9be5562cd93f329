// The part of the model under a point of the canvas, in the deformed shape as it is drawn.

import { beamPoint } from "./beam_view.js";
import { trianglesAt } from "./triangles_at.js";

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

function nearestBeam({ factor, model, stage, views }, point) {
  const place = [0, 0, 0];
  let found = null;
  for (const { beams, group } of views.beams) {
    if (!group.visible) continue;
    for (const b of beams) {
      let last = null;
      for (let i = 0; i < model.points; ++i) {
        beamPoint(model, b, i, factor.value, place, 0);
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

/** The element (place in the model's list) at a point of the canvas; -1 for none. */
export function pick(view, point) {
  const beam = nearestBeam(view, point);
  const [surface] = trianglesAt(view, [point]);
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
