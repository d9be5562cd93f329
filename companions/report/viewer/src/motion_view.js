// A structure in a motion that nothing resists: beams as thick lines, shells and solids as faces, at
// the nodes' places plus an amplitude times the motion; elements at rest are left out. The elements do not strain, so that beams
// stay straight. A motion that only turns nodes is drawn as a cross that turns at each of them.

import * as THREE from "three";
import { LineMaterial } from "three/examples/jsm/lines/LineMaterial.js";
import { LineSegments2 } from "three/examples/jsm/lines/LineSegments2.js";
import { LineSegmentsGeometry } from "three/examples/jsm/lines/LineSegmentsGeometry.js";
import { unpack } from "./data.js";
import { cross, unit } from "./model.js";
import { deformable, geometryAt } from "./scene.js";
import { trianglesOf } from "./surfaces.js";
import { theme } from "./theme.js";

const REACH = 0.08; // of the largest displacement, as a part of the model's size
const CROSS = 0.04; // half a blade of a cross that turns, as a part of the model's size
const ANGLE = 0.8; // of the largest rotation, radians

/** The displacements or rotations of all nodes, three numbers each. */
function vectorsOf(model, motion) {
  const vectors = new Float32Array(3 * model.nodeCount);
  const numbers = unpack(motion.nodes),
    values = unpack(motion.vectors);
  numbers.forEach((number, i) => {
    const node = model.nodeAt.get(number);
    for (let k = 0; k < 3; ++k) vectors[3 * node + k] = values[3 * i + k];
  });
  return vectors;
}

/** The blades of a cross about an axis, turned by an angle: ends of segments. */
function bladesAt(place, axis, angle, reach) {
  const other = Math.abs(axis[0]) < 0.9 ? [1, 0, 0] : [0, 1, 0];
  const u = unit(cross(axis, other)),
    v = cross(axis, u);
  return [0, 1].flatMap((blade) => {
    const turned = angle + (blade * Math.PI) / 2;
    const arm = u.map((x, k) => reach * (Math.cos(turned) * x + Math.sin(turned) * v[k]));
    return [...place.map((x, k) => x - arm[k]), ...place.map((x, k) => x + arm[k])];
  });
}

export class MotionView {
  constructor(model, stage, motion) {
    this.model = model;
    this.turns = motion.turns;
    this.vectors = vectorsOf(model, motion);
    this.size = model.box.size;
    this.amplitude = { value: 0 };
    this.group = new THREE.Group();
    const colour = theme.hex("scene-motion");
    const material = new LineMaterial({ color: colour, linewidth: 4 });
    stage.addThickLine(material);
    this.lines = new LineSegments2(new LineSegmentsGeometry(), material);
    this.lines.frustumCulled = false;
    this.lines.renderOrder = 3;
    this.group.add(this.lines);
    if (!this.turns) this.addFaces(colour);
    this.move(0);
  }

  addFaces(color) {
    const moved = { ...this.model, displacements: this.vectors };
    for (let mesh = 1; mesh <= Math.max(...this.model.elements.meshes, 1); ++mesh) {
      const nodes = this.movingTriangles(trianglesOf(this.model, mesh).nodes);
      if (nodes.length === 0) continue;
      const material = new THREE.MeshBasicMaterial({
        color,
        transparent: true,
        opacity: 0.45,
        side: THREE.DoubleSide,
        depthWrite: false,
      });
      const faces = new THREE.Mesh(geometryAt(moved, nodes), deformable(material, this.amplitude));
      faces.frustumCulled = false;
      this.group.add(faces);
    }
  }

  moves(node) {
    return [0, 1, 2].some((k) => this.vectors[3 * node + k] !== 0);
  }

  movingTriangles(nodes) {
    const moving = [];
    for (let i = 0; i < nodes.length; i += 3) {
      const corners = [nodes[i], nodes[i + 1], nodes[i + 2]];
      if (corners.some((node) => this.moves(node))) moving.push(...corners);
    }
    return moving;
  }

  /** phase: the part of the largest amplitude, -1 to 1. */
  move(phase) {
    this.amplitude.value = phase * REACH * this.size;
    const ends = this.turns ? this.crosses(phase) : this.beams();
    this.lines.visible = ends.length > 0;
    if (!ends.length) return;
    this.lines.geometry.dispose();
    this.lines.geometry = new LineSegmentsGeometry().setPositions(ends);
  }

  beams() {
    const { model, vectors } = this;
    const ends = [];
    for (const element of model.beams) {
      const nodes = [0, 1].map((end) => model.node(element, end));
      if (!nodes.some((node) => this.moves(node))) continue;
      for (const node of nodes) {
        const first = 3 * node;
        for (let k = 0; k < 3; ++k)
          ends.push(model.local[first + k] + this.amplitude.value * vectors[first + k]);
      }
    }
    return ends;
  }

  crosses(phase) {
    const ends = [];
    for (let node = 0; node < this.model.nodeCount; ++node) {
      const vector = Array.from(this.vectors.subarray(3 * node, 3 * node + 3));
      const size = Math.hypot(...vector);
      if (size < 1e-3) continue;
      const place = this.model.place(node);
      ends.push(...bladesAt(place, unit(vector), phase * ANGLE * size, CROSS * this.size));
    }
    return ends;
  }
}
