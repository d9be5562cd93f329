// Which labels belong to something that a surface covers. The label of a load on the far side of a
// wall would be read as the load of the wall.

import { trianglesAt } from "./triangles_at.js";

const TOLERANCE = 0.003; // in depth: a surface does not cover what lies in it

/** The places of a label that the eye may see: points, or nodes in the deformed shape. */
function anchorsOf({ points, nodes }, { local, displacements }, factor) {
  if (points) return points;
  return (nodes ?? []).map((node) =>
    [0, 1, 2].map((k) => local[3 * node + k] + factor * displacements[3 * node + k]),
  );
}

/**
 * True for each label {points or nodes} all of whose anchors are farther from the eye than a surface.
 * Labels without anchors are never covered.
 */
export function coveredLabels(view, labels) {
  const { factor, model, stage } = view;
  const anchors = labels.map((label) =>
    anchorsOf(label, model, factor.value).map((place) => stage.project(place)),
  );
  const points = anchors.flat();
  const found = points.length > 0 ? trianglesAt(view, points) : [];
  let next = 0;
  return anchors.map((own) => {
    const covered = own.map(([, , depth]) => {
      const surface = found[next++];
      return surface !== null && surface.depth < depth - TOLERANCE;
    });
    return own.length > 0 && covered.every(Boolean);
  });
}
