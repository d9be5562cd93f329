// Beams on the stage, as thick lines through their division points, deformed point by point.

import * as THREE from "three";
import { LineMaterial } from "three/examples/jsm/lines/LineMaterial.js";
import { LineSegments2 } from "three/examples/jsm/lines/LineSegments2.js";
import { LineSegmentsGeometry } from "three/examples/jsm/lines/LineSegmentsGeometry.js";
import { theme } from "./theme.js";

const MOST_SEGMENTS = 200000;

export class BeamView {
  constructor(model, stage, mesh) {
    this.model = model;
    this.beams = model.beams
      .map((_, b) => b)
      .filter((b) => model.elements.meshes[model.beams[b]] === mesh);
    this.group = new THREE.Group();
    if (this.beams.length === 0) return;
    const divisions = model.points - 1;
    this.step = Math.max(1, Math.ceil((divisions * this.beams.length) / MOST_SEGMENTS));
    this.segments = Math.ceil(divisions / this.step);
    this.coordinates = new Float32Array(6 * this.segments * this.beams.length);
    this.line = this.thickLine(stage);
    this.ghost = this.straightLines();
    this.group.add(this.line, this.ghost);
    this.deform(0);
    this.colour(null);
  }

  get isEmpty() {
    return this.beams.length === 0;
  }

  thickLine(stage) {
    const material = new LineMaterial({
      linewidth: this.beams.length > 2000 ? 1.6 : 3.2,
      vertexColors: true,
    });
    stage.addThickLine(material);
    const line = new LineSegments2(new LineSegmentsGeometry(), material);
    line.frustumCulled = false;
    return line;
  }

  /** The shape without displacements. */
  straightLines() {
    const position = new Float32Array(6 * this.beams.length);
    this.beams.forEach((b, i) => {
      for (const end of [0, 1]) {
        position.set(this.model.place(this.model.node(this.model.beams[b], end)), 6 * i + 3 * end);
      }
    });
    const geometry = new THREE.BufferGeometry();
    geometry.setAttribute("position", new THREE.BufferAttribute(position, 3));
    return new THREE.LineSegments(
      geometry,
      new THREE.LineBasicMaterial({ color: theme.hex("scene-beam-ghost") }),
    );
  }

  /** Visits the ends of all segments: place in the array, beam, division point. */
  visit(use) {
    const last = this.model.points - 1;
    let place = 0;
    for (const b of this.beams) {
      for (let s = 0; s < this.segments; ++s) {
        use(place++, b, Math.min(last, s * this.step));
        use(place++, b, Math.min(last, (s + 1) * this.step));
      }
    }
  }

  deform(factor) {
    if (this.isEmpty) return;
    this.visit((place, b, point) =>
      beamPoint(this.model, b, point, factor, this.coordinates, 3 * place),
    );
    this.line.geometry.setPositions(this.coordinates);
    this.ghost.visible = factor !== 0;
  }

  /** Values of a field at the points of beams, three for each beam; null for none. */
  colour(values, scale) {
    if (this.isEmpty) return;
    const colours = new Float32Array(this.coordinates.length);
    const linear = new THREE.Color();
    const plain = theme.rgb("scene-beam");
    this.visit((place, b, point) => {
      const rgb = values ? scale.colour(values[b * this.model.points + point]) : plain;
      linear.setRGB(...rgb, THREE.SRGBColorSpace).toArray(colours, 3 * place);
    });
    this.line.geometry.setColors(colours);
  }
}

/** Writes the place of a division point with `factor` times its displacement. */
export function beamPoint(model, b, point, factor, out, offset) {
  const element = model.beams[b],
    t = point / (model.points - 1);
  const first = 3 * model.node(element, 0),
    second = 3 * model.node(element, 1);
  const displaced = 3 * (b * model.points + point);
  for (let k = 0; k < 3; ++k) {
    const start = model.local[first + k];
    out[offset + k] =
      start +
      t * (model.local[second + k] - start) +
      factor * model.beamDisplacements[displaced + k];
  }
}
