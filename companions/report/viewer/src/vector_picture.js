// The objects of the stage as parts of an SVG: lines, filled triangles, symbols. They are drawn one
// over the other: faces, lines, thick lines, symbols. Nothing is hidden by depth.

import * as THREE from "three";

const ORDER = [isFace, isLine, isThick, isSymbol];

function isThick(object) {
  return object.isLineSegments2;
}

function isLine(object) {
  return object.isLine; // and its subclasses
}

function isSymbol(object) {
  return object.isInstancedMesh;
}

function isFace(object) {
  return object.isMesh && !isThick(object) && !isSymbol(object);
}

/** Parts of an SVG of all that the stage shows, in pixels of its canvas. */
export function svgOf(stage) {
  const shown = [];
  stage.scene.updateMatrixWorld();
  stage.scene.traverseVisible((object) => {
    if (object.geometry && object.layers.test(stage.camera.layers)) shown.push(object);
  });
  const write = [facesOf, linesOf, thickLinesOf, symbolsOf];
  return ORDER.flatMap((test, i) =>
    shown.filter(test).flatMap((object) => write[i](object, stage)),
  );
}

const css = (colour) => `#${colour.getHexString()}`;

function colourAt(object, name, i) {
  const colours = object.geometry.getAttribute(name);
  if (!colours || !object.material.vertexColors) return css(object.material.color);
  return css(new THREE.Color().fromBufferAttribute(colours, i));
}

/** Projects a point of an attribute; null beyond the cut. */
function pixelsOf(stage, attribute, i) {
  const place = [attribute.getX(i), attribute.getY(i), attribute.getZ(i)];
  return stage.hides(place) ? null : stage.project(place);
}

const at = ([x, y]) => `${x.toFixed(1)} ${y.toFixed(1)}`;

/** Paths by colour: segments that meet become one line. */
class Paths {
  constructor() {
    this.byColour = new Map();
  }

  add(colour, from, to) {
    if (!from || !to) return;
    const path = this.byColour.get(colour) ?? { text: "", end: "" };
    this.byColour.set(colour, path);
    const [start, end] = [at(from), at(to)];
    path.text += start === path.end ? `L${end}` : `M${start}L${end}`;
    path.end = end;
  }

  parts(width, opacity = 1) {
    return [...this.byColour].map(
      ([colour, { text }]) =>
        `<path d="${text}" fill="none" stroke="${colour}" stroke-width="${width}" stroke-opacity="${opacity}" stroke-linejoin="round" stroke-linecap="round"/>`,
    );
  }
}

function linesOf(line, stage) {
  const { position } = line.geometry.attributes;
  if (!position) return [];
  const paths = new Paths();
  const { index } = line.geometry;
  const count = index?.count ?? position.count;
  const vertex = (i) => (index ? index.getX(i) : i);
  const step = line.isLineSegments ? 2 : 1;
  for (let i = 0; i + 1 < count; i += step) {
    const [a, b] = [vertex(i), vertex(i + 1)];
    paths.add(
      colourAt(line, "color", a),
      pixelsOf(stage, position, a),
      pixelsOf(stage, position, b),
    );
  }
  return paths.parts(1, line.material.opacity);
}

function thickLinesOf(line, stage) {
  const { instanceStart: start, instanceEnd: end } = line.geometry.attributes;
  const paths = new Paths();
  for (let i = 0; start && i < start.count; ++i)
    paths.add(
      colourAt(line, "instanceColorStart", i),
      pixelsOf(stage, start, i),
      pixelsOf(stage, end, i),
    );
  return paths.parts(line.material.linewidth, line.material.opacity);
}

function facesOf(mesh, stage) {
  const { position } = mesh.geometry.attributes;
  if (!position) return [];
  const byColour = new Map();
  for (let i = 0; i < position.count; i += 3) {
    const corners = [0, 1, 2].map((k) => pixelsOf(stage, position, i + k));
    if (corners.includes(null)) continue;
    const colour = colourAt(mesh, "color", i);
    byColour.set(colour, `${byColour.get(colour) ?? ""}M${corners.map(at).join("L")}Z`);
  }
  return [...byColour].map(
    ([colour, text]) =>
      `<path d="${text}" fill="${colour}" fill-opacity="${mesh.material.opacity}"/>`,
  );
}

const CONVEX = /^(Cone|Cylinder|Box|Sphere)Geometry$/;

/** The outlines of convex shapes, the triangles of others. */
function symbolsOf(mesh, stage) {
  const { position } = mesh.geometry.attributes;
  const matrix = new THREE.Matrix4(),
    point = new THREE.Vector3();
  const paths = [];
  for (let i = 0; i < mesh.count; ++i) {
    mesh.getMatrixAt(i, matrix);
    const corners = Array.from({ length: position.count }, (_, k) =>
      point.fromBufferAttribute(position, k).applyMatrix4(matrix).toArray(),
    );
    if (stage.hides(corners[0])) continue;
    const pixels = corners.map((corner) => stage.project(corner));
    if (CONVEX.test(mesh.geometry.type)) paths.push(`M${hull(pixels).map(at).join("L")}Z`);
    else paths.push(trianglesOf(mesh.geometry, pixels));
  }
  const edge = mesh.material.color.getHSL({}).l > 0.8 ? ` stroke="#46525c"` : "";
  return [`<path d="${paths.join("")}" fill="${css(mesh.material.color)}"${edge}/>`];
}

function trianglesOf({ index }, pixels) {
  let text = "";
  for (let i = 0; i < index.count; i += 3)
    text += `M${[0, 1, 2].map((k) => at(pixels[index.getX(i + k)])).join("L")}Z`;
  return text;
}

/** The convex hull of points of the plane (Andrew, "Another efficient algorithm for convex hulls", 1979). */
export function hull(points) {
  const sorted = [...points].sort((a, b) => a[0] - b[0] || a[1] - b[1]);
  const turn = (a, b, c) => (b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0]);
  const half = (list) => {
    const chain = [];
    for (const point of list) {
      while (chain.length > 1 && turn(chain.at(-2), chain.at(-1), point) <= 0) chain.pop();
      chain.push(point);
    }
    return chain.slice(0, -1);
  };
  return [...half(sorted), ...half(sorted.reverse())];
}
