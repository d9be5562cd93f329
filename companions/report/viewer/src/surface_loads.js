// The sizes of loads on shells and solids as labels: one for each patch of neighbouring elements
// with the same load.

import { BEAM, SHELL } from "./model.js";
import { shortText } from "./numbers.js";

const MOST = 24; // labels; of more patches those with the most elements have one

/** Joins what is connected. */
class Sets {
  constructor(count) {
    this.parent = Int32Array.from({ length: count }, (_, i) => i);
  }

  find(i) {
    let root = i;
    while (this.parent[root] !== root) {
      this.parent[root] = this.parent[this.parent[root]];
      root = this.parent[root];
    }
    return root;
  }

  join(i, j) {
    this.parent[this.find(i)] = this.find(j);
  }
}

/** Rows of loads on shells and solids: {element, size, values, unit}. */
function readLoads(table, model, shown) {
  const values = [1, 2, 3].map((k) => table.column(`value${k}`));
  const loads = [];
  for (let row = 0; row < table.rows; ++row) {
    const element = model.elementAt.get(table.column("element").cell(row));
    if (!shown.element(element)) continue;
    const kind = table.column("kind").cell(row);
    if (model.elements.kinds[element] === BEAM || !/pressure_loads$|^face_loads$/.test(kind))
      continue;
    const load = values.map((column) => column.cell(row) ?? 0);
    const size = Math.hypot(...load);
    if (size === 0) continue;
    const unit = unitOf(model, element, table.column("face").cell(row));
    loads.push({ element, size, unit, key: `${kind} ${unit} ${load}` });
  }
  return loads;
}

/** Shells with an index have a load on an edge, solids without one a load over the volume. */
function unitOf({ elements, units }, element, face) {
  const isShell = elements.kinds[element] === SHELL;
  if (isShell === (face === null)) return units.pressure;
  return isShell ? units.forcePerLength : `${units.force}/${units.length}3`;
}

/** Loads by patches: lists of loads that are equal and hang together by nodes. */
function patchesOf(loads, model) {
  const sets = new Sets(loads.length),
    seen = new Map(); // a load by its kind and node
  loads.forEach(({ element, key }, i) => {
    for (let k = 0; k < model.elements.nodeCounts[element]; ++k) {
      const place = `${key} ${model.node(element, k)}`;
      if (seen.has(place)) sets.join(i, seen.get(place));
      else seen.set(place, i);
    }
  });
  const patches = new Map();
  loads.forEach((load, i) => {
    const root = sets.find(i);
    if (!patches.has(root)) patches.set(root, []);
    patches.get(root).push(load);
  });
  return [...patches.values()];
}

/** Labels {place, text} of the loads of shown elements (see Visibility.of). */
export function surfaceLoadLabels(report, model, shown) {
  const table = report.table("element_loads");
  if (!table) return [];
  const patches = patchesOf(readLoads(table, model, shown), model)
    .sort((a, b) => b.length - a.length)
    .slice(0, MOST);
  return patches.map((patch) => {
    const middles = patch.map(({ element }) => model.middleOf(model.corners(element)));
    const mean = [0, 1, 2].map((k) => middles.reduce((sum, p) => sum + p[k], 0) / middles.length);
    const away = (p) => Math.hypot(...p.map((x, k) => x - mean[k]));
    const central = middles.reduce(
      (least, p, i) => (away(p) < away(middles[least]) ? i : least),
      0,
    );
    const { size, unit } = patch[0];
    const place = middles[central],
      nodes = model.corners(patch[central].element);
    const text = shortText(size);
    return { place, nodes, text: model.units.named ? `${text} ${unit}` : text };
  });
}
