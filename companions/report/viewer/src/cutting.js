// The section cut and the values along a line. Cutting passes the state of their controls to the
// drawings in the view, and makes clicks in the view points of the line.

import { h } from "./dom.js";
import { LineTool } from "./line_tool.js";
import { menu } from "./menu.js";
import { SectionControls } from "./section_controls.js";
import { SectionView, canBeCut, clip } from "./section_view.js";
import { trianglesAt } from "./triangles_at.js";

export class Cutting {
  /** view: the report, whose stage is there. Models of beams have neither controls nor cuts. */
  constructor(view) {
    this.view = view;
    const { settings, stage } = view;
    stage.hides = ([x, y, z]) => {
      const { value } = settings.cut;
      return value.x * x + value.y * y + value.z * z > value.w;
    };
    if (!canBeCut(view.model)) return;
    const box = h("div", { class: "line-chart", hidden: true });
    stage.container.closest(".stage").append(box);
    this.controls = new SectionControls(stage, view.model, () => this.show());
    this.line = new LineTool(view, box);
    this.menu = menu("section", "Section", [
      ["Cut", this.controls.controls],
      ["Values along a line", this.line.controls],
    ]);
  }

  /** Makes the parts of a report that is newly shown; gives what belongs on the stage. */
  fill() {
    const { model, settings, stage, toolbar } = this.view;
    this.section = new SectionView(model, stage, settings);
    if (this.menu) toolbar.add(this.menu); // it moves from the toolbar that it replaces
    return this.section.group;
  }

  get plane() {
    return this.controls?.plane ?? null;
  }

  /** Cuts as the controls say. */
  show() {
    this.section.show(this.plane, this.view.views.surfaces);
    this.colourSection();
    this.clip();
    this.view.stage.draw();
  }

  colourSection() {
    const { bands, factor, field, scale } = this.view;
    this.section.colour(field, scale, bands);
    this.section.deform(factor.value);
  }

  /** After a change of the shown field. */
  colour() {
    this.colourSection();
    this.line?.refresh();
  }

  /** Surfaces leave out what is beyond the cut by themselves. */
  clip() {
    const { diagrams, hinges, symbols, views } = this.view;
    const others = [...views.beams, ...Object.values(symbols), diagrams];
    clip([...others.map(({ group }) => group), hinges], this.plane);
  }

  /** Whether a click at a point of the canvas is one of the points of the line. */
  take(point) {
    if (!this.line?.isPicking) return false;
    const [surface] = trianglesAt(this.view, [point]);
    this.line.take(surface?.place);
    return true;
  }
}
