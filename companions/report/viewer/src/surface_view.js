// Shells and solids on the stage: one geometry for the triangles of a mesh, one for its edges.

import * as THREE from "three";
import { BANDS } from "./colours.js";
import { vertexValues } from "./fields.js";
import { deformable, geometryAt } from "./scene.js";
import { trianglesOf } from "./surfaces.js";
import { theme } from "./theme.js";

function lines(model, nodes, colour, opacity, factor) {
  const material = new THREE.LineBasicMaterial({
    color: colour,
    transparent: opacity < 1,
    opacity,
  });
  return new THREE.LineSegments(geometryAt(model, nodes), deformable(material, factor));
}

export class SurfaceView {
  constructor(model, mesh, factor) {
    this.triangles = trianglesOf(model, mesh);
    this.group = new THREE.Group();
    if (this.triangles.nodes.length === 0) return;
    this.material = deformable(
      new THREE.MeshLambertMaterial({
        color: theme.hex("scene-surface"),
        side: THREE.DoubleSide,
        flatShading: true,
        polygonOffset: true,
        polygonOffsetFactor: 1,
        polygonOffsetUnits: 1,
      }),
      factor,
    );
    const geometry = geometryAt(model, this.triangles.nodes);
    this.places = new THREE.BufferAttribute(new Float32Array(2 * this.triangles.nodes.length), 2);
    geometry.setAttribute("uv", this.places);
    const count = this.triangles.owner.length;
    const opacity = Math.min(0.55, 60 / Math.sqrt(count));
    this.edges = lines(model, this.triangles.edges, theme.hex("scene-edge"), opacity, factor);
    this.ghost = lines(model, this.triangles.edges, theme.hex("scene-ghost"), 0.5 * opacity, {
      value: 0,
    });
    this.mesh = new THREE.Mesh(geometry, this.material);
    for (const part of [this.mesh, this.edges, this.ghost]) part.frustumCulled = false;
    this.group.add(this.mesh, this.edges, this.ghost);
  }

  get isEmpty() {
    return this.triangles.nodes.length === 0;
  }

  /** The shape itself follows the factor of its materials. */
  deform(factor) {
    if (!this.isEmpty) this.ghost.visible = factor !== 0;
  }

  /** Shows a field in colours, or none (null). */
  colour(field, scale, shells, smooth) {
    if (this.isEmpty) return;
    const values = field ? vertexValues(field, this.triangles, shells, smooth) : null;
    const shown = values !== null && !Number.isNaN(values[0]);
    for (let i = 0; shown && i < values.length; ++i)
      this.places.setXY(i, scale.place(values[i]), 0.5);
    this.places.needsUpdate = true;
    this.material.map?.dispose();
    this.material.map = shown ? bandTexture(scale) : null;
    this.material.color.set(shown ? 0xffffff : theme.hex("scene-surface"));
    this.material.needsUpdate = true;
  }
}

function bandTexture(scale) {
  const texture = new THREE.DataTexture(scale.texels(), BANDS, 1);
  texture.colorSpace = THREE.SRGBColorSpace;
  texture.needsUpdate = true;
  return texture;
}
