// Supports, loads and reactions as symbols of a fixed size: instances of a few small shapes.

import * as THREE from "three";
import { mergeGeometries } from "three/examples/jsm/utils/BufferGeometryUtils.js";
import { triples, unit } from "./model.js";
import { shortText } from "./numbers.js";
import { surfaceLoadLabels } from "./surface_loads.js";
import { theme } from "./theme.js";

const MOST_ARROWS = 1500,
  MANY = 100; // symbols of a kind, above which their shapes are simple
const UP = new THREE.Vector3(0, 1, 0);

/** Collects places of one shape and makes an instanced mesh of them. */
class Instances {
  constructor(geometry, colour) {
    this.geometry = geometry;
    this.colour = colour;
    this.matrices = [];
  }

  /** Adds the shape at a place, its axis y along `direction`, with a size along and across it. */
  add(place, direction, along, across) {
    const turn = new THREE.Quaternion().setFromUnitVectors(UP, new THREE.Vector3(...direction));
    const size = new THREE.Vector3(across, along, across);
    this.matrices.push(new THREE.Matrix4().compose(new THREE.Vector3(...place), turn, size));
  }

  mesh() {
    const material = new THREE.MeshLambertMaterial({ color: this.colour });
    const mesh = new THREE.InstancedMesh(this.geometry, material, this.matrices.length);
    this.matrices.forEach((matrix, i) => mesh.setMatrixAt(i, matrix));
    mesh.frustumCulled = false;
    return mesh;
  }
}

function groupOf(...instances) {
  const group = new THREE.Group();
  for (const one of instances) if (one.matrices.length > 0) group.add(one.mesh());
  return group;
}

/** The axes of a support: global, or by its Euler angles. */
function supportAxes(table, row) {
  const angles = ["Euler1", "Euler2", "Euler3"].map(
    (name) => table.column(name)?.cell(row) ?? null,
  );
  if (angles[0] === null)
    return [
      [1, 0, 0],
      [0, 1, 0],
      [0, 0, 1],
    ];
  return axesOfEuler(angles);
}

/** Axes x', y', z' of Euler angles. */
export function axesOfEuler([a1, a2, a3]) {
  const [c1, c2, c3] = [a1, a2, a3].map(Math.cos),
    [s1, s2, s3] = [a1, a2, a3].map(Math.sin);
  return [
    [c3 * c1 - c2 * s1 * s3, -s3 * c1 - c2 * s1 * c3, s2 * s1],
    [c3 * s1 + c2 * c1 * s3, -s3 * s1 + c2 * c1 * c3, -s2 * c1],
    [s3 * s2, c3 * s2, c2],
  ];
}

/**
 * A cone against each held displacement, a ring about the axis of each held rotation, a block
 * where all is held.
 */
export function supportSymbols(report, model, size, shown) {
  const table = report.table("supports");
  if (!table) return new THREE.Group();
  const { components, translations } = report.model;
  const many = table.rows > MANY;
  const cone = new THREE.ConeGeometry(0.5, 1, many ? 4 : 12, 1, many).translate(0, -0.5, 0);
  const ring = new THREE.TorusGeometry(0.55, 0.09, many ? 3 : 8, many ? 8 : 20).rotateX(
    Math.PI / 2,
  );
  const cones = {
    1: new Instances(cone, theme.hex("scene-support")),
    2: new Instances(cone, theme.hex("scene-spring")),
  };
  const rings = {
    1: new Instances(ring, theme.hex("scene-support")),
    2: new Instances(ring, theme.hex("scene-spring")),
  };
  const blocks = new Instances(
    new THREE.BoxGeometry(1, 0.45, 1).translate(0, -0.225, 0),
    theme.hex("scene-support"),
  );
  const down = model.plane ? [0, 1, 0] : [0, 0, 1];
  for (let row = 0; row < table.rows; ++row) {
    const node = model.nodeAt.get(table.column("node").cell(row));
    if (!shown.node(node)) continue;
    const place = model.place(node);
    const flags = Array.from({ length: components }, (_, k) =>
      table.column(`flag${k + 1}`).cell(row),
    );
    if (components > translations && flags.every((flag) => flag === 1)) {
      blocks.add(place, down, size, size);
      continue;
    }
    const axes = supportAxes(table, row);
    for (let k = 0; k < components; ++k) {
      if (!flags[k]) continue;
      if (k < translations) cones[flags[k]].add(place, axes[k], size, size);
      else rings[flags[k]].add(place, axes[components === 3 ? 2 : k - 3], size, size);
    }
  }
  return groupOf(blocks, cones[1], cones[2], rings[1], rings[2]);
}

/** A ball near every hinged end of a beam, drawn over the line of a selected beam. */
export function hingeSymbols(report, model, size, shown) {
  const codes = report.table("elements").column("hinge_code");
  const round = model.beams.length > MANY ? [6, 4] : [16, 12];
  const balls = new Instances(new THREE.SphereGeometry(1, ...round), theme.hex("scene-hinge"));
  for (const element of model.beams.filter(shown.element)) {
    const code = codes.cell(element);
    const ends = [0, 1].map((i) => model.place(model.node(element, i)));
    const [a, b] = ends,
      inset = Math.min(0.1, (4 * size) / model.lengthOf(element));
    for (const [held, t] of [
      [code >= 10, inset],
      [code % 10 === 1, 1 - inset],
    ]) {
      if (!held)
        balls.add(
          a.map((x, k) => x + t * (b[k] - x)),
          [0, 1, 0],
          size,
          size,
        );
    }
  }
  const group = groupOf(balls);
  for (const mesh of group.children) {
    mesh.material.transparent = true; // among what is drawn last, as the selection is
    mesh.renderOrder = 4;
  }
  return group;
}

/** Arrows of forces whose tips are at nodes, and arcs of moments about their axes. */
class Arrows {
  constructor(colour, length, many) {
    this.length = length;
    const sides = many ? 3 : 12;
    this.shafts = new Instances(
      new THREE.CylinderGeometry(1, 1, 1, many ? 3 : 8, 1, many).translate(0, -0.5, 0),
      colour,
    );
    this.heads = new Instances(
      new THREE.ConeGeometry(1, 1, sides, 1, many).translate(0, -0.5, 0),
      colour,
    );
    this.arcs = new Instances(arc(many), colour);
    this.labels = [];
  }

  force(tip, force, largest, text = null) {
    const size = Math.hypot(...force);
    if (!(size > 1e-6 * largest)) return null;
    const direction = unit(force);
    const length = this.length * (0.25 + (0.75 * size) / largest),
      head = 0.24 * this.length;
    const tail = tip.map((x, k) => x - length * direction[k]);
    this.shafts.add(
      tip.map((x, k) => x - 0.8 * head * direction[k]),
      direction,
      length - 0.8 * head,
      0.028 * this.length,
    );
    this.heads.add(tip, direction, head, 0.1 * this.length);
    if (text) this.labels.push({ place: tail, text, points: [tail, tip] });
    return tail;
  }

  moment(place, moment, largest, text) {
    const size = Math.hypot(...moment);
    if (!(size > 1e-6 * largest)) return;
    const radius = 0.55 * this.length * (0.6 + (0.4 * size) / largest);
    this.arcs.add(place, unit(moment), radius, radius);
    if (text)
      this.labels.push({ place: place.map((x) => x + 0.7 * radius), text, points: [place] });
  }

  group() {
    return groupOf(this.shafts, this.heads, this.arcs);
  }
}

/** Three quarters of a circle about y, with a head that turns counter-clockwise. */
function arc(many) {
  const ring = new THREE.TorusGeometry(1, 0.05, many ? 3 : 8, many ? 10 : 32, 1.5 * Math.PI);
  const head = new THREE.ConeGeometry(0.17, 0.4, many ? 4 : 12)
    .rotateZ(-Math.PI / 2)
    .translate(0.15, -1, 0);
  return mergeGeometries([ring, head]).rotateX(-Math.PI / 2);
}

const largestOf = (values) => {
  let largest = 0;
  for (let i = 0; i < values.length; i += 3) {
    largest = Math.max(largest, Math.hypot(values[i], values[i + 1], values[i + 2]));
  }
  return largest;
};

/** Forces and moments of the rows of a table: {rows, forces, moments} by row. */
function wrenches(table) {
  const moments = triples(table, table.column("M") ? ["", "", "M"] : ["Mx", "My", "Mz"]);
  return { forces: triples(table, ["Px", "Py", "Pz"]), moments };
}

function addNodal(arrows, table, model, shown) {
  const { forces, moments } = wrenches(table);
  const force = largestOf(forces),
    moment = largestOf(moments);
  const labelled = table.rows <= 60;
  const { units } = model;
  for (let row = 0; row < table.rows; row += Math.ceil(table.rows / MOST_ARROWS)) {
    const node = model.nodeAt.get(table.column("node").cell(row));
    if (!shown.node(node)) continue;
    const place = model.place(node);
    const f = Array.from(forces.subarray(3 * row, 3 * row + 3)),
      m = Array.from(moments.subarray(3 * row, 3 * row + 3));
    const text = (values, unitName) =>
      labelled ? `${shortText(Math.hypot(...values))}${unitName ? ` ${unitName}` : ""}` : null;
    arrows.force(place, f, force, text(f, units.named ? units.force : ""));
    arrows.moment(place, m, moment, text(m, units.named ? units.moment : ""));
  }
}

/** Loads along beams as rows of arrows whose tails a line connects. */
function addLinear(arrows, report, model, group, length, shown) {
  const { beams, q } = report.loads;
  const largest = largestOf(q),
    outline = [];
  const unitName = model.units.named ? ` ${model.units.forcePerLength}` : "";
  beams.forEach((element, i) => {
    if (!shown.element(element)) return;
    const load = Array.from(q.subarray(3 * i, 3 * i + 3));
    const a = model.place(model.node(element, 0)),
      b = model.place(model.node(element, 1));
    const count =
      beams.length > 2000
        ? 1
        : Math.max(2, Math.min(12, Math.round(model.lengthOf(element) / (0.55 * length))));
    let last = null;
    for (let k = 0; k <= count; ++k) {
      const tip = a.map((x, c) => x + (k / count) * (b[c] - x));
      const middle = beams.length <= 60 && k === count >> 1;
      const tail = arrows.force(
        tip,
        load,
        largest,
        middle ? shortText(Math.hypot(...load)) + unitName : null,
      );
      if (last && tail) outline.push(...last, ...tail);
      last = tail;
    }
  });
  if (outline.length === 0) return;
  const geometry = new THREE.BufferGeometry();
  geometry.setAttribute("position", new THREE.BufferAttribute(new Float32Array(outline), 3));
  group.add(
    new THREE.LineSegments(
      geometry,
      new THREE.LineBasicMaterial({ color: theme.hex("scene-load") }),
    ),
  );
}

/** The size of symbols where there are many. */
const crowd = (count) => Math.min(1, 18 / Math.sqrt(Math.max(1, Math.min(count, MOST_ARROWS))));

/**
 * All loads: {group, labels}. Those of shells and solids are forces at their nodes. Of very many
 * only some are drawn. shown: as of Visibility.
 */
export function loadSymbols(report, model, length, shown) {
  const nodalTable = report.table("nodal_loads");
  const nodalCount = nodalTable?.rows ?? 0;
  const nodal = new Arrows(theme.hex("scene-load"), crowd(nodalCount) * length, nodalCount > MANY),
    linear = new Arrows(theme.hex("scene-load"), 0.6 * length, report.loads.beams.length > MANY);
  const surface = new Arrows(theme.hex("scene-load"), 0.55 * crowd(model.nodeCount) * length, true);
  const group = new THREE.Group();
  if (nodalTable) addNodal(nodal, nodalTable, model, shown);
  addLinear(linear, report, model, group, 0.6 * length, shown);
  const forces = report.loads.surfaces,
    largest = largestOf(forces);
  const step = Math.ceil(model.nodeCount / MOST_ARROWS);
  for (let node = 0; largest > 0 && node < model.nodeCount; node += step) {
    if (!shown.node(node)) continue;
    surface.force(model.place(node), Array.from(forces.subarray(3 * node, 3 * node + 3)), largest);
  }
  group.add(nodal.group(), linear.group(), surface.group());
  const labels = [...nodal.labels, ...linear.labels, ...surfaceLoadLabels(report, model, shown)];
  return { group, labels };
}

export function reactionSymbols(report, model, length, shown) {
  const table = report.table("reactions");
  const count = table?.rows ?? 0;
  const arrows = new Arrows(theme.hex("scene-reaction"), crowd(count) * length, count > MANY);
  if (table) addNodal(arrows, table, model, shown);
  return { group: arrows.group(), labels: arrows.labels };
}
