// The page of a report: reads the data block, builds the view and the panels around it.

import * as THREE from "three";
import { BeamView } from "./beam_view.js";
import { ColourScale } from "./colours.js";
import { readReport } from "./data.js";
import { DiagramView } from "./diagrams.js";
import { format, h } from "./dom.js";
import { ShellPoints, extremesOfField, fieldsOf } from "./fields.js";
import { Highlight } from "./highlight.js";
import { Labels, numberLabels } from "./labels.js";
import { showLegend } from "./legend.js";
import { MemberResults } from "./member_results.js";
import { withMembers } from "./member_table.js";
import { Members } from "./members.js";
import { Model } from "./model.js";
import { pickNode } from "./node_picking.js";
import { styledTogether } from "./numbers.js";
import { panelOf } from "./panel.js";
import { onClick, pick } from "./picking.js";
import { principalCrosses } from "./principal.js";
import { fileBase } from "./save.js";
import { Stage, deformable } from "./scene.js";
import { Selector } from "./selector.js";
import { Study } from "./study.js";
import {
  balanceCard,
  caseBalancesCard,
  checkCard,
  envelopeCard,
  extremesCard,
  header,
  modelCard,
} from "./summary.js";
import { SurfaceView } from "./surface_view.js";
import { hingeSymbols, loadSymbols, reactionSymbols, supportSymbols } from "./symbols.js";
import { TableView, printedTables } from "./tables.js";
import { Toolbar } from "./toolbar.js";

const PRINTED_ROWS = 60;

class Report {
  constructor(data) {
    this.study = data.study ? new Study(data) : null;
    this.selector = this.study && new Selector(this.study, (selection) => this.show(selection));
    this.choose = (kind, number) => this.selectNumber(kind, Number(number));
    this.factor = { value: 0 }; // of the displacements, shared by all materials
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
  }

  /** Makes a report the one that is shown. */
  take(report) {
    this.report = report;
    this.model = new Model(report);
    this.shells = new ShellPoints(this.model, report.table("shell_forces"));
    this.fields = fieldsOf(report, this.model);
    this.members = Members.of(report, this.model);
    this.results = new MemberResults(report, this.model, this.members);
    /** The factor at the middle of the slider: the largest displacement is 6% of the model's size. */
    this.usualFactor =
      this.model.largest > 0 ? niceFactor((0.06 * this.model.box.size) / this.model.largest) : 1;
  }

  /** Shows a case, a combination or an envelope in the same way as the one before. */
  show(selection) {
    this.remembered = { ...this.remembered, ...this.toolbar.state };
    this.take(this.study.view(selection));
    this.fillPage();
    if (this.stage) {
      this.stage.clear();
      this.labels.clear();
      this.fillStage();
      this.drawAll();
    }
    this.mark(this.selected, this.selectedNode);
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

  /** The parts of the page that stay, with empty ones for what changes. */
  layOut() {
    this.canvasBox = h("div", { class: "canvas" });
    this.legend = h("div", { class: "legend", id: "legend", hidden: true });
    this.panel = h("aside", { id: "panel" });
    this.toolbar = new Toolbar(this);
    const part = () => h("div");
    this.parts = { head: part(), cards: part(), tables: part() };
    document
      .getElementById("report")
      .append(
        this.parts.head,
        ...(this.selector ? [this.selector.element] : []),
        h(
          "section",
          { class: "view" },
          h(
            "div",
            { class: "stage" },
            this.toolbar.element,
            h(
              "div",
              { class: "frame" },
              h("div", { class: "canvas-cell" }, this.canvasBox),
              this.legend,
            ),
          ),
          this.panel,
        ),
        this.parts.cards,
        this.parts.tables,
        h(
          "footer",
          {},
          `${this.report.program}. Displacements, reactions and nodal loads are in global axes, forces of elements in local ones; signs as in the result files.`,
        ),
      );
  }

  /** What belongs to the report that is shown. */
  fillPage() {
    const { report, model } = this;
    const toolbar = new Toolbar(this);
    toolbar.adopt(this.remembered);
    this.toolbar.element.replaceWith(toolbar.element);
    this.toolbar = toolbar;
    this.selector?.show(report.selection);
    const open = this.tables?.table.name;
    const tables = withMembers(report.tables, this.results);
    this.tables = new TableView(tables, this.choose, open, fileBase(report));
    this.parts.head.replaceChildren(header(report), this.selector?.printed(report.selection) ?? "");
    this.parts.cards.replaceChildren(
      h(
        "div",
        { class: "cards" },
        modelCard(report, model, this.members),
        balanceCard(report, model),
        report.balances ? caseBalancesCard(report, model) : null,
        checkCard(report),
      ),
      report.isEnvelope
        ? envelopeCard(report, this.choose)
        : extremesCard(report, model, this.shells, this.fields, this.choose),
    );
    this.parts.tables.replaceChildren(
      h("section", { class: "card screen-only" }, h("h2", {}, "Tables"), this.tables.element),
      printedTables(report.tables, PRINTED_ROWS),
    );
    this.tables.drawRows();
  }

  makeStage() {
    this.stage = new Stage(this.canvasBox, this.model);
    this.labels = new Labels(this.stage);
    onClick(this.stage.renderer.domElement, (point) => {
      const element = pick(this.stage, this.model, this.views, this.factor.value, point);
      const node = pickNode(this.stage, this.model, this.factor.value, element, point);
      this.mark(node < 0 ? element : -1, node);
    });
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
    this.highlight = new Highlight(this.stage, model, this.members);
    this.stage.scene.add(
      ...this.views.surfaces.map(({ group }) => group),
      ...this.views.beams.map(({ group }) => group),
      ...Object.values(this.symbols).map(({ group }) => group),
      this.hinges,
      this.diagrams.group,
      this.crosses,
      ...this.highlight.objects,
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
    this.select(this.results.mostBent());
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
    const texts = styledTogether(
      labels.map(({ value }) => value),
      4,
    );
    this.labels.set(
      "diagram",
      "#1b2a38",
      labels.map(({ place }, i) => ({ place, text: texts[i] })),
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
    this.factor.value = this.report.isEnvelope
      ? 0
      : this.toolbar.deformation.value * this.usualFactor;
    this.toolbar.factor.textContent = `\u00d7 ${format(this.factor.value, 3)}`;
    for (const view of [...this.views.beams, ...this.views.surfaces])
      view.deform(this.factor.value);
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
    const { nodes, elements } = on ? numberLabels(this.model) : { nodes: [], elements: [] };
    this.labels.set("nodes", "#2c5282", nodes);
    this.labels.set("elements", "#6b4c11", elements);
    this.stage.draw();
  }

  showMesh(mesh, on) {
    for (const { group } of [this.views.surfaces[mesh], this.views.beams[mesh]]) group.visible = on;
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
    this.stage.draw();
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

/** 1, 2 or 5 times a power of ten, below the value. */
function niceFactor(value) {
  const power = 10 ** Math.floor(Math.log10(value));
  return ([5, 2, 1].find((step) => step * power <= value) ?? 1) * power;
}

/** For scripts and tests: the report of this page. */
window.morlenReport = new Report(JSON.parse(document.getElementById("data").textContent));
