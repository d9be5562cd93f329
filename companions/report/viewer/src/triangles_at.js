// The surfaces and filled cuts that are nearest to the eye at points of the canvas, in the deformed
// shape as it is drawn. One pass over the triangles serves all points.

const COLUMN = 32; // pixels: a triangle is compared with the points in the columns that it meets

/** Depth of a triangle of projected corners at a point, and the parts of its corners; null outside it. */
function hitOf([x, y], [a, b, c]) {
  const area = (b[0] - a[0]) * (c[1] - a[1]) - (c[0] - a[0]) * (b[1] - a[1]);
  if (area === 0) return null;
  const u = ((x - a[0]) * (c[1] - a[1]) - (c[0] - a[0]) * (y - a[1])) / area;
  const v = ((b[0] - a[0]) * (y - a[1]) - (x - a[0]) * (b[1] - a[1])) / area;
  if (u < 0 || v < 0 || u + v > 1) return null;
  return { depth: a[2] + u * (b[2] - a[2]) + v * (c[2] - a[2]), parts: [1 - u - v, u, v] };
}

/** The triangles of a mesh: how many, their elements, their projected corners, undeformed places in them. */
function surfaceTriangles({ triangles: { nodes, owner } }, model, project) {
  const corner = (t, i) => nodes[3 * t + i];
  return {
    owner,
    cornersOf: (t) => [0, 1, 2].map((i) => project(corner(t, i))),
    placeOf: (t, i) => model.place(corner(t, i)),
  };
}

/** The filled faces of a cut through solids, as surfaceTriangles. */
function cutTriangles({ solids, fill }, stage, factor) {
  const { position, displacement } = fill.geometry.attributes;
  const at = ({ array }, t, i) => Array.from(array.subarray(9 * t + 3 * i, 9 * t + 3 * i + 3));
  const project = (t, i) => {
    const moved = at(displacement, t, i);
    return stage.project(at(position, t, i).map((x, k) => x + factor * moved[k]));
  };
  return {
    owner: solids.owner,
    cornersOf: (t) => [0, 1, 2].map((i) => project(t, i)),
    placeOf: (t, i) => at(position, t, i),
    isCut: true,
  };
}

/** The deformed place of a node, projected; each node once. */
function projector({ stage, model, factor }) {
  const projected = new Array(model.nodeCount);
  const { local, displacements } = model;
  return (node) => {
    projected[node] ??= stage.project(
      [0, 1, 2].map((k) => local[3 * node + k] + factor.value * displacements[3 * node + k]),
    );
    return projected[node];
  };
}

function setsOf(view) {
  const project = projector(view);
  const shown = view.views.surfaces.filter(({ group, isEmpty }) => group.visible && !isEmpty);
  const sets = shown.map((surface) => surfaceTriangles(surface, view.model, project));
  const { section } = view.cutting;
  if (section?.solids) sets.push(cutTriangles(section, view.stage, view.factor.value));
  return sets;
}

/** The points' places in their list, by the column of the canvas in which they are. */
function columnsOf(points, width) {
  const columns = Array.from({ length: Math.ceil(width / COLUMN) + 1 }, () => []);
  points.forEach(([x], i) => columns[Math.floor(x / COLUMN)]?.push(i));
  return columns;
}

/** For each point of the canvas {element, place (undeformed), depth} of the nearest triangle, or null. */
export function trianglesAt(view, points) {
  const columns = columnsOf(points, view.stage.width);
  const found = points.map(() => null);
  const compare = (i, set, t, corners) => {
    const hit = hitOf(points[i], corners);
    if (!hit || (found[i] && hit.depth >= found[i].depth)) return;
    const places = [0, 1, 2].map((one) => set.placeOf(t, one));
    const place = [0, 1, 2].map((k) =>
      hit.parts.reduce((sum, part, one) => sum + part * places[one][k], 0),
    );
    if (set.isCut || !view.stage.hides(place))
      found[i] = { element: set.owner[t], depth: hit.depth, place };
  };
  for (const set of setsOf(view)) {
    for (let t = 0; t < set.owner.length; ++t) {
      const corners = set.cornersOf(t);
      const [a, b, c] = corners;
      const first = Math.floor(Math.min(a[0], b[0], c[0]) / COLUMN);
      const last = Math.floor(Math.max(a[0], b[0], c[0]) / COLUMN);
      for (let i = Math.max(0, first); i <= Math.min(last, columns.length - 1); ++i)
        for (const point of columns[i]) compare(point, set, t, corners);
    }
  }
  return found;
}
