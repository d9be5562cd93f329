// Text over the view: numbers, values, and the global axes in a corner. Labels that would cover
// one that is already placed are left out.
import { theme } from "./theme.js";

const FONT = "12px system-ui, sans-serif";

export class Labels {
  /** covered(labels): for each of them whether a surface hides what it belongs to. */
  constructor(stage, covered) {
    this.stage = stage;
    this.covered = covered;
    this.canvas = document.createElement("canvas");
    this.canvas.className = "labels";
    stage.container.append(this.canvas);
    this.sources = new Map();
    stage.onFrame(() => this.draw());
  }

  /**
   * Sets the labels {place, text} of a kind in a colour; an empty list takes them away. Labels with
   * `points` or `nodes` are left out where surfaces cover all of these.
   */
  set(kind, colour, labels) {
    this.sources.set(kind, { colour, labels });
  }

  clear() {
    this.sources.clear();
  }

  draw() {
    const { width, height } = this.stage;
    const ratio = this.stage.renderer.getPixelRatio();
    this.canvas.width = width * ratio;
    this.canvas.height = height * ratio;
    const context = this.canvas.getContext("2d");
    context.scale(ratio, ratio);
    this.drawOn(context);
  }

  /** Draws on the context of any canvas, in pixels of the view. */
  drawOn(target) {
    const context = target;
    context.font = FONT;
    context.textBaseline = "middle";
    context.lineJoin = "round";
    this.taken = [];
    if (!this.stage.isMoving) this.drawLabels(context);
    this.drawAxes(context, this.stage.height);
  }

  drawLabels(context) {
    const all = [...this.sources.values()].flatMap(({ colour, labels }) =>
      labels.map((label) => ({ ...label, colour })),
    );
    const covered = this.covered(all);
    all.forEach((label, i) => {
      if (!covered[i]) this.drawLabel(context, label);
    });
  }

  drawLabel(context, { place, text, colour }) {
    if (this.stage.hides(place)) return;
    const [x, y] = this.stage.project(place);
    if (x < 0 || x > this.stage.width || y < 0 || y > this.stage.height) return;
    const { width } = context.measureText(text);
    const left = Math.min(x + 4, this.stage.width - width - 4),
      top = Math.max(2, y - 14);
    const box = [left - 1, top, left + width + 1, top + 15];
    if (this.taken.some((b) => b[0] < box[2] && box[0] < b[2] && b[1] < box[3] && box[1] < b[3]))
      return;
    this.taken.push(box);
    halo(context, text, left, top + 7, colour);
  }

  drawAxes(context, height) {
    const origin = [44, height - 40],
      reach = 28;
    const start = this.stage.project([0, 0, 0]);
    const scale = reach * this.stage.pixel;
    ["X", "Y", "Z"].forEach((name, k) => {
      const tip = this.stage.project([0, 1, 2].map((i) => (i === k ? 100 * scale : 0)));
      const [dx, dy] = [(tip[0] - start[0]) / 100, (tip[1] - start[1]) / 100];
      if (Math.hypot(dx, dy) < 4) return;
      const colour = theme.css(["scene-x", "scene-y", "scene-z"][k]);
      context.strokeStyle = colour;
      context.lineWidth = 2;
      context.beginPath();
      context.moveTo(...origin);
      context.lineTo(origin[0] + dx, origin[1] + dy);
      context.stroke();
      halo(context, name, origin[0] + 1.25 * dx - 4, origin[1] + 1.25 * dy, colour);
    });
  }
}

const MOST = 400;

/** The numbers of shown nodes, and of elements in brackets, unless they are too many to be read. */
export function numberLabels(model, shown) {
  const { elements } = model;
  const nodes = Array.from(model.nodeNumbers.keys()).filter(shown.node);
  const all = Array.from(elements.numbers.keys()).filter(shown.element);
  return {
    nodes: nodes.slice(0, MOST).map((node) => ({
      place: model.place(node),
      nodes: [node],
      text: String(model.nodeNumbers[node]),
    })),
    elements: (all.length > MOST ? [] : all).map((e) => ({
      place: model.middleOf(model.corners(e)),
      nodes: model.corners(e),
      text: `[${elements.numbers[e]}]`,
    })),
  };
}

function halo(context, text, x, y, colour) {
  context.strokeStyle = theme.css("scene-halo");
  context.lineWidth = 3;
  context.strokeText(text, x, y);
  context.fillStyle = colour;
  context.fillText(text, x, y);
}
