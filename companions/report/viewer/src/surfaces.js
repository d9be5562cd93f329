// Triangles to draw: shells, and the faces of solids that belong to one element only.

import { SHELL, SOLID } from "./model.js";

// Nodes (from 0) of the pieces of a triangle with corners 0 1 2 and middles 3 4 5 of its edges
// 0-1, 1-2, 2-0.
const PIECES = { 3: [0, 1, 2], 6: [0, 3, 5, 3, 1, 4, 5, 4, 2, 3, 4, 5] };

// Faces of a tetrahedron by their corners, and the middle nodes of its edges.
const FACES = [
  [0, 2, 1],
  [0, 1, 3],
  [1, 2, 3],
  [0, 3, 2],
];
const MIDDLES = { "0,1": 4, "1,2": 5, "0,2": 6, "0,3": 7, "1,3": 8, "2,3": 9 };

/** Places, from 0, of the nodes of a face of a solid: its corners, and the middles between them. */
function faceNodes(corners, nodeCount) {
  if (nodeCount === 4) return corners;
  const middle = (i, j) => MIDDLES[[Math.min(i, j), Math.max(i, j)].join()];
  const [a, b, c] = corners;
  return [a, b, c, middle(a, b), middle(b, c), middle(c, a)];
}

/**
 * The faces of solids of a mesh that no other shown element of it shares, as 4 * element + face.
 * They are found by their least two nodes; faces with the same two are chained.
 */
function boundaryFaces(model, mesh, isShown) {
  const { elements } = model;
  const first = new Map(),
    faces = new Collector(Int32Array),
    greatest = new Collector(Int32Array),
    next = new Collector(Int32Array);
  const add = (face, nodes) => {
    const [a, b, c] = nodes.sort((i, j) => i - j);
    const key = a * model.nodeCount + b,
      head = first.get(key) ?? -1;
    for (let i = head; i >= 0; i = next.values[i]) {
      if (greatest.values[i] !== c) continue;
      faces.values[i] = -1;
      return;
    }
    first.set(key, faces.length);
    faces.push(face);
    greatest.push(c);
    next.push(head);
  };
  for (let e = 0; e < elements.count; ++e) {
    if (elements.kinds[e] !== SOLID || elements.meshes[e] !== mesh || !isShown(e)) continue;
    for (let f = 0; f < 4; ++f)
      add(
        4 * e + f,
        FACES[f].map((i) => model.node(e, i)),
      );
  }
  return faces.take().filter((face) => face >= 0);
}

/** Grows a typed array as it is filled. */
export class Collector {
  constructor(Type) {
    this.values = new Type(1024);
    this.length = 0;
  }

  push(value) {
    if (this.length === this.values.length) {
      const larger = new this.values.constructor(2 * this.length);
      larger.set(this.values);
      this.values = larger;
    }
    this.values[this.length++] = value;
  }

  take() {
    return this.values.slice(0, this.length);
  }
}

/**
 * The triangles of the shown elements of a mesh, as flat arrays:
 * nodes: three for each triangle; owner: its element; corner: for each vertex its place among the
 * element's nodes (from 0); outline, inner: edges as pairs of nodes, each edge once. The outline
 * has the edges of the surface and its folds.
 */
export function trianglesOf(model, mesh, isShown = () => true) {
  const { elements } = model;
  const out = {
    nodes: new Collector(Int32Array),
    owner: new Collector(Int32Array),
    corner: new Collector(Uint8Array),
  };
  const edges = new EdgeSet(model);
  const addFace = (element, places) => {
    for (const [i, place] of PIECES[places.length].entries()) {
      out.nodes.push(model.node(element, places[place]));
      out.corner.push(places[place]);
      if (i % 3 === 0) out.owner.push(element);
    }
    edges.addFace(places.map((place) => model.node(element, place)));
  };
  for (let e = 0; e < elements.count; ++e) {
    if (elements.kinds[e] !== SHELL || elements.meshes[e] !== mesh || !isShown(e)) continue;
    addFace(e, elements.nodeCounts[e] === 6 ? [0, 1, 2, 3, 4, 5] : [0, 1, 2]);
  }
  for (const face of boundaryFaces(model, mesh, isShown)) {
    const element = face >> 2;
    addFace(element, faceNodes(FACES[face & 3], elements.nodeCounts[element]));
  }
  return {
    nodes: out.nodes.take(),
    owner: out.owner.take(),
    corner: out.corner.take(),
    ...edges.take(),
  };
}

const FOLD = Math.cos((30 * Math.PI) / 180); // of the normals of two faces

/** Edges of faces, each once, with the number of their faces and whether these form a fold. */
class EdgeSet {
  constructor(model) {
    this.model = model;
    this.slots = new Int32Array(4096).fill(-1); // hash table of edges; -1: empty
    this.normal = [0, 0, 0];
    this.pairs = new Collector(Int32Array);
    this.normals = new Collector(Float32Array); // of the first face of each edge
    this.faces = new Collector(Uint8Array); // their number; 3 also at a fold
  }

  /** nodes: the corners, then the nodes in the middles of the edges if there are any. */
  addFace(nodes) {
    const normal = this.normalOf(nodes);
    for (let i = 0; i < 3; ++i) {
      const j = (i + 1) % 3;
      if (nodes.length === 3) this.add(nodes[i], nodes[j], normal);
      else {
        this.add(nodes[i], nodes[i + 3], normal);
        this.add(nodes[i + 3], nodes[j], normal);
      }
    }
  }

  /** The unit normal of a face, in one array for all: there are many faces. */
  normalOf(nodes) {
    const { local } = this.model;
    const [a, b, c] = [3 * nodes[0], 3 * nodes[1], 3 * nodes[2]];
    for (let k = 0; k < 3; ++k) {
      const i = (k + 1) % 3,
        j = (k + 2) % 3;
      this.normal[k] =
        (local[b + i] - local[a + i]) * (local[c + j] - local[a + j]) -
        (local[b + j] - local[a + j]) * (local[c + i] - local[a + i]);
    }
    const size = Math.hypot(this.normal[0], this.normal[1], this.normal[2]) || 1;
    for (let k = 0; k < 3; ++k) this.normal[k] /= size;
    return this.normal;
  }

  add(one, other, normal) {
    const a = Math.min(one, other),
      b = Math.max(one, other);
    if (2 * this.faces.length >= this.slots.length) this.grow();
    const slot = this.slotOf(a, b);
    const edge = this.slots[slot];
    if (edge < 0) {
      this.slots[slot] = this.faces.length;
      this.pairs.push(a);
      this.pairs.push(b);
      for (let k = 0; k < 3; ++k) this.normals.push(normal[k]);
      this.faces.push(1);
      return;
    }
    const { values } = this.normals;
    const first = 3 * edge;
    const cosine =
      normal[0] * values[first] + normal[1] * values[first + 1] + normal[2] * values[first + 2];
    this.faces.values[edge] = Math.abs(cosine) < FOLD ? 3 : this.faces.values[edge] + 1;
  }

  /** The place in the hash table of an edge, or the empty one where it belongs (a < b). */
  slotOf(a, b) {
    const mask = this.slots.length - 1,
      { values } = this.pairs;
    let slot = (Math.imul(a, 0x9e3779b1) ^ Math.imul(b, 0x85ebca6b)) >>> 0;
    slot = (slot ^ (slot >>> 15)) & mask;
    for (let edge = this.slots[slot]; edge >= 0; edge = this.slots[slot]) {
      if (values[2 * edge] === a && values[2 * edge + 1] === b) break;
      slot = (slot + 1) & mask;
    }
    return slot;
  }

  grow() {
    this.slots = new Int32Array(2 * this.slots.length).fill(-1);
    const { values } = this.pairs;
    for (let edge = 0; edge < this.faces.length; ++edge)
      this.slots[this.slotOf(values[2 * edge], values[2 * edge + 1])] = edge;
  }

  /** Two faces without a fold make an inner edge; all other edges belong to the outline. */
  take() {
    const parts = { outline: new Collector(Int32Array), inner: new Collector(Int32Array) };
    for (let edge = 0; edge < this.faces.length; ++edge) {
      const part = this.faces.values[edge] === 2 ? parts.inner : parts.outline;
      part.push(this.pairs.values[2 * edge]);
      part.push(this.pairs.values[2 * edge + 1]);
    }
    return { outline: parts.outline.take(), inner: parts.inner.take() };
  }
}
