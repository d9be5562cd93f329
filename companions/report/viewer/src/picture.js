// The picture of the view with its title and its legend, as PNG, and of frames as SVG.

import { cssColour } from "./colours.js";
import { scaleInWords } from "./deformation.js";
import { DIAGRAMS, curvesOf } from "./diagrams.js";
import { fileBase, fileName, save } from "./save.js";
import { svgOf } from "./vector_picture.js";

const HEAD = 44, // pixels of the title
  LEGEND = 170,
  RATIO = 2; // pixels of the PNG file for each of the view
const FONT = "system-ui, sans-serif";

/** What is beside the view: {title, legend (see Legend.content), width, height, ink, paper}. */
function frameOf(view) {
  const style = getComputedStyle(document.documentElement);
  const { report, stage } = view;
  const { selection } = report;
  const diagram = DIAGRAMS[view.diagramName];
  const curve = diagram && curvesOf(view.model.diagrams, view.diagramName)[0];
  const parts = [
    report.model.file,
    selection && `${selection.kind} ${selection.name}`,
    diagram && [diagram.title, curve.unit].filter(Boolean).join(" in "),
    view.hasResults && scaleInWords(view.factor.value),
  ];
  return {
    title: parts.filter(Boolean).join(", "),
    legend: view.field ? view.legend.content : null,
    width: stage.width + (view.field ? LEGEND : 0),
    height: stage.height + HEAD,
    ink: style.getPropertyValue("--ink"),
    paper: style.getPropertyValue("--paper"),
  };
}

/** Draws title and legend on a canvas, or on what takes the same calls. */
function drawFrame(context, { title, legend, width, ink }) {
  context.fillStyle = ink;
  context.textBaseline = "middle";
  context.font = `600 16px ${FONT}`;
  context.fillText(title, 16, HEAD / 2, width - 32);
  if (!legend) return;
  const left = width - LEGEND + 8,
    top = HEAD + 64,
    height = 240;
  context.font = `600 12px ${FONT}`;
  context.fillText(legend.title, left, HEAD + 14);
  context.font = `12px ${FONT}`;
  context.fillText(legend.unit ?? "", left, HEAD + 32);
  let y = top;
  for (const { rgb, part } of legend.bands) {
    context.fillStyle = cssColour(rgb);
    context.fillRect(left, y, 20, part * height);
    y += part * height;
  }
  context.fillStyle = ink;
  for (const { text, place } of legend.marks)
    context.fillText(text, left + 28, top + place * height);
  legend.notes.forEach((line, i) =>
    context.fillText(line, left, top + height + 22 + 18 * i, LEGEND - 12),
  );
}

/** The picture as a canvas. */
export function pictureOf(view) {
  const { stage, labels } = view;
  const frame = frameOf(view);
  const canvas = document.createElement("canvas");
  canvas.width = frame.width * RATIO;
  canvas.height = frame.height * RATIO;
  const context = canvas.getContext("2d");
  context.scale(RATIO, RATIO);
  context.fillStyle = frame.paper;
  context.fillRect(0, 0, frame.width, frame.height);
  const usual = stage.renderer.getPixelRatio();
  stage.renderer.setPixelRatio(RATIO);
  stage.drawNow();
  context.drawImage(stage.renderer.domElement, 0, HEAD, stage.width, stage.height);
  stage.renderer.setPixelRatio(usual);
  stage.drawNow();
  context.save();
  context.translate(0, HEAD);
  labels.drawOn(context);
  context.restore();
  drawFrame(context, frame);
  return canvas;
}

export function savePng(view) {
  pictureOf(view).toBlob((blob) =>
    save(fileName(...fileBase(view.report), view.field?.id ?? "view", "png"), [blob], "image/png"),
  );
}

/** Takes the calls that drawFrame and Labels make on a canvas, and makes parts of an SVG of them. */
class SvgContext {
  constructor() {
    this.parts = [];
    this.measure = document.createElement("canvas").getContext("2d");
    this.path = "";
  }

  measureText(text) {
    this.measure.font = this.font;
    return this.measure.measureText(text);
  }

  strokeText() {} // the halo of the next text

  fillText(text, x, y, most = Infinity) {
    const size = this.font.match(/(\d+)px/)[1],
      weight = this.font.match(/^(\d+) /)?.[1] ?? 400;
    const safe = text.replaceAll("&", "&amp;").replaceAll("<", "&lt;");
    const squeezed =
      this.measureText(text).width > most
        ? ` textLength="${most}" lengthAdjust="spacingAndGlyphs"`
        : "";
    this.parts.push(
      `<text x="${x.toFixed(1)}" y="${y.toFixed(1)}" fill="${this.fillStyle.trim()}" font-size="${size}" font-weight="${weight}" dominant-baseline="central"${squeezed}>${safe}</text>`,
    );
  }

  fillRect(x, y, width, height) {
    this.parts.push(
      `<rect x="${x}" y="${y.toFixed(1)}" width="${width}" height="${height.toFixed(2)}" fill="${this.fillStyle}"/>`,
    );
  }

  beginPath() {
    this.path = "";
  }

  moveTo(x, y) {
    this.path += `M${x.toFixed(1)} ${y.toFixed(1)}`;
  }

  lineTo(x, y) {
    this.path += `L${x.toFixed(1)} ${y.toFixed(1)}`;
  }

  stroke() {
    this.parts.push(
      `<path d="${this.path}" fill="none" stroke="${this.strokeStyle}" stroke-width="${this.lineWidth}"/>`,
    );
  }
}

/** The picture of a frame as the text of an SVG file. */
export function vectorPictureOf(view) {
  const frame = frameOf(view);
  const labels = new SvgContext(),
    around = new SvgContext();
  view.labels.drawOn(labels);
  drawFrame(around, frame);
  return [
    `<svg xmlns="http://www.w3.org/2000/svg" width="${frame.width}" height="${frame.height}" viewBox="0 0 ${frame.width} ${frame.height}" font-family="${FONT}">`,
    `<rect width="100%" height="100%" fill="${frame.paper.trim()}"/>`,
    `<clipPath id="view"><rect width="${view.stage.width}" height="${view.stage.height}"/></clipPath>`,
    `<g transform="translate(0 ${HEAD})" clip-path="url(#view)">`,
    ...svgOf(view.stage),
    `<g paint-order="stroke" stroke="${frame.paper.trim()}" stroke-width="3" stroke-linejoin="round">`,
    ...labels.parts.filter((part) => part.startsWith("<text")),
    "</g>",
    ...labels.parts.filter((part) => !part.startsWith("<text")),
    "</g>",
    ...around.parts,
    "</svg>",
    "",
  ].join("\n");
}

export function saveSvg(view) {
  const name = fileName(
    ...fileBase(view.report),
    view.diagramName || view.field?.id || "view",
    "svg",
  );
  save(name, [vectorPictureOf(view)], "image/svg+xml");
}
