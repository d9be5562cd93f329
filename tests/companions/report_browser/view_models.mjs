// Problem files of the tests of the view, with results that are known in advance.

const lines = (list) => list.map((line) => `${line}\n`).join("");
const block = (name, list) => `${name}\n${lines(list)}end ${name}\n`;

const UNITS = `units_names
S kN m kPa 1 1
end units_names
units_mesh m
units_mat_and_load S
units_res S
`;

/** The six tetrahedra of a cube whose corners have the codes x + 2 y + 4 z. */
const CUBE = [
  [0, 1, 3, 7],
  [0, 5, 1, 7],
  [0, 3, 2, 7],
  [0, 2, 6, 7],
  [0, 4, 5, 7],
  [0, 6, 4, 7],
];

/**
 * A bar of cubes of 1 m, `cubes` along x, pulled at its end by a stress of `stress` kPa, with
 * rollers on the planes x, y, z = 0: ux = stress x / E everywhere.
 */
export function pulledBar(cubes, E, stress) {
  const node = (i, j, k) => 1 + i + (cubes + 1) * (j + 2 * k);
  const coordinates = [],
    elements = [],
    forces = new Map();
  for (const k of [0, 1])
    for (const j of [0, 1])
      for (let i = 0; i <= cubes; ++i) coordinates.push(`${node(i, j, k)} ${i} ${j} ${k}`);
  for (let i = 0; i < cubes; ++i) {
    for (const corners of CUBE) {
      const places = corners.map((c) => [i + (c & 1), (c >> 1) & 1, c >> 2]);
      const nodes = places.map((place) => node(...place));
      elements.push(`${elements.length + 1} ${nodes.join(" ")} 1`);
      const end = nodes.filter((_, c) => places[c][0] === cubes);
      if (end.length === 3)
        for (const one of end) forces.set(one, (forces.get(one) ?? 0) + stress / 6);
    }
  }
  const held = coordinates
    .map((line) => line.split(" ").map(Number))
    .filter(([, ...place]) => place.includes(0))
    .map(([number, ...place]) => `${number} ${place.map((x) => (x === 0 ? 1 : 0)).join("")} 0 0 0`);
  return `problem type: 3d
${UNITS}mesh dimension = 3 elemtype Tetrahedra nnode = 4
${block("coordinates", coordinates)}${block("elements", elements)}${block("materials", [`1 E=${E} nu=0.25`])}${block("constraints", held)}${block(
    "nodal_point_loads",
    [...forces].map(([number, force]) => `${number} ${force} 0 0`),
  )}`;
}

/** A square slab of `size` m with 2 count² shells, simply supported, under its pressure in kN/m². */
export function slab(count, size, pressure) {
  const node = (i, j) => 1 + i + (count + 1) * j;
  const coordinates = [],
    elements = [],
    held = [];
  for (let j = 0; j <= count; ++j) {
    for (let i = 0; i <= count; ++i) {
      coordinates.push(`${node(i, j)} ${(size * i) / count} ${(size * j) / count} 0`);
      if (i % count === 0 || j % count === 0) held.push(`${node(i, j)} 111000 0 0 0 0 0 0`);
    }
  }
  for (let j = 0; j < count; ++j) {
    for (let i = 0; i < count; ++i) {
      const [a, b, c, d] = [node(i, j), node(i + 1, j), node(i + 1, j + 1), node(i, j + 1)];
      elements.push([a, b, c], [a, c, d]);
    }
  }
  return `problem type: 3d
${UNITS}mesh dimension = 3 elemtype Triangle nnode = 3
${block("coordinates", coordinates)}${block(
    "elements",
    elements.map((nodes, e) => `${e + 1} ${nodes.join(" ")} 1`),
  )}${block("materials", ["1 E=3e7 nu=0.2 G=1.25e7 t=0.2"])}${block("constraints", held)}${block(
    "global_pressure_loads",
    elements.map((_, e) => `${e + 1} 0 0 ${-pressure}`),
  )}`;
}
