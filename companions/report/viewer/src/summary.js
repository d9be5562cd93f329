// What the model is, whether loads and reactions balance, the findings of the check, the extremes.

import { format, h } from "./dom.js";
import { extremesOfField } from "./fields.js";

const row = (...cells) =>
  h(
    "tr",
    {},
    cells.map((cell, i) => h(i ? "td" : "th", {}, cell)),
  );

function card(id, title, ...content) {
  return h("section", { class: "card", id }, h("h2", {}, title), content);
}

function kindCounts(model) {
  const names = [
    ["member", "members"],
    ["shell", "shells"],
    ["solid", "solids"],
  ];
  return names
    .map(([one, many], kind) => {
      const count = model.elements.kinds.reduce((sum, k) => sum + (k === kind), 0);
      return count ? `${count} ${count === 1 ? one : many}` : null;
    })
    .filter(Boolean)
    .join(", ");
}

export function modelCard(report, model) {
  const { low, high } = model.box;
  const size = high
    .map((value, k) => format(value - low[k], 4))
    .slice(0, report.model.translations);
  const count = (name) => report.table(name)?.rows ?? 0;
  const { units } = report;
  return card(
    "summary",
    "Model",
    h(
      "table",
      { class: "facts" },
      row("Problem", report.model.solids ? "solid" : report.model.plane ? "plane" : "space"),
      row("Nodes", format(model.nodeCount)),
      row(
        "Elements",
        `${kindCounts(model)} in ${report.model.meshes} ${report.model.meshes === 1 ? "mesh" : "meshes"}`,
      ),
      row("Materials", format(count("materials"))),
      row("Supported nodes", format(count("supports"))),
      row("Loads", `${count("nodal_loads")} at nodes, ${count("element_loads")} on elements`),
      row("Size", `${size.join(" \u00d7 ")}${units.named ? ` ${units.length}` : ""}`),
      row(
        "Units",
        units.named
          ? `${units.force}, ${units.length}, ${units.pressure}`
          : "none named: one consistent set",
      ),
    ),
  );
}

export function balanceCard(report, model) {
  const { equilibrium, units } = report;
  const { plane } = model;
  const names = plane ? ["Fx", "Fy", "Mz"] : ["Fx", "Fy", "Fz", "Mx", "My", "Mz"];
  const places = plane ? [0, 1, 5] : [0, 1, 2, 3, 4, 5];
  const center = equilibrium.center
    .slice(0, plane ? 2 : 3)
    .map((value) => format(value, 4))
    .join(", ");
  const limit = equilibrium.limit.toExponential(0);
  const residual = equilibrium.residual.toExponential(1);
  const isForce = (k) => k < 3;
  /** Without what only rounding has left. */
  const largest = Math.max(
    ...[...equilibrium.loads.slice(0, 3), ...equilibrium.reactions.slice(0, 3)].map(Math.abs),
  );
  const clean = (value, k) =>
    Math.abs(value) < 1e-10 * largest * (isForce(k) ? 1 : model.box.size) ? 0 : value;
  return card(
    "equilibrium",
    "Equilibrium",
    h(
      "table",
      { class: "sums" },
      h("thead", {}, row("", "loads", "reactions", "sum")),
      h(
        "tbody",
        {},
        names.map((name, i) => {
          const k = places[i],
            load = equilibrium.loads[k],
            reaction = equilibrium.reactions[k];
          const sum = clean(load + reaction, k);
          return row(
            [name, h("small", {}, isForce(k) ? units.force : units.moment)],
            format(clean(load, k)),
            format(clean(reaction, k)),
            sum ? sum.toExponential(1) : "0",
          );
        }),
      ),
    ),
    h(
      "p",
      { class: equilibrium.balanced ? "verdict good" : "verdict bad" },
      equilibrium.balanced
        ? `Loads and reactions balance: residual ${residual}, below ${limit}.`
        : `Warning: loads and reactions do not balance: residual ${residual}, above ${limit}. ${equilibrium.advice}`,
    ),
    h(
      "p",
      { class: "note" },
      `Moments are about (${center}), the middle of the model. The residual is the largest sum relative to ` +
        "the sizes of all loads or reactions.",
    ),
  );
}

/** The findings of the check of the problem file; null when it was not checked. */
export function checkCard(report) {
  if (!report.check) return null;
  const findings = report.check.map(({ error, place, text }) =>
    h(
      "li",
      { class: error ? "bad" : "warn" },
      h("b", {}, error ? "error" : "warning"),
      ` ${place}: ${text}`,
    ),
  );
  return card(
    "check",
    "Check of the problem file",
    findings.length ? h("ul", {}, findings) : h("p", { class: "verdict good" }, "No warnings."),
  );
}

export function extremesCard(report, model, shells, fields, onplace) {
  const place = (text) =>
    h("button", { class: "link", onclick: () => onplace(...text.split(" ")) }, text);
  const rows = fields.map((field) => {
    const { min, max, minAt, maxAt } = extremesOfField(field, model, shells);
    return row(
      [field.id === "u" ? "|u|" : field.label, h("small", {}, field.unit)],
      format(min),
      place(minAt),
      format(max),
      place(maxAt),
    );
  });
  return card(
    "extremes",
    "Extremes",
    h(
      "table",
      { class: "sums" },
      h("thead", {}, row("", "least", "at", "largest", "at")),
      h("tbody", {}, rows),
    ),
  );
}

/** The errors of the problem file, in red; null without any. */
function errorBanner(report) {
  const SHOWN = 3;
  const errors = (report.check ?? []).filter(({ error }) => error);
  if (!errors.length) return null;
  const count = errors.length === 1 ? "1 error" : `${errors.length} errors`;
  const items = errors
    .slice(0, SHOWN)
    .map(({ place, text }) => h("li", {}, h("b", {}, `${place}: `), text));
  if (errors.length > SHOWN)
    items.push(h("li", {}, `and ${errors.length - SHOWN} more, in the check of the problem file`));
  return h(
    "div",
    { class: "alert", role: "alert" },
    h("b", {}, `${count} in the problem file: these results may be those of another model.`),
    h("ul", {}, items),
  );
}

export function header(report) {
  const { balanced, residual } = report.equilibrium;
  const state = balanced ? "in equilibrium" : "not in equilibrium";
  const description = report.model.description;
  return h(
    "header",
    {},
    h(
      "div",
      { class: "titles" },
      h("h1", {}, report.model.file),
      h(
        "span",
        { class: balanced ? "badge good" : "badge bad" },
        `${state}, residual ${residual.toExponential(1)}`,
      ),
    ),
    errorBanner(report),
    description.length ? h("pre", { class: "description" }, description.join("\n")) : null,
  );
}
