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

  /** A function that tells whether an element (place in the model's list) is shown. */
  test(model) {
    const { meshes, materials } = model.elements;
    return (element) =>
      !this.meshes.has(meshes[element]) && !this.materials.has(materials[element]);
  }
}
