// The panel of a shell or a solid: its values at its points and at its nodes.

import { aside, h } from "./dom.js";
import { SHELL } from "./model.js";
import { styled, styleOf, styledTogether } from "./numbers.js";
import { fact, linkTo, valueTable } from "./panel_parts.js";

function shellTable(table, shells, element) {
  const places = Array.from({ length: shells.count[element] }, (_, i) => shells.first[element] + i);
  const columns = table.columns.filter(
    ({ name, words }) => !words && !/^element$|^point$|Euler/.test(name),
  );
  const cells = (column) => {
    const by = table.column(`${column.name} by`);
    const texts = styledTogether(places.map((row) => column.values[row]));
    return places.map((row, i) => [texts[i], by ? aside(by.cell(row)) : null]);
  };
  const heads = [
    "value",
    ...places.map((_, i) =>
      places.length === 1 ? "centroid" : `edge ${["1\u20132", "2\u20133", "3\u20131"][i]}`,
    ),
    "unit",
  ];
  return valueTable(
    heads,
    columns.map((column) => [column.name, ...cells(column), column.unit]),
  );
}

function nodeTable({ model, fields, report, choose }, element) {
  const nodes = Array.from({ length: model.elements.nodeCounts[element] }, (_, i) =>
    model.node(element, i),
  );
  const nodal = fields.filter(
    (field) => "nodes" in field && (report.isEnvelope || field.group !== "Displacements"),
  );
  const axes = report.isEnvelope ? [] : [0, 1, 2].slice(0, report.model.translations);
  const columns = [
    ...axes.map((k) => ({
      head: ["ux", "uy", "uz"][k],
      unit: model.units.length,
      value: (node) => model.displacements[3 * node + k],
    })),
    ...nodal.map((field) => {
      const values = field.nodes;
      return { head: field.label, unit: field.unit, value: (node) => values[node] };
    }),
  ];
  const texts = columns.map(({ value }) => {
    const values = nodes.map(value);
    const style = styleOf(values, 4);
    return values.map((one) => styled(one, style));
  });
  const heads = columns.map(({ head, unit }) => [head, unit ? aside(unit) : null]);
  return valueTable(
    ["node", ...heads],
    nodes.map((node, i) => {
      const number = model.nodeNumbers[node];
      return [linkTo("node", number, choose, String(number)), ...texts.map((column) => column[i])];
    }),
  );
}

const SHELL_SIGNS =
  "Membrane forces: tension positive. Mx\u2032 and My\u2032: positive with tension on the side " +
  "of +z\u2032, from bending along x\u2032 and y\u2032. Shears: along +z\u2032 on the side that looks to +x\u2032 (+y\u2032).";

/** view: {report, model, shells, fields, choose}; element: place in the list of elements. */
export function elementPanel(view, element) {
  const { report, model, shells } = view;
  const isShell = model.elements.kinds[element] === SHELL;
  const material = report.table("elements").column("material").cell(element);
  const forces = isShell ? report.table("shell_forces") : null;
  return [
    h("h3", {}, `${isShell ? "Shell" : "Solid"} ${model.elements.numbers[element]}`),
    h(
      "table",
      { class: "facts" },
      fact("Mesh", String(model.elements.meshes[element])),
      fact("Material", material === 0 ? "of the element" : String(material)),
    ),
    forces ? h("div", { class: "wide" }, shellTable(forces, shells, element)) : null,
    forces ? h("p", { class: "sign" }, SHELL_SIGNS) : null,
    h("div", { class: "wide" }, nodeTable(view, element)),
  ];
}
