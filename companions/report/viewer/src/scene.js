// The stage: renderer, camera and its moves. It draws when something has changed, not all the time.

import * as THREE from "three";
import { OrbitControls } from "three/examples/jsm/controls/OrbitControls.js";
import { theme } from "./theme.js";

const VIEWS = {
  iso: [
    [-0.55, -0.9, 0.5],
    [0, 0, 1],
  ],
  front: [
    [0, -1, 0],
    [0, 0, 1],
  ],
  side: [
    [1, 0, 0],
    [0, 0, 1],
  ],
  // Not quite from above: the camera turns about z, and from z itself it has no direction.
  top: [
    [0, -1e-5, 1],
    [0, 0, 1],
  ],
  plane: [
    [0, 0, 1],
    [0, 1, 0],
  ],
};

/**
 * Layers: what shows always is on layer 0. Of a large model DETAIL is hidden while the view moves;
 * COARSE shows only then.
 */
export const DETAIL = 1,
  COARSE = 2;

/** Elements above which mesh lines are off at first and moves leave out details. */
export const LARGE = 5000;
export const isLarge = ({ elements, beams, points }) =>
  elements.count > LARGE || beams.length * points > 2 * LARGE;
const SETTLED = 180; // milliseconds from the end of a move to the full picture

export class Stage {
  constructor(container, model) {
    this.container = container;
    this.model = model;
    this.renderer = new THREE.WebGLRenderer({ antialias: true, preserveDrawingBuffer: true });
    this.setGround();
    this.renderer.localClippingEnabled = true;
    this.renderer.setPixelRatio(usualRatio());
    this.scene = new THREE.Scene();
    this.camera = new THREE.OrthographicCamera(-1, 1, 1, -1, -1, 1);
    if (!model.plane) this.camera.up.set(0, 0, 1); // the axis about which the controls turn
    this.camera.layers.enable(DETAIL);
    /** Whether a place is beyond the cut. */
    this.hides = () => false;
    this.listeners = [];
    this.thickLines = []; // their materials need the size of the canvas
    this.addLights();
    container.append(this.renderer.domElement);
    this.controls = new OrbitControls(this.camera, this.renderer.domElement);
    this.controls.enableRotate = !model.plane;
    this.controls.zoomToCursor = true;
    if (model.plane) this.controls.mouseButtons.LEFT = THREE.MOUSE.PAN;
    if (model.plane) this.controls.touches.ONE = THREE.TOUCH.PAN;
    this.controls.addEventListener("change", () => this.draw());
    this.controls.addEventListener("start", () => this.beginMove());
    this.controls.addEventListener("end", () => this.endMove());
    new ResizeObserver(() => this.resize()).observe(container);
    this.resize();
    this.look(model.plane ? "top" : "iso");
  }

  addLights() {
    this.scene.add(new THREE.AmbientLight(0xffffff, 2.2));
    this.light = new THREE.DirectionalLight(0xffffff, 1.1);
    this.camera.add(this.light);
    this.light.position.set(0.4, 0.7, 1);
    this.scene.add(this.camera);
  }

  /** Leaves out the details of a large model until endMove. */
  beginMove() {
    clearTimeout(this.settling);
    if (this.isMoving || !isLarge(this.model)) return;
    this.isMoving = true;
    this.camera.layers.disable(DETAIL);
    this.camera.layers.enable(COARSE);
    this.renderer.setPixelRatio(Math.min(1, usualRatio()));
    this.draw();
  }

  /** The full picture comes a moment later: turns of a wheel are many short moves. */
  endMove() {
    if (!this.isMoving) return;
    clearTimeout(this.settling);
    this.settling = setTimeout(() => {
      this.isMoving = false;
      this.camera.layers.enable(DETAIL);
      this.camera.layers.disable(COARSE);
      this.renderer.setPixelRatio(usualRatio());
      this.draw();
    }, SETTLED);
  }

  resize() {
    const { clientWidth: width, clientHeight: height } = this.container;
    const isSame = width === this.width && height === this.height;
    if (width && height && !isSame) this.resizeTo(width, height); // a change waits for the last picture
  }

  resizeTo(width, height) {
    this.width = width;
    this.height = height;
    this.renderer.setSize(width, height, false);
    for (const material of this.thickLines) material.resolution.set(width, height);
    this.setFrustum();
    this.draw();
  }

  /** Tells the material of a thick line the size of the canvas, now and when it changes. */
  addThickLine(material) {
    this.thickLines.push(material);
    material.addEventListener("dispose", () => {
      this.thickLines = this.thickLines.filter((one) => one !== material);
    });
    material.resolution.set(this.width, this.height);
  }

  /** Takes an object with thick lines off the stage, and frees it. */
  remove(object) {
    object.removeFromParent();
    object.traverse(({ geometry, material }) => {
      geometry?.dispose();
      material?.dispose();
      this.thickLines = this.thickLines.filter((one) => one !== material);
    });
  }

  setFrustum() {
    const half = 0.5 * this.model.box.size * 1.02;
    const aspect = this.width / this.height;
    const [x, y] = aspect > 1 ? [half * aspect, half] : [half, half / aspect];
    Object.assign(this.camera, {
      left: -x,
      right: x,
      top: y,
      bottom: -y,
      near: -20 * half,
      far: 20 * half,
    });
    this.camera.updateProjectionMatrix();
  }

  /** Removes and frees everything but the lights and the camera. */
  clear() {
    const stays = (object) => object.isLight || object.isCamera;
    for (const object of this.scene.children.filter((one) => !stays(one))) {
      this.scene.remove(object);
      dispose(object);
    }
    this.thickLines = [];
  }

  /** Takes the colour of the ground from the theme. */
  setGround() {
    this.renderer.setClearColor(theme.hex("scene"), 1);
  }

  /** Looks at the whole model from one of VIEWS; at a plane one always from the front. */
  look(name) {
    const [direction, up] = VIEWS[this.model.plane ? "plane" : name];
    this.camera.up.set(...up);
    this.camera.position
      .set(...direction)
      .normalize()
      .multiplyScalar(this.model.box.size);
    this.controls.target.set(0, 0, 0);
    this.camera.zoom = 1;
    this.camera.lookAt(0, 0, 0);
    this.camera.updateMatrixWorld();
    this.fit();
    this.controls.update();
    this.draw();
  }

  /** Zooms and shifts so that the nodes fill the view, with a margin for symbols and diagrams. */
  fit() {
    const inverse = this.camera.matrixWorldInverse;
    const low = new THREE.Vector3(Infinity, Infinity, Infinity),
      high = low.clone().negate();
    const point = new THREE.Vector3();
    for (let i = 0; i < this.model.nodeCount; ++i) {
      point.fromArray(this.model.local, 3 * i).applyMatrix4(inverse);
      low.min(point);
      high.max(point);
    }
    const middle = low.clone().add(high).multiplyScalar(0.5).applyMatrix4(this.camera.matrixWorld);
    const shift = middle.sub(
      point
        .set(0, 0, 0)
        .applyMatrix4(inverse)
        .setX(0)
        .setY(0)
        .applyMatrix4(this.camera.matrixWorld),
    );
    this.camera.position.add(shift);
    this.controls.target.add(shift);
    const { box, beams } = this.model;
    // Diagrams and arrows at beams have up to a tenth of the size, on both sides, and labels.
    const room = beams.length ? 0.26 * box.size : 0;
    const wide = (extent) => Math.max(1.28 * Math.max(extent, 0.05 * box.size), extent + room);
    this.camera.zoom = Math.min(
      (this.camera.right - this.camera.left) / wide(high.x - low.x),
      (this.camera.top - this.camera.bottom) / wide(high.y - low.y),
    );
    this.camera.updateProjectionMatrix();
  }

  /** Calls back after every frame, to draw on top of it. */
  onFrame(listener) {
    this.listeners.push(listener);
  }

  draw() {
    if (this.pending) return;
    this.pending = true;
    requestAnimationFrame(() => {
      this.pending = false;
      this.drawNow();
    });
  }

  drawNow() {
    this.renderer.render(this.scene, this.camera);
    for (const listener of this.listeners) listener();
  }

  /** Pixels of a point in the canvas, and its depth (-1 near, 1 far). */
  project(point) {
    const p = this.scratch ?? (this.scratch = new THREE.Vector3());
    p.set(point[0], point[1], point[2]).project(this.camera);
    return [((p.x + 1) / 2) * this.width, ((1 - p.y) / 2) * this.height, p.z];
  }

  /** The direction from the model to the eye. */
  get sight() {
    return this.camera.position.clone().sub(this.controls.target).normalize().toArray();
  }

  /** The length of a pixel at the model. */
  get pixel() {
    return (this.camera.right - this.camera.left) / this.camera.zoom / this.width;
  }
}

/** Frees what the graphics hold of an object and of all in it. */
export function dispose(object) {
  object.traverse(({ geometry, material }) => {
    geometry?.dispose();
    material?.dispose();
  });
}

const usualRatio = () => Math.min(window.devicePixelRatio, 2);

/**
 * Lets the vertices of a material move by a factor times their attribute `displacement`, and leaves
 * out every place x of the undeformed shape with cut.xyz · x > cut.w. settings: {factor: {value},
 * cut: {value: Vector4}}; they are read at every frame.
 */
export function deformable(material, { factor, cut }) {
  const declare = (shader, text) =>
    shader.replace("#include <common>", `#include <common>\n${text}`);
  material.onBeforeCompile = (shader) => {
    Object.assign(shader.uniforms, { factor, cut });
    shader.vertexShader = declare(
      shader.vertexShader,
      "attribute vec3 displacement;\nuniform float factor;\nuniform vec4 cut;\nvarying float beyond;",
    ).replace(
      "#include <begin_vertex>",
      "vec3 transformed = position + factor * displacement;\nbeyond = dot(cut.xyz, position) - cut.w;",
    );
    shader.fragmentShader = declare(shader.fragmentShader, "varying float beyond;").replace(
      "#include <clipping_planes_fragment>",
      "if (beyond > 0.0) discard;",
    );
  };
  return material;
}

/** The cut that leaves out nothing. */
export const NO_CUT = [0, 0, 0, 1];

/** A geometry at nodes (places in the model's list) that can be deformed. */
export function geometryAt(model, nodes) {
  const position = new Float32Array(3 * nodes.length),
    displacement = new Float32Array(3 * nodes.length);
  for (let i = 0; i < nodes.length; ++i) {
    for (let k = 0; k < 3; ++k) {
      position[3 * i + k] = model.local[3 * nodes[i] + k];
      displacement[3 * i + k] = model.displacements[3 * nodes[i] + k];
    }
  }
  const geometry = new THREE.BufferGeometry();
  geometry.setAttribute("position", new THREE.BufferAttribute(position, 3));
  geometry.setAttribute("displacement", new THREE.BufferAttribute(displacement, 3));
  return geometry;
}
