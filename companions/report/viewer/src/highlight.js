// The marks on the chosen node, or on the chosen element, with the rest of its member in a pale line.

import * as THREE from "three";
import { LineMaterial } from "three/examples/jsm/lines/LineMaterial.js";
import { LineSegments2 } from "three/examples/jsm/lines/LineSegments2.js";
import { LineSegmentsGeometry } from "three/examples/jsm/lines/LineSegmentsGeometry.js";
import { beamPoint } from "./beam_view.js";
import { BEAM } from "./model.js";
import { theme } from "./theme.js";

const DOT = 13; // pixels
const TRIANGLE = [0, 1, 1, 2, 2, 0],
  TETRAHEDRON = [...TRIANGLE, 0, 3, 1, 3, 2, 3];

export class Highlight {
  constructor(stage, model, members) {
    this.model = model;
    this.members = members;
    this.line = thickLine(stage, { linewidth: 6, opacity: 0.75 });
    this.rest = thickLine(stage, { linewidth: 9, opacity: 0.28 });
    this.dot = roundDot();
    this.objects = [this.rest, this.line, this.dot];
  }

  /** Puts the marks on an element in its deformed shape, or on a node; -1 takes them away. */
  place({ element, node }, factor) {
    const isBeam = element >= 0 && this.model.elements.kinds[element] === BEAM;
    this.line.visible = element >= 0;
    this.rest.visible = isBeam && this.memberOf(element).length > 1;
    this.dot.visible = node >= 0;
    if (element >= 0)
      setLine(
        this.line,
        isBeam ? this.alongBeam(element, factor) : this.aroundElement(element, factor),
      );
    if (this.rest.visible) setLine(this.rest, this.alongMember(element, factor));
    if (node >= 0) this.dot.position.fromArray(this.nodePlace(node, factor));
  }

  nodePlace(node, factor) {
    const { local, displacements } = this.model;
    return [0, 1, 2].map((k) => local[3 * node + k] + factor * displacements[3 * node + k]);
  }

  /** The beams of the member of a beam, as places in the list of beams. */
  memberOf(element) {
    const { model, members } = this;
    return members.beamsOf(members.of[model.beamOf.get(element)]);
  }

  alongMember(element, factor) {
    const ends = [];
    for (const b of this.memberOf(element))
      for (const value of this.alongBeam(this.model.beams[b], factor)) ends.push(value);
    return ends;
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
    return (isTriangle ? TRIANGLE : TETRAHEDRON).flatMap((i) =>
      this.nodePlace(model.node(element, i), factor),
    );
  }
}

function setLine(line, ends) {
  line.geometry.dispose();
  line.geometry = new LineSegmentsGeometry().setPositions(ends);
}

/** A line over everything else. */
function thickLine(stage, look) {
  const material = new LineMaterial({
    color: theme.hex("scene-selected"),
    depthTest: false,
    transparent: true,
    ...look,
  });
  stage.addThickLine(material);
  const line = new LineSegments2(new LineSegmentsGeometry(), material);
  line.frustumCulled = false;
  line.renderOrder = 2;
  line.visible = false;
  return line;
}

/** A round point with a light border, of a fixed size. */
function roundDot() {
  const material = new THREE.PointsMaterial({
    color: theme.hex("scene-selected"),
    size: DOT * Math.min(window.devicePixelRatio, 2),
    sizeAttenuation: false,
    depthTest: false,
    transparent: true,
  });
  material.onBeforeCompile = (shader) => {
    shader.fragmentShader = shader.fragmentShader.replace(
      "#include <color_fragment>",
      `#include <color_fragment>
      float away = length(gl_PointCoord - vec2(0.5));
      if (away > 0.5) discard;
      if (away > 0.36) diffuseColor.rgb = vec3(1.0);`,
    );
  };
  const geometry = new THREE.BufferGeometry();
  geometry.setAttribute("position", new THREE.BufferAttribute(new Float32Array(3), 3));
  const dot = new THREE.Points(geometry, material);
  dot.frustumCulled = false;
  dot.renderOrder = 3;
  dot.visible = false;
  return dot;
}
