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

/** Faces {element, corners} of the solids of a mesh that no other element shares. */
function boundaryFaces(model, mesh) {
  const { elements } = model;
  const faces = new Map();
  for (let e = 0; e < elements.count; ++e) {
    if (elements.kinds[e] !== SOLID || elements.meshes[e] !== mesh) continue;
    for (let f = 0; f < 4; ++f) {
      const [a, b, c] = FACES[f].map((i) => model.node(e, i)).sort((i, j) => i - j);
      const key = `${a} ${b} ${c}`;
      if (faces.has(key)) faces.set(key, -1);
      else faces.set(key, 4 * e + f);
    }
  }
  return [...faces.values()].filter((face) => face >= 0);
}

/** Grows a typed array as it is filled. */
class Collector {
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
 * The triangles of a mesh, without objects of their own:
 * nodes: three for each triangle; owner: its element; corner: for each vertex its place among the
 * element's nodes (from 0); edges: pairs of nodes, each once.
 */
export function trianglesOf(model, mesh) {
  const { elements } = model;
  const out = {
    nodes: new Collector(Int32Array),
    owner: new Collector(Int32Array),
    corner: new Collector(Uint8Array),
  };
  const edges = new EdgeSet(model.nodeCount);
  const addFace = (element, places) => {
    for (const [i, place] of PIECES[places.length].entries()) {
      out.nodes.push(model.node(element, places[place]));
      out.corner.push(places[place]);
      if (i % 3 === 0) out.owner.push(element);
    }
    const half = places.length / 2;
    for (let i = 0; i < 3; ++i) {
      const ring = places.length === 6 ? [i, i + half, (i + 1) % 3] : [i, (i + 1) % 3];
      for (let k = 1; k < ring.length; ++k) {
        edges.add(model.node(element, places[ring[k - 1]]), model.node(element, places[ring[k]]));
      }
    }
  };
  for (let e = 0; e < elements.count; ++e) {
    if (elements.kinds[e] !== SHELL || elements.meshes[e] !== mesh) continue;
    addFace(e, elements.nodeCounts[e] === 6 ? [0, 1, 2, 3, 4, 5] : [0, 1, 2]);
  }
  for (const face of boundaryFaces(model, mesh)) {
    const element = face >> 2;
    addFace(element, faceNodes(FACES[face & 3], elements.nodeCounts[element]));
  }
  return {
    nodes: out.nodes.take(),
    owner: out.owner.take(),
    corner: out.corner.take(),
    edges: edges.take(),
  };
}

/** Pairs of nodes, each once. */
class EdgeSet {
  constructor(nodeCount) {
    this.nodeCount = nodeCount;
    this.known = new Set();
    this.pairs = new Collector(Int32Array);
  }

  add(a, b) {
    const key = Math.min(a, b) * this.nodeCount + Math.max(a, b);
    if (this.known.has(key)) return;
    this.known.add(key);
    this.pairs.push(a);
    this.pairs.push(b);
  }

  take() {
    return this.pairs.take();
  }
}
