// Beams on the stage: lines through their division points, deformed point by point. A thick line
// takes eight triangles a segment: models with very many segments have thin lines. While the view
// of a large model moves, its beams are thin lines through few of their points.

import * as THREE from "three";
import { LineMaterial } from "three/examples/jsm/lines/LineMaterial.js";
import { LineSegments2 } from "three/examples/jsm/lines/LineSegments2.js";
import { LineSegmentsGeometry } from "three/examples/jsm/lines/LineSegmentsGeometry.js";
import { COARSE, DETAIL } from "./scene.js";
import { theme } from "./theme.js";

const MOST_SEGMENTS = 200000,
  MOST_THICK = 30000, // segments
  MOST_COARSE = 20000;

export class BeamView {
  /** settings: those of the view that all meshes share: isShown(element). */
  constructor(model, stage, mesh, settings) {
    this.model = model;
    this.beams = model.beams
      .map((_, b) => b)
      .filter((b) => model.elements.meshes[model.beams[b]] === mesh)
      .filter((b) => settings.isShown(model.beams[b]));
    this.group = new THREE.Group();
    if (this.isEmpty) return;
    const divisions = model.points - 1;
    this.step = Math.max(1, Math.ceil((divisions * this.beams.length) / MOST_SEGMENTS));
    this.segments = Math.ceil(divisions / this.step);
    this.places = this.chosenPoints();
    this.coordinates = new Float32Array(3 * this.places.length);
    this.colours = new Float32Array(3 * this.places.length);
    this.ends = this.segmentEnds(1);
    this.attributes = [this.coordinates, this.colours].map(
      (values) => new THREE.BufferAttribute(values, 3),
    );
    const count = this.segments * this.beams.length,
      each = Math.max(1, Math.floor(MOST_COARSE / this.beams.length));
    this.thick = count <= MOST_THICK ? this.thickLine(stage) : null;
    this.ghost = this.straightLines();
    this.group.add(
      this.thick ?? this.thinLine(DETAIL, this.ends),
      this.thinLine(COARSE, this.segmentEnds(Math.ceil(this.segments / each))),
      this.ghost,
    );
    this.deform(0);
    this.colour(null);
  }

  get isEmpty() {
    return this.beams.length === 0;
  }

  /** The points that are drawn, as beam · model.points + division point. */
  chosenPoints() {
    const { points } = this.model;
    const each = this.segments + 1;
    const places = new Int32Array(each * this.beams.length);
    this.beams.forEach((b, i) => {
      for (let s = 0; s < each; ++s)
        places[i * each + s] = b * points + Math.min(points - 1, s * this.step);
    });
    return places;
  }

  thickLine(stage) {
    const material = new LineMaterial({
      linewidth: this.beams.length > 2000 ? 1.6 : 3.2,
      vertexColors: true,
    });
    stage.addThickLine(material);
    const line = new LineSegments2(new LineSegmentsGeometry(), material);
    line.frustumCulled = false;
    line.layers.set(DETAIL);
    return line;
  }

  thinLine(layer, ends) {
    const geometry = new THREE.BufferGeometry();
    ["position", "color"].forEach((name, i) => geometry.setAttribute(name, this.attributes[i]));
    geometry.setIndex(new THREE.BufferAttribute(ends, 1));
    const line = new THREE.LineSegments(
      geometry,
      new THREE.LineBasicMaterial({ vertexColors: true }),
    );
    line.frustumCulled = false;
    line.layers.set(layer);
    return line;
  }

  /** Pairs of drawn points, along every beam from each `step`-th to the next. */
  segmentEnds(step) {
    const count = Math.ceil(this.segments / step);
    const ends = new Uint32Array(2 * count * this.beams.length);
    let place = 0;
    for (let i = 0; i < this.beams.length; ++i) {
      const first = i * (this.segments + 1);
      for (let s = 0; s < this.segments; s += step) {
        ends[place++] = first + s;
        ends[place++] = first + Math.min(this.segments, s + step);
      }
    }
    return ends;
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
    const material = new THREE.LineBasicMaterial({ color: theme.hex("scene-beam-ghost") });
    const ghost = new THREE.LineSegments(geometry, material);
    ghost.layers.set(DETAIL);
    return ghost;
  }

  deform(factor) {
    if (this.isEmpty) return;
    const { points } = this.model;
    this.places.forEach((place, i) =>
      beamPoint(this.model, (place / points) | 0, place % points, factor, this.coordinates, 3 * i),
    );
    this.attributes[0].needsUpdate = true;
    this.thick?.geometry.setPositions(this.bySegments(this.coordinates));
    this.ghost.visible = factor !== 0;
  }

  /** Values of a field at the points of beams, model.points for each beam; null for none. */
  colour(values, scale) {
    if (this.isEmpty) return;
    const linear = new THREE.Color();
    const plain = theme.rgb("scene-beam");
    this.places.forEach((place, i) => {
      const rgb = values ? scale.colour(values[place]) : plain;
      linear.setRGB(...rgb, THREE.SRGBColorSpace).toArray(this.colours, 3 * i);
    });
    this.attributes[1].needsUpdate = true;
    this.thick?.geometry.setColors(this.bySegments(this.colours));
  }

  /** Triples of points as six numbers for each segment. */
  bySegments(triples) {
    const { ends } = this;
    const result = new Float32Array(3 * ends.length);
    for (let i = 0; i < ends.length; ++i) {
      for (let k = 0; k < 3; ++k) result[3 * i + k] = triples[3 * ends[i] + k];
    }
    return result;
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
