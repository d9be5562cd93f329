// Shells and solids on the stage. Each mesh is two objects: its triangles, and one object for all
// of its lines: the inner edges of the mesh, its outline, and the outline of the undeformed shape.
// Triangles share a vertex where the node and the value agree, because a renderer without a
// graphics card spends most of its time on vertices.

import * as THREE from "three";
import { vertexValues } from "./fields.js";
import { DETAIL, deformable, geometryAt } from "./scene.js";
import { trianglesOf } from "./surfaces.js";
import { theme } from "./theme.js";

const EDGE = ["scene-edge", 0.55],
  GHOST = ["scene-ghost", 0.6];

/** Vertices of triangles: {nodes, values, index}. Corners with one node and one value share one. */
export function sharedVertices(corners, cornerValues, nodeCount) {
  const nodes = new Int32Array(corners.length),
    values = new Float32Array(corners.length),
    next = new Int32Array(corners.length),
    index = new Uint32Array(corners.length),
    first = new Int32Array(nodeCount).fill(-1);
  let count = 0;
  for (let i = 0; i < corners.length; ++i) {
    const node = corners[i],
      value = cornerValues ? cornerValues[i] : 0;
    let vertex = first[node];
    while (vertex >= 0 && !Object.is(values[vertex], value)) vertex = next[vertex];
    if (vertex < 0) {
      vertex = count++;
      nodes[vertex] = node;
      values[vertex] = value;
      next[vertex] = first[node];
      first[node] = vertex;
    }
    index[i] = vertex;
  }
  return { nodes: nodes.subarray(0, count), values: values.subarray(0, count), index };
}

export class SurfaceView {
  /** settings: those of the view that all meshes share: factor, cut, isShown(element). */
  constructor(model, mesh, settings) {
    this.model = model;
    this.triangles = trianglesOf(model, mesh, settings.isShown);
    this.group = new THREE.Group();
    this.values = null; // of the corners of the triangles, as they are shown
    if (this.isEmpty) return;
    this.material = deformable(
      new THREE.MeshLambertMaterial({
        color: theme.hex("scene-surface"),
        side: THREE.DoubleSide,
        flatShading: true,
        polygonOffset: true,
        polygonOffsetFactor: 1,
        polygonOffsetUnits: 1,
      }),
      settings,
    );
    this.mesh = new THREE.Mesh(this.geometry(), this.material);
    this.edges = new Edges(model, this.triangles, settings);
    this.mesh.frustumCulled = false;
    this.group.add(this.mesh, this.edges.line);
  }

  get isEmpty() {
    return this.triangles.nodes.length === 0;
  }

  geometry() {
    const vertices = sharedVertices(this.triangles.nodes, this.values, this.model.nodeCount);
    const geometry = geometryAt(this.model, vertices.nodes);
    geometry.setIndex(new THREE.BufferAttribute(vertices.index, 1));
    this.vertexValues = vertices.values;
    return geometry;
  }

  /** The shape itself follows the factor of its materials. */
  deform(factor) {
    if (!this.isEmpty) this.edges.show({ ghost: factor !== 0 });
  }

  showLines(on) {
    if (!this.isEmpty) this.edges.show({ inner: on });
  }

  /** Shows a field in colours, or none (null). texture: the bands of the scale. */
  colour(field, scale, shells, smooth, texture) {
    if (this.isEmpty) return;
    const values = field ? vertexValues(field, this.triangles, shells, smooth) : null;
    const shown = values !== null && !Number.isNaN(values[0]);
    this.values = shown ? values : null;
    this.mesh.geometry.dispose();
    this.mesh.geometry = this.geometry();
    if (shown) this.mesh.geometry.setAttribute("uv", placesOf(this.vertexValues, scale));
    this.material.map = shown ? texture : null;
    this.material.color.set(shown ? 0xffffff : theme.hex("scene-surface"));
    this.material.needsUpdate = true;
  }
}

/** Texture coordinates of values. */
export function placesOf(values, scale) {
  const places = new Float32Array(2 * values.length);
  for (let i = 0; i < values.length; ++i) {
    places[2 * i] = scale.place(values[i]);
    places[2 * i + 1] = 0.5;
  }
  return new THREE.BufferAttribute(places, 2);
}

/**
 * Inner edges, outline and undeformed outline in one object: the parts that are shown are always
 * neighbours in its index.
 */
class Edges {
  constructor(model, triangles, settings) {
    const { inner, outline, owner } = triangles;
    this.counts = { inner: inner.length, outline: outline.length };
    this.shown = { inner: true, ghost: false };
    const parts = [inner, outline, outline].map((nodes) =>
      sharedVertices(nodes, null, model.nodeCount),
    );
    const nodes = parts.flatMap((part) => Array.from(part.nodes));
    const geometry = geometryAt(model, nodes);
    const colours = new Float32Array(4 * nodes.length),
      index = new Uint32Array(inner.length + 2 * outline.length);
    const opacity = Math.min(EDGE[1], 60 / Math.sqrt(owner.length));
    let firstVertex = 0,
      place = 0;
    parts.forEach((part, k) => {
      const rgb = new THREE.Color(theme.hex(k === 2 ? GHOST[0] : EDGE[0])),
        alpha = [opacity, EDGE[1], GHOST[1]][k];
      for (let i = 0; i < part.nodes.length; ++i)
        colours.set([rgb.r, rgb.g, rgb.b, alpha], 4 * (firstVertex + i));
      for (const vertex of part.index) index[place++] = firstVertex + vertex;
      firstVertex += part.nodes.length;
    });
    const ghost = 3 * (nodes.length - parts[2].nodes.length);
    geometry.attributes.displacement.array.fill(0, ghost);
    geometry.setAttribute("color", new THREE.BufferAttribute(colours, 4));
    geometry.setIndex(new THREE.BufferAttribute(index, 1));
    const material = new THREE.LineBasicMaterial({ vertexColors: true, transparent: true });
    this.line = new THREE.LineSegments(geometry, deformable(material, settings));
    this.line.frustumCulled = false;
    this.line.layers.set(DETAIL);
    this.show({});
  }

  /** Changes which parts are shown: {inner, ghost}, those that are given. */
  show(parts) {
    Object.assign(this.shown, parts);
    const { inner, outline } = this.counts;
    const start = this.shown.inner ? 0 : inner;
    const end = inner + (this.shown.ghost ? 2 : 1) * outline;
    this.line.geometry.setDrawRange(start, end - start);
  }
}
