// The page of a report: reads the data block, builds the view and the panels around it.

import * as THREE from "three";
import { BeamView } from "./beam_view.js";
import { ColourScale } from "./colours.js";
import { readReport } from "./data.js";
import { DiagramView, curvesOf } from "./diagrams.js";
import { format, h } from "./dom.js";
import { ShellPoints, extremesOfField, fieldsOf } from "./fields.js";
import { Highlight } from "./highlight.js";
import { Labels, numberLabels } from "./labels.js";
import { showLegend } from "./legend.js";
import { panelOf } from "./member_panel.js";
import { Model, SHELL } from "./model.js";
import { Motions } from "./motions.js";
import { cardsOf, headOf } from "./page_contents.js";
import { layOutPage } from "./page_frame.js";
import { onClick, pick } from "./picking.js";
import { PrintSheet } from "./print_sheet.js";
import { principalCrosses } from "./principal.js";
import { Stage, deformable } from "./scene.js";
import { reachScrollers } from "./scrollers.js";
import { Selector } from "./selector.js";
import { Study } from "./study.js";
import { SurfaceView } from "./surface_view.js";
import { hingeSymbols, loadSymbols, reactionSymbols, supportSymbols } from "./symbols.js";
import { TableView } from "./tables.js";
import { theme } from "./theme.js";
import { Toolbar } from "./toolbar.js";
import { listenToKeys } from "./view_keys.js";
import { ViewText } from "./view_text.js";

class Report {
  constructor(data) {
    this.study = data.study ? new Study(data) : null;
    this.selector = this.study && new Selector(this.study, (selection) => this.show(selection));
    this.factor = { value: 0 }; // of the displacements, shared by all materials
    this.selected = -1;
    this.remembered = {}; // values of controls
    this.take(this.study ? this.study.view(this.study.all[0]) : readReport(data));
    this.layOut();
    this.fillPage();
    try {
      this.makeStage();
      this.fillStage();
    } catch (fault) {
      this.doWithoutView(fault);
      return;
    }
    this.showAtFirst();
    theme.onChange(() => this.redraw());
  }

  /** Makes a report the one that is shown. */
  take(report) {
    this.report = report;
    this.model = new Model(report);
    this.shells = new ShellPoints(this.model, report.table("shell_forces"));
    this.fields = fieldsOf(report, this.model);
    /** The factor at the middle of the slider: the largest displacement is 6% of the model's size. */
    this.usualFactor =
      this.model.largest > 0 ? niceFactor((0.06 * this.model.box.size) / this.model.largest) : 1;
  }

  /** Shows a case, a combination or an envelope in the same way as the one before. */
  show(selection) {
    this.remembered = { ...this.remembered, ...this.toolbar.state };
    this.take(this.study.view(selection));
    this.fillPage();
    this.redraw();
    this.select(this.selected);
  }

  /** Makes the scene anew: of another case, or in other colours. */
  redraw() {
    if (!this.stage) return;
    this.stage.setGround();
    this.stage.clear();
    this.labels.clear();
    this.fillStage();
    this.drawAll();
    this.motions.restore();
  }

  /** False for a page of a model without results. */
  get hasResults() {
    return this.report.hasResults;
  }

  /** The rest of the report needs no graphics. */
  doWithoutView(fault) {
    this.stage = null;
    this.toolbar.element.hidden = true;
    this.canvasBox.replaceChildren(
      h(
        "p",
        { class: "hint" },
        `The view needs WebGL, which this browser does not offer: ${fault.message}`,
      ),
    );
    this.select(-1);
  }

  /** Builds the fixed parts of the page, and empty boxes for those that change with the choice. */
  layOut() {
    this.canvasBox = h("div", { class: "canvas" });
    this.legend = h("div", { class: "legend", id: "legend", hidden: true });
    this.panel = h("section", { id: "panel", "aria-label": "selected object" });
    this.toolbar = new Toolbar(this);
    this.motions = new Motions(this);
    this.viewText = new ViewText(this);
    this.sheet = new PrintSheet(this);
    const part = () => h("div");
    this.parts = { head: part(), cards: part(), tables: part() };
    layOutPage(this);
  }

  /** Fills the boxes with the present report. */
  fillPage() {
    const { report } = this;
    const onplace = (kind, number) => this.choose(kind, Number(number));
    const toolbar = new Toolbar(this);
    toolbar.adopt(this.remembered);
    this.toolbar.element.replaceWith(toolbar.element);
    this.toolbar = toolbar;
    this.selector?.show(report.selection);
    const open = this.tables?.table.name;
    this.tables = new TableView(report.tables, onplace, open);
    this.parts.head.replaceChildren(...headOf(this));
    this.parts.cards.replaceChildren(...cardsOf(this));
    this.parts.tables.replaceChildren(
      h("section", { class: "card" }, h("h2", {}, "Tables"), this.tables.element),
    );
    this.tables.drawRows();
    reachScrollers();
  }

  makeStage() {
    this.stage = new Stage(this.canvasBox, this.model);
    this.labels = new Labels(this.stage);
    this.viewText.name(this.canvasBox);
    listenToKeys(this);
    onClick(this.stage.renderer.domElement, (point) =>
      this.select(pick(this.stage, this.model, this.views, this.factor.value, point)),
    );
  }

  fillStage() {
    const { model, report } = this;
    const meshes = Array.from({ length: report.model.meshes }, (_, i) => i + 1);
    this.views = {
      surfaces: meshes.map((mesh) => new SurfaceView(model, mesh, this.factor)),
      beams: meshes.map((mesh) => new BeamView(model, this.stage, mesh)),
    };
    this.diagrams = new DiagramView(model);
    this.crosses = new THREE.LineSegments(
      new THREE.BufferGeometry(),
      deformable(new THREE.LineBasicMaterial({ vertexColors: true }), this.factor),
    );
    this.crosses.frustumCulled = false;
    const size = this.symbolSize();
    this.hinges = hingeSymbols(report, model, 0.2 * size);
    this.symbols = {
      supports: { group: supportSymbols(report, model, size), labels: [] },
      loads: loadSymbols(report, model, 0.085 * model.box.size),
      reactions: reactionSymbols(report, model, 0.085 * model.box.size),
    };
    this.highlight = new Highlight(this.stage, model);
    this.stage.scene.add(
      ...this.views.surfaces.map(({ group }) => group),
      ...this.views.beams.map(({ group }) => group),
      ...Object.values(this.symbols).map(({ group }) => group),
      this.hinges,
      this.diagrams.group,
      this.crosses,
      this.highlight.line,
    );
  }

  /** Smaller where many supports are close together. */
  symbolSize() {
    const count = this.report.table("supports")?.rows ?? 1;
    return this.model.box.size * Math.min(0.026, 0.2 / Math.sqrt(count));
  }

  /** Plane frames begin with their moments, all others with colours. */
  showAtFirst() {
    const { model } = this;
    const has = (id) => this.fields.some((field) => field.id === id);
    if (model.plane && model.diagrams) this.toolbar.diagram.value = "Mz";
    else this.toolbar.colours.value = has("nodes:von_Mises") ? "nodes:von_Mises" : "u";
    this.toolbar.deformation.value = model.plane ? 0.5 : 1;
    this.drawAll();
    this.stage.look(model.plane ? "top" : "iso");
    this.select(model.has(SHELL) ? -1 : this.mostBent());
    const moving = this.report.hasResults ? null : this.report.check?.find(({ motion }) => motion);
    if (moving) this.motions.show(moving);
  }

  /** Draws everything as the controls say. */
  drawAll() {
    const isOn = (id) => document.getElementById(id)?.checked ?? false;
    for (const name of Object.keys(this.symbols)) this.showSymbols(name, isOn(name));
    this.views.surfaces.forEach((_, i) => this.showMesh(i, this.meshIsOn(i)));
    this.showNumbers(isOn("numbers"));
    this.colour();
    this.showDiagram();
    this.showDirections();
    this.deform();
  }

  meshIsOn(mesh) {
    return document.getElementById(`mesh${mesh + 1}`)?.checked ?? true;
  }

  /** The beam with the largest bending moment; -1 without beams. */
  mostBent() {
    const { model } = this;
    let found = -1,
      largest = 0;
    for (const { values } of ["My", "Mz"].flatMap((name) => curvesOf(model.diagrams, name))) {
      for (let i = 0; i < values.length; ++i) {
        if (Math.abs(values[i]) <= largest) continue;
        largest = Math.abs(values[i]);
        found = model.beams[Math.floor(i / model.points)];
      }
    }
    return found;
  }

  colour() {
    const field = this.fields.find(({ id }) => id === this.toolbar.colours.value) ?? null;
    const extremes = field && extremesOfField(field, this.model, this.shells);
    const scale = field && new ColourScale(extremes.min, extremes.max);
    const smooth = this.toolbar.isSmooth;
    for (const view of this.views.surfaces) view.colour(field, scale, this.shells, smooth);
    const values = field?.beams ?? null;
    for (const view of this.views.beams) view.colour(values, scale);
    this.toolbar.smooth.hidden = !field?.points;
    showLegend(this.legend, field, scale, extremes);
    this.stage.draw();
  }

  showDiagram() {
    const name = this.toolbar.diagram.value;
    this.toolbar.diagramSize.hidden = !name;
    this.diagrams.show(name, 0.1 * this.model.box.size * this.toolbar.diagramSize.value);
    const labels =
      this.model.beams.length <= 100 ? this.diagrams.labels : largestLabels(this.diagrams.labels);
    this.labels.set(
      "diagram",
      theme.css("scene-label"),
      labels.map(({ place, value }) => ({ place, text: format(value, 4) })),
    );
    this.stage.draw();
  }

  showDirections() {
    const kind = this.report.isEnvelope ? "" : this.toolbar.directions.value;
    this.crosses.geometry.dispose();
    this.crosses.geometry = kind
      ? principalCrosses(this.report, this.model, this.shells, kind)
      : new THREE.BufferGeometry();
    this.stage.draw();
  }

  deform() {
    this.deformBy(this.report.isEnvelope ? 0 : this.toolbar.deformation.value * this.usualFactor);
  }

  deformBy(factor) {
    this.factor.value = factor;
    this.toolbar.factor.textContent = `\u00d7 ${format(this.factor.value, 3)}`;
    for (const view of [...this.views.beams, ...this.views.surfaces])
      view.deform(this.factor.value);
    this.placeHighlight();
    this.stage.draw();
  }

  showSymbols(name, on) {
    const { group, labels } = this.symbols[name];
    group.visible = on;
    this.labels.set(
      name,
      theme.css(name === "loads" ? "scene-label-load" : "scene-label-reaction"),
      on ? labels : [],
    );
    this.stage.draw();
  }

  showNumbers(on) {
    const { nodes, elements } = on ? numberLabels(this.model) : { nodes: [], elements: [] };
    this.labels.set("nodes", theme.css("scene-label-node"), nodes);
    this.labels.set("elements", theme.css("scene-label-element"), elements);
    this.stage.draw();
  }

  showMesh(mesh, on) {
    for (const { group } of [this.views.surfaces[mesh], this.views.beams[mesh]]) group.visible = on;
    this.stage.draw();
  }

  /** Selects an element, or an element at a node, by its number: from a table or an extreme. */
  choose(kind, number) {
    const { model } = this;
    if (kind !== "node") return this.select(model.elementAt.get(number) ?? -1);
    const node = model.nodeAt.get(number),
      { elements } = model;
    for (let e = 0; e < elements.count; ++e) {
      for (let i = 0; i < elements.nodeCounts[e]; ++i)
        if (model.node(e, i) === node) return this.select(e);
    }
    return this.select(-1);
  }

  select(element) {
    this.selected = element;
    this.panel.replaceChildren(
      ...panelOf(this.report, this.model, this.shells, this.fields, element).flat().filter(Boolean),
    );
    if (!this.stage) return;
    this.placeHighlight();
    this.stage.draw();
  }

  /** Selects nothing, and ends a motion that is shown. */
  release() {
    this.motions.stop();
    this.select(-1);
  }

  placeHighlight() {
    this.highlight.place(this.selected, this.factor.value);
  }
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
  return ([5, 2, 1].find((step) => step * power <= value) ?? 1) * power;
}

/** For scripts and tests: the report of this page. */
window.morlenReport = new Report(JSON.parse(document.getElementById("data").textContent));
