// Which elements are shown: all but those of hidden meshes and of hidden materials.

export class Visibility {
  constructor() {
    this.meshes = new Set(); // numbers of what is hidden
    this.materials = new Set();
  }

  /** kind: "meshes" or "materials". */
  set(kind, number, on) {
    if (on) this[kind].delete(number);
    else this[kind].add(number);
  }

  /** True when a mesh or a material is hidden. */
  get hides() {
    return this.meshes.size + this.materials.size > 0;
  }

  /** A function that tells whether an element (place in the model's list) is shown. */
  test(model) {
    const { meshes, materials } = model.elements;
    return (element) =>
      !this.meshes.has(meshes[element]) && !this.materials.has(materials[element]);
  }

  /** What is shown: {element(e), node(n)}. A node is when one of its elements is, or it has none. */
  of(model) {
    const element = this.test(model);
    const own = new Uint8Array(model.nodeCount),
      shown = new Uint8Array(model.nodeCount);
    for (let e = 0; e < model.elements.count; ++e) {
      const on = element(e) ? 1 : 0;
      for (let i = 0; i < model.elements.nodeCounts[e]; ++i) {
        const node = model.node(e, i);
        own[node] = 1;
        shown[node] |= on;
      }
    }
    return { element, node: (node) => shown[node] === 1 || own[node] === 0 };
  }
}
