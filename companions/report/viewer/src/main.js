// The page of a report: reads the data block, builds the view and what stands around it.

import * as THREE from "three";
import { LineMaterial } from "three/examples/jsm/lines/LineMaterial.js";
import { LineSegments2 } from "three/examples/jsm/lines/LineSegments2.js";
import { LineSegmentsGeometry } from "three/examples/jsm/lines/LineSegmentsGeometry.js";
import { BeamView, beamPoint } from "./beam_view.js";
import { ColourScale } from "./colours.js";
import { readReport } from "./data.js";
import { DIAGRAMS, DiagramView } from "./diagrams.js";
import { checkbox, format, h, select } from "./dom.js";
import { ShellPoints, extremesOfField, fieldsOf } from "./fields.js";
import { Labels } from "./labels.js";
import { showLegend } from "./legend.js";
import { panelOf } from "./member_panel.js";
import { BEAM, Model, SHELL } from "./model.js";
import { onClick, pick } from "./picking.js";
import { principalCrosses } from "./principal.js";
import { Stage, deformable } from "./scene.js";
import { balanceCard, checkCard, extremesCard, header, modelCard } from "./summary.js";
import { SurfaceView } from "./surface_view.js";
import { hingeSymbols, loadSymbols, reactionSymbols, supportSymbols } from "./symbols.js";
import { TableView, printedTables } from "./tables.js";

const MOST_LABELS = 400, PRINTED_ROWS = 60, SELECTED = 0xe8590c;

class Report {
  constructor(report) {
    this.report = report;
    this.model = new Model(report);
    this.shells = new ShellPoints(this.model, report.table("shell_forces"));
    this.fields = fieldsOf(report, this.model);
    this.factor = { value: 0 };  // of the displacements, shared by all materials
    /** The factor at the middle of the slider: the largest displacement is 6% of the model's size. */
    this.usualFactor = this.model.largest > 0 ? niceFactor((0.06 * this.model.box.size) / this.model.largest) : 1;
    this.layOut();
    this.fillStage();
    this.controls();
    this.selected = -1;
    this.showAtFirst();
  }

  layOut() {
    const { report, model } = this;
    this.canvasBox = h("div", { class: "canvas" });
    this.legend = h("div", { class: "legend", id: "legend", hidden: true });
    this.toolbar = h("div", { class: "toolbar" });
    this.panel = h("aside", { id: "panel" });
    const onplace = (kind, number) => this.choose(kind, Number(number));
    this.tables = new TableView(report.tables, onplace);
    document.getElementById("report").append(
      header(report),
      h("section", { class: "view" }, h("div", { class: "stage" }, this.toolbar, h("div", { class: "frame" }, h("div", { class: "canvas-cell" }, this.canvasBox), this.legend)), this.panel),
      h("div", { class: "cards" }, modelCard(report, model), balanceCard(report), checkCard(report)),
      extremesCard(report, model, this.shells, this.fields, onplace),
      h("section", { class: "card screen-only" }, h("h2", {}, "Tables"), this.tables.element),
      printedTables(report.tables, PRINTED_ROWS),
      h("footer", {}, `${report.program}. Displacements, reactions and nodal loads are in global axes, forces of elements in local ones; signs as in the result files.`));
    this.tables.drawRows();
  }

  fillStage() {
    const { model, report } = this;
    this.stage = new Stage(this.canvasBox, model);
    this.labels = new Labels(this.stage);
    const meshes = Array.from({ length: report.model.meshes }, (_, i) => i + 1);
    this.views = {
      surfaces: meshes.map((mesh) => new SurfaceView(model, mesh, this.factor)),
      beams: meshes.map((mesh) => new BeamView(model, this.stage, mesh)),
    };
    this.diagrams = new DiagramView(model);
    this.crosses = new THREE.LineSegments(
      new THREE.BufferGeometry(), deformable(new THREE.LineBasicMaterial({ vertexColors: true }), this.factor));
    this.crosses.frustumCulled = false;
    const size = this.symbolSize();
    this.hinges = hingeSymbols(report, model, 0.2 * size);
    this.symbols = {
      supports: { group: supportSymbols(report, model, size), labels: [] },
      loads: loadSymbols(report, model, 0.085 * model.box.size),
      reactions: reactionSymbols(report, model, 0.085 * model.box.size),
    };
    this.highlight = this.makeHighlight();
    this.stage.scene.add(
      ...this.views.surfaces.map(({ group }) => group), ...this.views.beams.map(({ group }) => group),
      ...Object.values(this.symbols).map(({ group }) => group), this.hinges, this.diagrams.group, this.crosses, this.highlight);
    onClick(this.stage.renderer.domElement, (point) =>
      this.select(pick(this.stage, model, this.views, this.factor.value, point)));
  }

  /** Smaller where many supports stand close together. */
  symbolSize() {
    const count = this.report.table("supports")?.rows ?? 1;
    return this.model.box.size * Math.min(0.026, 0.2 / Math.sqrt(count));
  }

  makeHighlight() {
    const material = new LineMaterial({ color: SELECTED, linewidth: 6, depthTest: false, transparent: true, opacity: 0.75 });
    this.stage.resolutions.push(material);
    material.resolution.set(this.stage.width, this.stage.height);
    const line = new LineSegments2(new LineSegmentsGeometry(), material);
    line.frustumCulled = false;
    line.visible = false;
    line.renderOrder = 2;
    return line;
  }

  controls() {
    const { model, report } = this;
    const groups = [...new Set(this.fields.map(({ group }) => group))].map((label) => ({
      label, options: this.fields.filter(({ group }) => group === label).map(({ id, label: text }) => [id, text]) }));
    const tool = (text, ...parts) => h("label", { class: "tool" }, h("span", {}, text), parts);
    this.colourSelect = select("colours", [["", "none"], ...groups], () => this.colour());
    this.smooth = checkbox("smooth", "smooth", true, () => this.colour());
    this.diagramSelect = select("diagram", [["", "none"], ...Object.entries(DIAGRAMS)
      .filter(([name]) => model.diagrams?.column(name)).map(([name, { title }]) => [name, title])], () => this.showDiagram());
    this.diagramSize = h("input", { type: "range", min: 0.1, max: 3, step: 0.05, value: 1, "aria-label": "size of the diagram" });
    this.diagramSize.addEventListener("input", () => this.showDiagram());
    this.directionSelect = select("directions", [["", "none"], ["N", "membrane forces"], ["M", "moments"]], () => this.showDirections());
    this.slider = h("input", { type: "range", id: "deformation", min: 0, max: 2, step: 0.01, value: 1 });
    this.slider.addEventListener("input", () => this.deform());
    this.factorText = h("output", { id: "factor" });
    const looks = model.plane ? [["top", "Fit"]] : [["iso", "3D"], ["front", "XZ"], ["side", "YZ"], ["top", "XY"]];
    const hasPoints = this.shells.owner.length > 0;
    const symbol = (name, text, shown) => checkbox(name, text, shown, (on) => this.showSymbols(name, on));
    const both = report.table("shell_forces");
    this.toolbar.append(
      tool("Colours", this.colourSelect, hasPoints ? this.smooth : null),
      ...(model.beams.length ? [tool("Diagram", this.diagramSelect, this.diagramSize)] : []),
      ...(both ? [tool("Principal", this.directionSelect)] : []),
      tool("Deformed", this.slider, this.factorText),
      h("span", { class: "tool" },
        symbol("supports", "supports", true), symbol("loads", "loads", true), symbol("reactions", "reactions", false),
        checkbox("numbers", "numbers", false, (on) => this.showNumbers(on)), this.meshChecks()),
      h("span", { class: "tool looks" }, looks.map(([name, text]) =>
        h("button", { "data-look": name, onclick: () => this.stage.look(name) }, text))));
  }

  meshChecks() {
    const { meshes } = this.report.model;
    if (meshes < 2) return [];
    return Array.from({ length: meshes }, (_, i) => checkbox(`mesh${i + 1}`, `mesh ${i + 1}`, true, (on) => {
      this.views.surfaces[i].group.visible = on;
      this.views.beams[i].group.visible = on;
      this.stage.draw();
    }));
  }

  /** Plane frames begin with their moments, all others with colours. */
  showAtFirst() {
    const { model } = this;
    const has = (id) => this.fields.some((field) => field.id === id);
    if (model.plane && model.diagrams) this.diagramSelect.value = "Mz";
    else this.colourSelect.value = has("nodes:von_Mises") ? "nodes:von_Mises" : "u";
    this.slider.value = model.plane ? 0.5 : 1;
    for (const name of Object.keys(this.symbols)) this.showSymbols(name, document.getElementById(name).checked);
    this.colour();
    this.showDiagram();
    this.deform();
    this.stage.look(model.plane ? "top" : "iso");
    this.select(model.has(SHELL) ? -1 : this.mostBent());
  }

  /** The beam with the largest bending moment; -1 without beams. */
  mostBent() {
    const { model } = this;
    let found = -1, largest = 0;
    for (const name of ["My", "Mz"]) {
      const values = model.diagrams?.column(name)?.values ?? [];
      for (let i = 0; i < values.length; ++i) {
        if (Math.abs(values[i]) <= largest) continue;
        largest = Math.abs(values[i]);
        found = model.beams[Math.floor(i / model.points)];
      }
    }
    return found;
  }

  colour() {
    const field = this.fields.find(({ id }) => id === this.colourSelect.value) ?? null;
    const extremes = field && extremesOfField(field, this.model, this.shells);
    const scale = field && new ColourScale(extremes.min, extremes.max);
    const smooth = this.smooth.querySelector("input").checked;
    for (const view of this.views.surfaces) view.colour(field, scale, this.shells, smooth);
    const values = field?.beams ?? null;
    for (const view of this.views.beams) view.colour(values, scale);
    this.smooth.hidden = !field?.points;
    showLegend(this.legend, field, scale, extremes);
    this.stage.draw();
  }

  showDiagram() {
    const name = this.diagramSelect.value;
    this.diagramSize.hidden = !name;
    this.diagrams.show(name, 0.1 * this.model.box.size * this.diagramSize.value);
    const labels = this.model.beams.length <= 100 ? this.diagrams.labels : largestLabels(this.diagrams.labels);
    this.labels.set("diagram", "#1b2a38", labels.map(({ place, value }) => ({ place, text: format(value, 4) })));
    this.stage.draw();
  }

  showDirections() {
    const kind = this.directionSelect.value;
    this.crosses.geometry.dispose();
    this.crosses.geometry = kind ? principalCrosses(this.report, this.model, this.shells, kind) : new THREE.BufferGeometry();
    this.stage.draw();
  }

  deform() {
    this.factor.value = this.slider.value * this.usualFactor;
    this.factorText.textContent = `\u00d7 ${format(this.factor.value, 3)}`;
    for (const view of [...this.views.beams, ...this.views.surfaces]) view.deform(this.factor.value);
    this.placeHighlight();
    this.stage.draw();
  }

  showSymbols(name, on) {
    const { group, labels } = this.symbols[name];
    group.visible = on;
    this.labels.set(name, name === "loads" ? "#8f3210" : "#53307d", on ? labels : []);
    this.stage.draw();
  }

  showNumbers(on) {
    const { model } = this;
    const { elements } = model;
    const nodes = Array.from(model.nodeNumbers, (number, i) => ({ place: model.place(i), text: String(number) }));
    const middles = Array.from(elements.numbers, (number, e) => {
      const corners = Array.from({ length: Math.min(4, elements.nodeCounts[e]) }, (_, i) => model.place(model.node(e, i)));
      return { place: [0, 1, 2].map((k) => corners.reduce((sum, c) => sum + c[k], 0) / corners.length), text: `[${number}]` };
    });
    this.labels.set("nodes", "#2c5282", on ? nodes.slice(0, MOST_LABELS) : []);
    this.labels.set("elements", "#6b4c11", on && elements.count <= MOST_LABELS ? middles : []);
    this.stage.draw();
  }

  /** Selects what a row of a table or a place of an extreme names. */
  choose(kind, number) {
    const { model } = this;
    if (kind !== "node") return this.select(model.elementAt.get(number) ?? -1);
    const node = model.nodeAt.get(number), { elements } = model;
    for (let e = 0; e < elements.count; ++e) {
      for (let i = 0; i < elements.nodeCounts[e]; ++i) if (model.node(e, i) === node) return this.select(e);
    }
    return this.select(-1);
  }

  select(element) {
    this.selected = element;
    this.panel.replaceChildren(...panelOf(this.report, this.model, this.shells, this.fields, element).flat().filter(Boolean));
    this.placeHighlight();
    this.stage.draw();
  }

  /** Puts the highlight on the selected element, in its deformed shape. */
  placeHighlight() {
    const { model, selected, highlight } = this;
    highlight.visible = selected >= 0;
    if (selected < 0) return;
    highlight.geometry.dispose();
    highlight.geometry = new LineSegmentsGeometry().setPositions(segmentsOf(model, selected, this.factor.value));
  }
}

/** Ends of the lines around an element: along a beam, or the straight edges between its corners. */
function segmentsOf(model, element, factor) {
  const ends = [];
  if (model.elements.kinds[element] === BEAM) {
    const b = model.beamOf.get(element), place = [0, 0, 0];
    for (let i = 0; i < model.points; ++i) {
      beamPoint(model, b, i, factor, place, 0);
      ends.push(...place);
      if (i > 0 && i < model.points - 1) ends.push(...place);
    }
    return ends;
  }
  const edges = [[0, 1], [1, 2], [2, 0], ...(model.elements.nodeCounts[element] % 3 ? [[0, 3], [1, 3], [2, 3]] : [])];
  for (const node of edges.flat().map((i) => model.node(element, i))) {
    for (let k = 0; k < 3; ++k) ends.push(model.local[3 * node + k] + factor * model.displacements[3 * node + k]);
  }
  return ends;
}

/** The labels of the least and the largest value. */
function largestLabels(labels) {
  if (labels.length === 0) return [];
  const least = labels.reduce((a, b) => (b.value < a.value ? b : a));
  return [least, labels.reduce((a, b) => (b.value > a.value ? b : a))];
}

/** 1, 2 or 5 times a power of ten, below the value. */
function niceFactor(value) {
  const power = 10 ** Math.floor(Math.log10(value));
  return [5, 2, 1].find((step) => step * power <= value) * power;
}

/** For scripts and tests: the report of this page. */
window.morlenReport = new Report(readReport(document.getElementById("data").textContent));
