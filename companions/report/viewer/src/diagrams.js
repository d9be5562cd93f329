// Diagrams of internal forces along beams, as ribbons: value times y' or z' of the beam; moments
// with the opposite sign, so that they are on the side of the tension.

import * as THREE from "three";
import { beamPoint } from "./beam_view.js";
import { extremesOf } from "./fields.js";
import { DETAIL } from "./scene.js";
import { theme } from "./theme.js";

/** Name, local axis (1: y', 2: z') and sign of the drawing of each diagram. */
export const DIAGRAMS = {
  N: { axis: 1, sign: 1, title: "Axial force N", positive: "tension" },
  Vy: { axis: 1, sign: 1, title: "Shear force Vy", positive: "along +y\u2032 at end 1" },
  Vz: { axis: 2, sign: 1, title: "Shear force Vz", positive: "along +z\u2032 at end 1" },
  T: { axis: 1, sign: -1, title: "Torque T", positive: "along +x\u2032 at end 1" },
  My: { axis: 2, sign: -1, title: "Bending moment My", positive: "tension at \u2212z\u2032" },
  Mz: { axis: 1, sign: -1, title: "Bending moment Mz", positive: "tension at \u2212y\u2032" },
};

/**
 * The curves of a diagram: one, or of an envelope that of the least and that of the largest values,
 * each with the column of the combinations that govern.
 */
export function curvesOf(diagrams, name) {
  const curve = (key, label) => {
    const column = diagrams?.column(`${name}${key}`);
    if (!column) return null;
    return {
      label,
      unit: column.unit,
      by: diagrams.column(`${name}${key} by`),
      get values() {
        return column.values;
      },
    };
  };
  const one = curve("", "");
  return one ? [one] : [curve(" min", "min"), curve(" max", "max")].filter(Boolean);
}

export const hasDiagram = (diagrams, name) =>
  [name, `${name} min`].some((key) => diagrams?.column(key));

export class DiagramView {
  constructor(model) {
    this.model = model;
    this.group = new THREE.Group();
    this.labels = [];
  }

  /**
   * Draws one of DIAGRAMS along the beams with isShown(element), the largest value of all beams as
   * long as `height`; null for none.
   */
  show(name, height, isShown) {
    for (const part of this.group.children) part.geometry.dispose();
    this.group.clear();
    this.labels = [];
    const curves = name ? curvesOf(this.model.diagrams, name).map(({ values }) => values) : [];
    const ranges = curves.map(extremesOf);
    const largest = Math.max(0, ...ranges.map(({ min, max }) => Math.max(-min, max)));
    if (!(largest > 0)) return;
    for (const values of curves) {
      const ribbon = new Ribbon();
      for (let b = 0; b < this.model.beams.length; ++b)
        if (isShown(this.model.beams[b])) this.addBeam(ribbon, name, values, b, height / largest);
      this.group.add(...ribbon.objects());
    }
  }

  addBeam(ribbon, name, values, b, scale) {
    const { axis, sign } = DIAGRAMS[name];
    const { points } = this.model;
    const direction = this.model.beamAxes(this.model.beams[b])[axis];
    const foot = [0, 0, 0];
    const tip = (value) => foot.map((x, k) => x + sign * scale * value * direction[k]);
    const own = values.subarray(b * points, (b + 1) * points);
    ribbon.begin();
    for (let i = 0; i < points; ++i) {
      beamPoint(this.model, b, i, 0, foot, 0);
      ribbon.add([...foot], tip(own[i]), own[i]);
      if (i === 0 || i === points - 1) ribbon.close([...foot], tip(own[i]));
    }
    this.addLabels(b, own, tip, foot);
  }

  addLabels(b, own, tip, foot) {
    const { minAt, maxAt } = extremesOf(own);
    const largest = Math.max(...own.map(Math.abs));
    for (const at of new Set([minAt, maxAt, 0, own.length - 1])) {
      if (Math.abs(own[at]) < 1e-3 * largest) continue;
      beamPoint(this.model, b, at, 0, foot, 0);
      this.labels.push({ place: tip(own[at]), value: own[at] });
    }
  }
}

/** Quads between feet and tips, in the colour of their sign, and their outline. */
class Ribbon {
  constructor() {
    this.faces = [];
    this.colours = [];
    this.outline = [];
  }

  begin() {
    this.last = null;
  }

  close(foot, tip) {
    this.outline.push(...foot, ...tip);
  }

  add(foot, tip, value) {
    const next = { foot, tip, value };
    if (this.last) {
      this.outline.push(...this.last.tip, ...tip);
      if (this.last.value * value < 0) this.cross(this.last, next);
      else this.quad(this.last, next, this.last.value || value);
    }
    this.last = next;
  }

  cross(a, b) {
    const t = a.value / (a.value - b.value);
    const zero = a.foot.map((x, k) => x + t * (b.foot[k] - x));
    const middle = { foot: zero, tip: zero };
    this.quad(a, middle, a.value);
    this.quad(middle, b, b.value);
  }

  quad(a, b, value) {
    const colour = theme.rgb(value < 0 ? "scene-negative" : "scene-positive");
    this.faces.push(...a.foot, ...b.foot, ...b.tip, ...a.foot, ...b.tip, ...a.tip);
    for (let i = 0; i < 6; ++i) this.colours.push(...colour);
  }

  objects() {
    const attribute = (values) => new THREE.BufferAttribute(new Float32Array(values), 3);
    const faces = new THREE.BufferGeometry();
    faces.setAttribute("position", attribute(this.faces));
    const colours = attribute(this.colours);
    const linear = new THREE.Color();
    for (let i = 0; i < colours.count; ++i) {
      linear.setRGB(colours.getX(i), colours.getY(i), colours.getZ(i), THREE.SRGBColorSpace);
      colours.setXYZ(i, linear.r, linear.g, linear.b);
    }
    faces.setAttribute("color", colours);
    const outline = new THREE.BufferGeometry();
    outline.setAttribute("position", attribute(this.outline));
    const fill = new THREE.MeshBasicMaterial({
      vertexColors: true,
      transparent: true,
      opacity: 0.32,
      side: THREE.DoubleSide,
      depthWrite: false,
    });
    const line = new THREE.LineBasicMaterial({ color: theme.hex("scene-outline") });
    const objects = [new THREE.Mesh(faces, fill), new THREE.LineSegments(outline, line)];
    for (const object of objects) {
      object.frustumCulled = false;
      object.layers.set(DETAIL);
    }
    return objects;
  }
}
