// What the tests of the pages share.

import assert from "node:assert/strict";

/** Pixels of the canvas, of every fourth row and column, as "r g b"; with how many are not white. */
export const PIXELS = `(() => {
  const source = document.querySelector("canvas"), copy = document.createElement("canvas");
  [copy.width, copy.height] = [source.width >> 2, source.height >> 2];
  const context = copy.getContext("2d");
  context.imageSmoothingEnabled = false;
  context.drawImage(source, 0, 0, copy.width, copy.height);
  const data = context.getImageData(0, 0, copy.width, copy.height).data;
  const pixels = [];
  for (let i = 0; i < data.length; i += 4) pixels.push(data[i] + " " + data[i + 1] + " " + data[i + 2]);
  return pixels;
})()`;

export const differing = (a, b) => a.reduce((count, pixel, i) => count + (pixel !== b[i]), 0);

export const extremes = (values) => [
  values.reduce((a, b) => Math.min(a, b), Infinity),
  values.reduce((a, b) => Math.max(a, b), -Infinity),
];

export function assertNear(actual, expected, tolerance, what) {
  const scale = Math.max(Math.abs(expected), 1e-30);
  assert.ok(
    Math.abs(actual - expected) <= tolerance * scale,
    `${what}: ${actual}, expected ${expected}`,
  );
}
