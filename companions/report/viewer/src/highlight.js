// The mark on the chosen element.

import { LineMaterial } from "three/examples/jsm/lines/LineMaterial.js";
import { LineSegments2 } from "three/examples/jsm/lines/LineSegments2.js";
import { LineSegmentsGeometry } from "three/examples/jsm/lines/LineSegmentsGeometry.js";
import { beamPoint } from "./beam_view.js";
import { BEAM } from "./model.js";
import { theme } from "./theme.js";

const TRIANGLE = [0, 1, 1, 2, 2, 0],
  TETRAHEDRON = [...TRIANGLE, 0, 3, 1, 3, 2, 3];

export class Highlight {
  constructor(stage, model) {
    this.model = model;
    const material = new LineMaterial({
      color: theme.hex("scene-selected"),
      linewidth: 6,
      depthTest: false,
      transparent: true,
      opacity: 0.75,
    });
    stage.addThickLine(material);
    this.line = new LineSegments2(new LineSegmentsGeometry(), material);
    this.line.frustumCulled = false;
    this.line.renderOrder = 2;
    this.line.visible = false;
  }

  /** Puts the mark on an element in its deformed shape; -1 takes it away. */
  place(element, factor) {
    this.line.visible = element >= 0;
    if (element < 0) return;
    const isBeam = this.model.elements.kinds[element] === BEAM;
    this.line.geometry.dispose();
    this.line.geometry = new LineSegmentsGeometry().setPositions(
      isBeam ? this.alongBeam(element, factor) : this.aroundElement(element, factor),
    );
  }

  alongBeam(element, factor) {
    const { model } = this;
    const b = model.beamOf.get(element),
      place = [0, 0, 0],
      ends = [];
    for (let i = 0; i < model.points; ++i) {
      beamPoint(model, b, i, factor, place, 0);
      ends.push(...place);
      if (i > 0 && i < model.points - 1) ends.push(...place);
    }
    return ends;
  }

  /** The straight edges between the corners. */
  aroundElement(element, factor) {
    const { model } = this;
    const isTriangle = model.elements.nodeCounts[element] % 3 === 0;
    const ends = [];
    for (const i of isTriangle ? TRIANGLE : TETRAHEDRON) {
      const first = 3 * model.node(element, i);
      for (let k = 0; k < 3; ++k)
        ends.push(model.local[first + k] + factor * model.displacements[first + k]);
    }
    return ends;
  }
}
