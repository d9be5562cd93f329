// Principal membrane forces or moments of shells: a cross at the middle of every shell, in the
// directions in which they act, red for tension (or positive moments), blue for compression. Of
// solids the principal stresses at the nodes on the surface.

import * as THREE from "three";
import { principalAxes } from "./derived.js";
import { SHELL, SOLID, dot, minus } from "./model.js";
import { theme } from "./theme.js";
import { axesOfEuler } from "./symbols.js";

const COLUMNS = {
  N: { local: ["Nx'", "Ny'", "Nxy'"], main: ["N11", "N22"], euler: "N_Euler" },
  M: { local: ["Mx'", "My'", "Mxy'"], main: ["M11", "M22"], euler: "M_Euler" },
};

/** Reads {angle of the first direction from x', first, second value} of shells. */
function reader(table, shells, kind, model) {
  const { local, main, euler } = COLUMNS[kind];
  if (table.column(local[0])) {
    const [x, y, xy] = local.map((name) => table.column(name).values);
    return (element) => {
      const [a, b, c] = [x, y, xy].map((values) => shells.mean(values, element));
      const radius = Math.hypot((a - b) / 2, c);
      return [Math.atan2(2 * c, a - b) / 2, (a + b) / 2 + radius, (a + b) / 2 - radius];
    };
  }
  // The direction in which the first value acts is the mirror image, in x', of the axis in the results.
  const values = main.map((name) => table.column(name).values);
  return (element) => {
    const row = shells.first[element];
    const printed = axesOfEuler([1, 2, 3].map((i) => table.column(euler + i).values[row]))[0];
    const [xAxis, yAxis] = model.shellAxes(element);
    return [-Math.atan2(dot(printed, yAxis), dot(printed, xAxis)), values[0][row], values[1][row]];
  };
}

/** Of the sizes, the one that nine in ten stay below: a few peaks must not hide the others. */
function usualSize(sizes) {
  const sorted = Float64Array.from(sizes).sort();
  return sorted[Math.floor(0.9 * (sorted.length - 1))] || sorted[sorted.length - 1] || 1;
}

function principalCrosses(report, model, shells, kind, isShown) {
  const table = report.table("shell_forces");
  const read = reader(table, shells, kind, model);
  const { elements } = model;
  const found = [];
  for (let e = 0; e < elements.count; ++e)
    if (elements.kinds[e] === SHELL && isShown(e)) found.push(e);
  const states = found.map(read);
  const usual = usualSize(states.flatMap(([, a, b]) => [Math.abs(a), Math.abs(b)]));
  const position = new Float32Array(12 * found.length),
    colour = new Float32Array(12 * found.length);
  const [positive, negative] = ["scene-positive", "scene-negative"].map(
    (name) => new THREE.Color(theme.hex(name)),
  );
  found.forEach((e, i) => {
    const corners = [0, 1, 2].map((k) => model.place(model.node(e, k)));
    const middle = [0, 1, 2].map((k) => (corners[0][k] + corners[1][k] + corners[2][k]) / 3);
    const reach = 0.3 * Math.hypot(...corners[0].map((x, k) => corners[1][k] - x));
    const [x, y, z] = model.shellAxes(e);
    [0, 1].forEach((which) => {
      const angle = states[i][0] + (which * Math.PI) / 2,
        value = states[i][1 + which];
      const half = reach * Math.min(1.5, Math.abs(value) / usual);
      for (let k = 0; k < 3; ++k) {
        const step = half * (Math.cos(angle) * x[k] + Math.sin(angle) * y[k]);
        position[12 * i + 6 * which + k] = middle[k] - step + 0.01 * reach * z[k];
        position[12 * i + 6 * which + 3 + k] = middle[k] + step + 0.01 * reach * z[k];
      }
      for (const end of [0, 3])
        (value < 0 ? negative : positive).toArray(colour, 12 * i + 6 * which + end);
    });
  });
  const geometry = new THREE.BufferGeometry();
  geometry.setAttribute("position", new THREE.BufferAttribute(position, 3));
  geometry.setAttribute("color", new THREE.BufferAttribute(colour, 3));
  geometry.setAttribute("displacement", centreDisplacements(model, found));
  return geometry;
}

const STRESSES = ["Sx", "Sy", "Sz", "Txy", "Tyz", "Txz"],
  MOST_NODES = 3000; // of more only some have directions

export const hasPrincipalStresses = (report) => Boolean(report.table("stresses")?.column("Sx"));

/** Nodes on the surfaces of solids, thinned, and the usual length of an edge there. */
function surfaceNodes(model, views) {
  const nodes = new Set();
  let length = 0,
    edges = 0;
  for (const { triangles } of views) {
    triangles.owner.forEach((element, i) => {
      if (model.elements.kinds[element] !== SOLID) return;
      const corners = triangles.nodes.subarray(3 * i, 3 * i + 3);
      for (const node of corners) nodes.add(node);
      const [a, b] = [corners[0], corners[1]].map((node) => model.place(node));
      length += Math.hypot(...minus(b, a));
      ++edges;
    });
  }
  const step = Math.ceil(nodes.size / MOST_NODES);
  return {
    nodes: [...nodes].filter((_, i) => i % step === 0),
    length: (length * step ** 0.5) / edges,
  };
}

/** Principal stresses at the nodes on the surfaces of solids: three lines at each. */
function principalStars(report, model, views) {
  const { nodes, length } = surfaceNodes(model, views);
  const table = report.table("stresses");
  const columns = STRESSES.map((name) => table.column(name)?.values);
  const rows = new Map(Array.from(table.column("node").values, (number, i) => [number, i]));
  const states = nodes.map((node) => {
    const row = rows.get(model.nodeNumbers[node]);
    return principalAxes(...columns.map((values) => values?.[row] ?? 0));
  });
  const usual = usualSize(states.flatMap((state) => state.map(({ value }) => Math.abs(value))));
  const position = new Float32Array(18 * nodes.length),
    displacement = new Float32Array(18 * nodes.length),
    colour = new Float32Array(18 * nodes.length);
  const [positive, negative] = ["scene-positive", "scene-negative"].map(
    (name) => new THREE.Color(theme.hex(name)),
  );
  nodes.forEach((node, i) => {
    const place = model.place(node);
    states[i].forEach(({ value, axis }, which) => {
      const half = 0.45 * length * Math.min(1.5, Math.abs(value) / usual);
      [-half, half].forEach((step, end) => {
        const at = 18 * i + 6 * which + 3 * end;
        position.set(
          place.map((x, k) => x + step * axis[k]),
          at,
        );
        displacement.set(model.displacements.subarray(3 * node, 3 * node + 3), at);
        (value < 0 ? negative : positive).toArray(colour, at);
      });
    });
  });
  const geometry = new THREE.BufferGeometry();
  for (const [name, values] of Object.entries({ position, displacement, color: colour }))
    geometry.setAttribute(name, new THREE.BufferAttribute(values, 3));
  return geometry;
}

function centreDisplacements(model, found) {
  const values = new Float32Array(12 * found.length);
  found.forEach((e, i) => {
    for (let k = 0; k < 3; ++k) {
      const mean =
        [0, 1, 2].reduce((sum, c) => sum + model.displacements[3 * model.node(e, c) + k], 0) / 3;
      for (let vertex = 0; vertex < 4; ++vertex) values[12 * i + 3 * vertex + k] = mean;
    }
  });
  return new THREE.BufferAttribute(values, 3);
}

/** Lines of principal membrane forces (kind "N"), moments ("M") or stresses ("S"); "" for none. */
export function directionLines(kind, { report, model, shells, views, settings }) {
  if (!kind) return new THREE.BufferGeometry();
  if (kind === "S") return principalStars(report, model, views.surfaces);
  return principalCrosses(report, model, shells, kind, settings.isShown);
}
