// The node under the pointer.

/** Pixels around a node; with fewer the elements are so small that a click means one of them. */
const REACH = 6,
  LEAST_REACH = 2;

/** A node takes at most this part of the shortest edge, so that small elements can be chosen too. */
const PART_OF_EDGE = 0.25;

/**
 * The node (place in the model's list) of an element that a click at a point of the canvas means; -1 when the
 * click means the element.
 */
export function pickNode(stage, model, factor, element, point) {
  if (element < 0) return -1;
  const nodes = Array.from({ length: model.elements.nodeCounts[element] }, (_, i) =>
    model.node(element, i),
  );
  const seen = nodes.map((node) =>
    stage.project(
      [0, 1, 2].map((k) => model.local[3 * node + k] + factor * model.displacements[3 * node + k]),
    ),
  );
  const distance = (a, b) => Math.hypot(a[0] - b[0], a[1] - b[1]);
  const corners = nodes.length > 3 && nodes.length % 3 ? 4 : Math.min(3, nodes.length);
  let shortest = Infinity;
  for (let i = 0; i < corners; ++i)
    for (let j = 0; j < i; ++j) shortest = Math.min(shortest, distance(seen[i], seen[j]));
  const reach = Math.min(REACH, PART_OF_EDGE * shortest);
  if (reach < LEAST_REACH) return -1;
  const near = nodes.map((_, i) => i).filter((i) => distance(seen[i], point) <= reach);
  if (near.length === 0) return -1;
  return nodes[near.reduce((a, b) => (seen[b][2] < seen[a][2] ? b : a))];
}
