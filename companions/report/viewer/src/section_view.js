// The section cut on the stage: the filled faces of solids, the lines of shells, the outline of the
// plane. The cut is made in the undeformed shape and drawn in the deformed one.

import * as THREE from "three";
import { LineMaterial } from "three/examples/jsm/lines/LineMaterial.js";
import { LineSegments2 } from "three/examples/jsm/lines/LineSegments2.js";
import { LineSegmentsGeometry } from "three/examples/jsm/lines/LineSegmentsGeometry.js";
import { BEAM } from "./model.js";
import { DETAIL, NO_CUT, deformable } from "./scene.js";
import { cutShells, cutSolids, distancesFrom, planeInBox } from "./section.js";
import { placesOf } from "./surface_view.js";
import { theme } from "./theme.js";

export class SectionView {
  /** settings: those of the view; the section sets `cut`. */
  constructor(model, stage, settings) {
    Object.assign(this, { model, settings });
    this.group = new THREE.Group();
    const own = { factor: settings.factor, cut: { value: new THREE.Vector4(...NO_CUT) } };
    this.material = deformable(new THREE.MeshBasicMaterial({ side: THREE.DoubleSide }), own);
    this.fill = new THREE.Mesh(new THREE.BufferGeometry(), this.material);
    const thick = new LineMaterial({ linewidth: 5, vertexColors: true });
    stage.addThickLine(thick);
    this.lines = new LineSegments2(new LineSegmentsGeometry(), thick);
    this.plane = new THREE.LineLoop(
      new THREE.BufferGeometry(),
      new THREE.LineBasicMaterial({ color: theme.hex("accent") }),
    );
    this.plane.layers.set(DETAIL);
    for (const part of [this.fill, this.lines, this.plane]) part.frustumCulled = false;
    this.group.add(this.fill, this.lines, this.plane);
    this.show(null, []);
  }

  /** Cuts along a plane {normal, offset} (local places); what is beyond is left out. null: no cut. */
  show(plane, views) {
    const { model, settings } = this;
    this.group.visible = plane !== null;
    settings.cut.value.set(...(plane ? [...plane.normal, plane.offset] : NO_CUT));
    this.solids = this.shells = null;
    if (!plane) return;
    const distances = distancesFrom(model, plane.normal, plane.offset);
    this.solids = cutSolids(model, settings.isShown, distances);
    this.shells = views
      .filter(({ isEmpty }) => !isEmpty)
      .map((view) => ({ view, pieces: cutShells(model, view.triangles, distances) }));
    this.fill.geometry.dispose();
    this.fill.geometry = this.fillGeometry();
    this.plane.geometry.dispose();
    this.plane.geometry = outline(model, plane);
  }

  fillGeometry() {
    const { model, solids } = this;
    const geometry = new THREE.BufferGeometry();
    for (const [name, values] of [
      ["position", model.local],
      ["displacement", model.displacements],
    ])
      geometry.setAttribute(name, new THREE.BufferAttribute(solids.interpolate(values, 3), 3));
    return geometry;
  }

  /** Colours of the field; field null: plain. After show, colour and deform bring the cut up to date. */
  colour(field, scale, texture) {
    if (!this.solids) return;
    this.scale = scale;
    const nodal = field?.nodes ?? null;
    if (nodal) {
      const values = this.solids.interpolate(nodal, 1);
      this.fill.geometry.setAttribute("uv", placesOf(values, scale));
    }
    this.material.map = nodal ? texture : null;
    this.material.color.set(nodal ? 0xffffff : theme.hex("scene-surface"));
    this.material.needsUpdate = true;
  }

  /** Lines move with their points: their shader knows no displacements. */
  deform(factor) {
    if (!this.shells) return;
    const { model } = this;
    const places = [],
      colours = [];
    for (const { view, pieces } of this.shells) {
      const at = (vertex) => view.triangles.nodes[vertex];
      const position = pieces.interpolate(model.local, 3, at),
        moved = pieces.interpolate(model.displacements, 3, at);
      const values = view.values && pieces.interpolate(view.values, 1);
      for (let i = 0; i < position.length; ++i) position[i] += factor * moved[i];
      for (let i = 0; i < pieces.count; i += 2)
        this.addSegment(
          places,
          colours,
          position.subarray(3 * i, 3 * i + 6),
          values?.subarray(i, i + 2),
        );
    }
    this.lines.visible = places.length > 0;
    if (places.length === 0) return;
    this.lines.geometry.dispose();
    this.lines.geometry = new LineSegmentsGeometry().setPositions(places).setColors(colours);
  }

  /** Adds a segment, divided where the colour changes. */
  addSegment(places, colours, ends, values) {
    const stops = values ? this.scale.crossings(values[0], values[1]) : [0, 1];
    const linear = new THREE.Color();
    for (let i = 1; i < stops.length; ++i) {
      for (const t of [stops[i - 1], stops[i]])
        for (let k = 0; k < 3; ++k) places.push(ends[k] + t * (ends[k + 3] - ends[k]));
      const t = (stops[i - 1] + stops[i]) / 2;
      const rgb = values
        ? this.scale.colour(values[0] + t * (values[1] - values[0]))
        : theme.rgb("scene-beam");
      linear.setRGB(...rgb, THREE.SRGBColorSpace);
      for (let end = 0; end < 2; ++end) colours.push(linear.r, linear.g, linear.b);
    }
  }
}

function outline(model, { normal, offset }) {
  const [low, high] = [model.box.low, model.box.high].map((corner) =>
    corner.map((x, k) => x - model.box.center[k]),
  );
  const margin = 0.02 * model.box.size;
  const points = planeInBox(
    low.map((x) => x - margin),
    high.map((x) => x + margin),
    normal,
    offset,
  );
  return new THREE.BufferGeometry().setAttribute(
    "position",
    new THREE.BufferAttribute(new Float32Array(points.flat()), 3),
  );
}

/** Lets objects that are not deformed in their shaders end at the cut; null: they are whole. */
export function clip(objects, plane) {
  const planes = plane
    ? [new THREE.Plane(new THREE.Vector3(...plane.normal).negate(), plane.offset)]
    : null;
  for (const object of objects)
    object.traverse(({ material }) => {
      if (material) material.clippingPlanes = planes;
    });
}

/** Whether a model has what a section shows. */
export const canBeCut = (model) => model.elements.kinds.some((kind) => kind !== BEAM);
