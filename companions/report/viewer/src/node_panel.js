// The panel of a node: its coordinates, support, loads and results, and links to the elements around it.

import { aside, h } from "./dom.js";
import { BEAM, SHELL } from "./model.js";
import { significant, styledTogether } from "./numbers.js";
import { fact, linkTo, unitAfter, valueTable } from "./panel_parts.js";

/** Links to the elements around a node; the others are counted. */
const MOST_LINKS = 24;

/** The rows of a table that belong to a node. */
function rowsOf(table, number) {
  const found = [];
  const numbers = table?.column("node").values ?? [];
  for (let row = 0; row < numbers.length; ++row) if (numbers[row] === number) found.push(row);
  return found;
}

/** The values of a row, name by name: those of one unit with the same number of decimals. */
function valueRows(table, row) {
  const columns = table.columns.filter(({ name, words }) => name !== "node" && !words);
  const texts = new Map();
  for (const unit of new Set(columns.map((column) => column.unit))) {
    const own = columns.filter((column) => column.unit === unit);
    const together = styledTogether(own.map((column) => column.cell(row) ?? NaN));
    own.forEach((column, i) => texts.set(column.name, column.cell(row) === 0 ? "0" : together[i]));
  }
  return columns.map(({ name, unit }) => {
    const by = table.column(`${name} by`)?.cell(row);
    return [name.replace("_", " "), [texts.get(name), by ? aside(by) : null], unit];
  });
}

/** Tables of results with a row for the node. */
function resultTables(report, number) {
  const titles = { displacements: "Displacements", reactions: "Reaction", stresses: "Stresses" };
  return Object.entries(titles).flatMap(([name, title]) => {
    const table = report.table(name);
    return rowsOf(table, number).map((row) =>
      h(
        "div",
        { class: "wide", "data-values": name },
        valueTable([title, "value", "unit"], valueRows(table, row)),
      ),
    );
  });
}

/** The names of a node's displacements and rotations. */
function componentNames({ components, translations }) {
  const moves = ["ux", "uy", "uz"].slice(0, translations);
  const turns = components - translations === 1 ? ["rz"] : ["rx", "ry", "rz"];
  return [...moves, ...turns].slice(0, components);
}

/** "ux, uy held; uz = -0.002 m; rz spring 500 kN*m/rad", of a support with its own axes with a note. */
function supportText(report, table, row) {
  const { model, units } = report;
  const withUnit = (value, unit) => significant(value) + unitAfter(units, unit);
  const names = componentNames(model);
  const held = [],
    others = [];
  names.forEach((name, k) => {
    const flag = table.column(`flag${k + 1}`).cell(row);
    const value = table.column(`value${k + 1}`).cell(row) ?? 0;
    const isMove = k < model.translations;
    if (flag === 1 && value === 0) held.push(name);
    else if (flag === 1) others.push(`${name} = ${withUnit(value, isMove ? units.length : "rad")}`);
    else if (flag === 2)
      others.push(
        `${name} spring ${withUnit(value, isMove ? units.forcePerLength : `${units.moment}/rad`)}`,
      );
  });
  const hasAxes = (table.column("Euler1")?.cell(row) ?? null) !== null;
  const parts = [held.length ? `${held.join(", ")} held` : "", ...others].filter(Boolean);
  return (parts.join("; ") || "free") + (hasAxes ? "; in axes of its own" : "");
}

/** "Px 5.000 kN, Mz 3.000 kN*m": the components that are not 0. */
function loadText(table, row, units) {
  return table.columns
    .filter((column) => column.name !== "node" && column.cell(row))
    .map(
      (column) => `${column.name} ${significant(column.cell(row))}${unitAfter(units, column.unit)}`,
    )
    .join(", ");
}

/** The elements that have a node, as links. */
function elementLinks(model, node, choose) {
  const found = [];
  const { elements } = model;
  for (let e = 0; e < elements.count; ++e) {
    for (let i = 0; i < elements.nodeCounts[e]; ++i)
      if (model.node(e, i) === node) {
        found.push(e);
        break;
      }
  }
  const kindOf = (e) =>
    elements.kinds[e] === BEAM ? "beam" : elements.kinds[e] === SHELL ? "shell" : "solid";
  const links = found
    .slice(0, MOST_LINKS)
    .flatMap((e, i) => [i ? ", " : "", linkTo(kindOf(e), elements.numbers[e], choose)]);
  if (found.length > MOST_LINKS) links.push(` and ${found.length - MOST_LINKS} more`);
  return links.length ? links : ["none"];
}

/** view: {report, model, choose}; node: place in the list of nodes. */
export function nodePanel({ report, model, choose }, node) {
  const number = model.nodeNumbers[node];
  const { translations } = report.model;
  const xyz = styledTogether(model.xyz.subarray(3 * node, 3 * node + translations));
  const unit = unitAfter(model.units, model.units.length);
  const facts = ["x", "y", "z"].slice(0, translations).map((name, k) => fact(name, xyz[k] + unit));
  const [supports, loads] = ["supports", "nodal_loads"].map((name) => report.table(name));
  const supported = rowsOf(supports, number).map((row) =>
    fact("Support", supportText(report, supports, row)),
  );
  const loaded = rowsOf(loads, number)
    .map((row) => loadText(loads, row, report.units))
    .filter(Boolean);
  return [
    h("h3", {}, `Node ${number}`),
    h(
      "table",
      { class: "facts" },
      facts,
      supported,
      loaded.map((text) => fact("Load", text)),
      fact("Elements", elementLinks(model, node, choose)),
    ),
    ...resultTables(report, number),
    h("p", { class: "sign" }, "Displacements, reactions and loads of nodes are in global axes."),
  ];
}
