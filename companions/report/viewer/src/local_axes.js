// Local axes x', y', z' of beams, shells and inclined supports, as three short lines at each.

import * as THREE from "three";
import { h } from "./dom.js";
import { BEAM, SHELL } from "./model.js";
import { DETAIL, deformable } from "./scene.js";
import { axesOfEuler } from "./symbols.js";
import { theme } from "./theme.js";

export const AXIS_COLOURS = ["scene-x", "scene-y", "scene-z"];
const NAMES = ["x\u2032", "y\u2032", "z\u2032"];
const MOST = 400; // elements of each kind; of more only some show their axes

export class LocalAxes {
  constructor(stage, labels, settings) {
    Object.assign(this, { stage, labels, settings });
    this.key = h(
      "div",
      { class: "axes-key", hidden: true },
      "local axes ",
      NAMES.map((name, k) => h("b", { style: `color:var(--${AXIS_COLOURS[k]})` }, name)),
    );
    stage.container.append(this.key);
    const material = new THREE.LineBasicMaterial({ vertexColors: true, depthTest: false });
    this.line = new THREE.LineSegments(new THREE.BufferGeometry(), deformable(material, settings));
    this.line.frustumCulled = false;
    this.line.renderOrder = 2;
    this.line.layers.set(DETAIL);
  }

  /** which: "" none, "selected" or "all"; selected: place of an element, -1 for none. */
  show(which, report, model, selected) {
    const list =
      which === "all"
        ? framesOfAll(report, model, this.settings.isShown)
        : which && selected >= 0
          ? [frameOf(model, selected)]
          : [];
    const frames = list.filter(Boolean);
    this.line.geometry.dispose();
    this.line.geometry = geometryOf(frames);
    this.line.material.depthTest = which === "all";
    this.line.visible = frames.length > 0;
    this.key.hidden = frames.length === 0;
    const single = frames.length === 1 ? frames[0] : null;
    NAMES.forEach((text, k) => {
      const colour = theme.css(AXIS_COLOURS[k]);
      const tip = single && single.place.map((x, i) => x + single.size * single.axes[k][i]);
      this.labels.set(`axis${k}`, colour, tip ? [{ place: tip, text }] : []);
    });
  }
}

/** {place, moved, axes, size} at the middle of a beam or shell; null for a solid. */
function frameOf(model, element) {
  const kind = model.elements.kinds[element];
  if (kind !== BEAM && kind !== SHELL) return null;
  const count = kind === BEAM ? 2 : 3;
  const nodes = Array.from({ length: count }, (_, i) => model.node(element, i));
  const mean = (values) =>
    [0, 1, 2].map((k) => nodes.reduce((sum, node) => sum + values[3 * node + k], 0) / count);
  const length = model.lengthOf(element);
  return {
    place: mean(model.local),
    moved: kind === BEAM ? middleOfBeam(model, element) : mean(model.displacements),
    axes: kind === BEAM ? model.beamAxes(element) : model.shellAxes(element),
    size: Math.min(0.35 * length, 0.07 * model.box.size),
  };
}

function middleOfBeam(model, element) {
  const point = model.beamOf.get(element) * model.points + ((model.points - 1) >> 1);
  return Array.from(model.beamDisplacements.subarray(3 * point, 3 * point + 3));
}

/** Supports with axes of their own. */
function framesOfSupports(report, model) {
  const table = report.table("supports");
  const angles = ["Euler1", "Euler2", "Euler3"].map((name) => table?.column(name));
  const frames = [];
  for (let row = 0; angles[0] && row < table.rows; ++row) {
    if (angles[0].cell(row) === null) continue;
    const node = model.nodeAt.get(table.column("node").cell(row));
    frames.push({
      place: model.place(node),
      moved: [0, 0, 0],
      axes: axesOfEuler(angles.map((column) => column.cell(row) ?? 0)),
      size: 0.05 * model.box.size,
    });
  }
  return frames;
}

function framesOfAll(report, model, isShown) {
  const { elements } = model;
  const thinned = (all) => all.filter((_, i) => i % Math.ceil(all.length / MOST) === 0);
  const ofKind = (kind) =>
    Array.from(elements.kinds.keys()).filter((e) => elements.kinds[e] === kind && isShown(e));
  return [
    ...[BEAM, SHELL].flatMap((kind) => thinned(ofKind(kind))).map((e) => frameOf(model, e)),
    ...thinned(framesOfSupports(report, model)),
  ];
}

function geometryOf(frames) {
  const position = [],
    displacement = [],
    colours = [];
  for (const { place, moved, axes, size } of frames) {
    axes.forEach((axis, k) => {
      position.push(...place, ...place.map((x, i) => x + size * axis[i]));
      displacement.push(...moved, ...moved);
      const { r, g, b } = new THREE.Color(theme.hex(AXIS_COLOURS[k]));
      colours.push(r, g, b, r, g, b);
    });
  }
  const geometry = new THREE.BufferGeometry();
  for (const [name, values] of Object.entries({ position, displacement, color: colours }))
    geometry.setAttribute(name, new THREE.BufferAttribute(new Float32Array(values), 3));
  return geometry;
}
