// The page of a report: reads the data block, builds the view and the panels around it.

import * as THREE from "three";
import { BeamView } from "./beam_view.js";
import { ColourScale, bandTexture } from "./colours.js";
import { coveredLabels } from "./covered.js";
import { Cutting } from "./cutting.js";
import { readReport } from "./data.js";
import { Deformation } from "./deformation.js";
import { DiagramView } from "./diagrams.js";
import { h } from "./dom.js";
import { ShellPoints, extremesOfField, fieldsOf } from "./fields.js";
import { Highlight } from "./highlight.js";
import { Labels, numberLabels } from "./labels.js";
import { Legend } from "./legend.js";
import { closeMenusOutside } from "./menu.js";
import { LocalAxes } from "./local_axes.js";
import { MemberResults } from "./member_results.js";
import { withMembers } from "./member_table.js";
import { Members } from "./members.js";
import { Model } from "./model.js";
import { Motions } from "./motions.js";
import { pickNode } from "./node_picking.js";
import { styledTogether } from "./numbers.js";
import { cardsOf, headOf } from "./page_contents.js";
import { layOutPage } from "./page_frame.js";
import { panelOf } from "./panel.js";
import { onClick, pick } from "./picking.js";
import { PrintSheet } from "./print_sheet.js";
import { directionLines } from "./principal.js";
import { fileBase } from "./save.js";
import { DETAIL, NO_CUT, Stage, deformable, dispose } from "./scene.js";
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
import { Visibility } from "./visibility.js";

class Report {
  constructor(data) {
    this.study = data.study ? new Study(data) : null;
    this.selector = this.study && new Selector(this.study, (selection) => this.show(selection));
    this.choose = (kind, number) => this.selectNumber(kind, Number(number));
    this.deformation = new Deformation();
    this.factor = this.deformation.factor;
    this.visibility = new Visibility();
    /** What all parts of the view share; see deformable(). */
    this.settings = { factor: this.factor, cut: { value: new THREE.Vector4(...NO_CUT) } };
    this.selected = -1; // an element
    this.selectedNode = -1;
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
    this.settings.isShown = this.visibility.test(this.model);
    this.shells = new ShellPoints(this.model, report.table("shell_forces"));
    this.fields = fieldsOf(report, this.model);
    this.members = Members.of(report, this.model);
    this.results = new MemberResults(report, this.model, this.members);
    this.deformation.take(this.model);
  }

  /** Shows a case, a combination or an envelope in the same way as the one before. */
  show(selection) {
    this.remembered = { ...this.remembered, ...this.toolbar.state };
    this.take(this.study.view(selection));
    this.fillPage();
    this.redraw();
    this.mark(this.selected, this.selectedNode);
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
    document.getElementById("report").classList.add("without-view");
    this.canvasBox.replaceChildren(
      h(
        "p",
        { class: "hint" },
        "The view needs WebGL, which this browser does not offer. The tables, the values of ",
        "elements and nodes, and the print work without it. Most browsers offer WebGL when ",
        "\u201chardware acceleration\u201d is on in their settings.",
      ),
      h("p", { class: "hint" }, fault.message),
    );
    this.select(-1);
  }

  /** Builds the fixed parts of the page, and empty boxes for those that change with the choice. */
  layOut() {
    this.canvasBox = h("div", { class: "canvas" });
    this.legend = new Legend(() => this.colour());
    this.panel = h("section", { id: "panel", "aria-label": "selected object" });
    this.toolbar = new Toolbar(this);
    this.motions = new Motions(this);
    this.viewText = new ViewText(this);
    this.sheet = new PrintSheet(this);
    closeMenusOutside(document.getElementById("report"));
    const part = () => h("div");
    this.parts = { head: part(), cards: part(), tables: part() };
    layOutPage(this);
  }

  /** Fills the boxes with the present report. */
  fillPage() {
    const { report } = this;
    const toolbar = new Toolbar(this);
    toolbar.adopt(this.remembered);
    this.toolbar.element.replaceWith(toolbar.element);
    this.toolbar = toolbar;
    this.selector?.show(report.selection);
    const open = this.tables?.table.name;
    const tables = withMembers(report.tables, this.results);
    this.tables = new TableView(tables, this.choose, open, fileBase(report));
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
    this.labels = new Labels(this.stage, (labels) => coveredLabels(this, labels));
    this.viewText.name(this.canvasBox);
    listenToKeys(this);
    this.axes = new LocalAxes(this.stage, this.labels, this.settings);
    this.cutting = new Cutting(this);
    onClick(this.stage.renderer.domElement, (point) => {
      if (!this.cutting.take(point)) this.markAt(point);
    });
  }

  pickAt(point) {
    return pick(this, point);
  }

  /** Selects the node near a point of the view, or the element there. */
  markAt(point) {
    const element = this.pickAt(point);
    const node = pickNode(this.stage, this.model, this.factor.value, element, point);
    this.mark(node < 0 ? element : -1, node);
  }

  fillStage() {
    const { model } = this;
    this.shapes = new THREE.Group();
    this.makeShapes();
    this.diagrams = new DiagramView(model);
    this.crosses = new THREE.LineSegments(
      new THREE.BufferGeometry(),
      deformable(new THREE.LineBasicMaterial({ vertexColors: true }), this.settings),
    );
    this.crosses.frustumCulled = false;
    this.marks = new THREE.Group();
    this.makeSymbols();
    this.highlight = new Highlight(this.stage, model, this.members);
    const details = [this.marks, this.diagrams.group, this.crosses];
    for (const object of details) object.traverse((one) => one.layers.set(DETAIL));
    this.stage.scene.add(
      this.shapes,
      ...details,
      this.cutting.fill(),
      this.axes.line,
      ...this.highlight.objects,
    );
  }

  /** The shown elements, one view for each mesh. */
  makeShapes() {
    const { model, report } = this;
    const meshes = Array.from({ length: report.model.meshes }, (_, i) => i + 1);
    dispose(this.shapes);
    this.shapes.clear();
    this.views = {
      surfaces: meshes.map((mesh) => new SurfaceView(model, mesh, this.settings)),
      beams: meshes.map((mesh) => new BeamView(model, this.stage, mesh, this.settings)),
    };
    this.shapes.add(...[...this.views.surfaces, ...this.views.beams].map(({ group }) => group));
  }

  /** Supports, loads, reactions and hinges of the shown elements and their nodes. */
  makeSymbols() {
    const { model, report } = this;
    const size = this.symbolSize(),
      length = 0.085 * model.box.size,
      shown = this.visibility.of(model);
    dispose(this.marks);
    this.marks.clear();
    this.hinges = hingeSymbols(report, model, 0.2 * size, shown);
    this.symbols = {
      supports: { group: supportSymbols(report, model, size, shown), labels: [] },
      loads: loadSymbols(report, model, length, shown),
      reactions: reactionSymbols(report, model, length, shown),
    };
    this.marks.add(this.hinges, ...Object.values(this.symbols).map(({ group }) => group));
    this.marks.traverse((one) => one.layers.set(DETAIL));
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
    this.stage.resize(); // the legend takes space
    this.stage.look(model.plane ? "top" : "iso");
    this.select(this.results.mostBent());
    const moving = this.report.hasResults ? null : this.report.check?.find(({ motion }) => motion);
    if (moving) this.motions.show(moving);
  }

  /** Draws everything as the controls say. */
  drawAll() {
    const isOn = (id) => document.getElementById(id)?.checked ?? false;
    for (const name of Object.keys(this.symbols)) this.showSymbols(name, isOn(name));
    this.showLines(isOn("lines"));
    this.showNumbers(isOn("numbers"));
    this.colour();
    this.showDiagram();
    this.showDirections();
    this.showAxes();
    this.deform();
    this.cutting.show();
  }

  colour() {
    const field = this.fields.find(({ id }) => id === this.toolbar.colours.value) ?? null;
    this.field = field;
    const extremes = field && extremesOfField(field, this.model, this.shells);
    if (extremes) extremes.isOfAll = this.visibility.hides;
    const scale = field && new ColourScale(extremes.min, extremes.max, this.legend.limitsOf(field));
    const smooth = this.toolbar.isSmooth;
    this.bands?.dispose();
    this.bands = scale && bandTexture(scale);
    for (const view of this.views.surfaces)
      view.colour(field, scale, this.shells, smooth, this.bands);
    const values = field?.beams ?? null;
    for (const view of this.views.beams) view.colour(values, scale);
    this.toolbar.smooth.hidden = !field?.points;
    this.scale = scale;
    this.legend.show(field, scale, extremes);
    this.cutting.colour();
    this.stage.draw();
  }

  showDiagram() {
    const name = this.toolbar.diagram.value;
    this.diagramName = name;
    this.toolbar.diagramSize.hidden = !name;
    const height = 0.1 * this.model.box.size * this.toolbar.diagramSize.value;
    this.diagrams.show(name, height, this.settings.isShown);
    const labels =
      this.model.beams.length <= 100 ? this.diagrams.labels : largestLabels(this.diagrams.labels);
    const texts = styledTogether(
      labels.map(({ value }) => value),
      4,
    );
    this.labels.set(
      "diagram",
      theme.css("scene-label"),
      labels.map(({ place }, i) => ({ place, text: texts[i] })),
    );
    this.cutting.clip();
    this.stage.draw();
  }

  showDirections() {
    const kind = this.report.isEnvelope ? "" : this.toolbar.directions.value;
    this.crosses.geometry.dispose();
    this.crosses.geometry = directionLines(kind, this);
    this.stage.draw();
  }

  deform() {
    this.deformation.update(this.toolbar, this.report.isEnvelope);
    this.showDeformed();
  }

  /** Shows the shape with another factor than that of the controls, until deform. */
  deformBy(factor) {
    this.factor.value = factor;
    this.showDeformed();
  }

  showDeformed() {
    for (const view of [...this.views.beams, ...this.views.surfaces])
      view.deform(this.factor.value);
    this.cutting.section.deform(this.factor.value);
    this.placeHighlight();
    this.stage.draw();
  }

  showAxes() {
    this.axes.show(this.toolbar.axes.value, this.report, this.model, this.selected);
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
    const { nodes, elements } = on
      ? numberLabels(this.model, this.visibility.of(this.model))
      : { nodes: [], elements: [] };
    this.labels.set("nodes", theme.css("scene-label-node"), nodes);
    this.labels.set("elements", theme.css("scene-label-element"), elements);
    this.stage.draw();
  }

  /** Shows or hides a mesh or a material: kind "meshes" or "materials", and its number. */
  showPart(kind, number, on) {
    this.visibility.set(kind, number, on);
    this.makeShapes();
    this.makeSymbols();
    this.drawAll();
  }

  showLines(on) {
    for (const view of this.views.surfaces) view.showLines(on);
    this.stage.draw();
  }

  /** Selects what a row of a table, a link or a place of an extreme names. */
  selectNumber(kind, number) {
    const { model } = this;
    if (kind === "node") this.mark(-1, model.nodeAt.get(number) ?? -1);
    else this.select(model.elementAt.get(number) ?? -1);
  }

  select(element) {
    this.mark(element, -1);
  }

  /** Selects an element or a node, places in their lists; -1 for none. */
  mark(element, node) {
    this.selected = element;
    this.selectedNode = node;
    this.panel.replaceChildren(...panelOf(this, { element, node }).flat(2).filter(Boolean));
    if (!this.stage) return;
    this.placeHighlight();
    this.showAxes();
  }

  /** Selects nothing, and ends a motion that is shown. */
  release() {
    this.motions.stop();
    this.select(-1);
  }

  placeHighlight() {
    const { selected: element, selectedNode: node } = this;
    this.highlight.place({ element, node }, this.factor.value);
  }
}

/** The labels of the least and the largest value. */
function largestLabels(labels) {
  if (labels.length === 0) return [];
  const least = labels.reduce((a, b) => (b.value < a.value ? b : a));
  return [least, labels.reduce((a, b) => (b.value > a.value ? b : a))];
}

/** For scripts and tests: the report of this page. */
window.morlenReport = new Report(JSON.parse(document.getElementById("data").textContent));
