// The head and the cards of the page: model, balance of loads and reactions, check, extremes.

import { aside, format, h } from "./dom.js";
import { accuracyLine } from "./accuracy.js";
import { extremesOf, extremesOfField } from "./fields.js";
import { motionButton } from "./motions.js";
import { restText, significant, styleOf, styled } from "./numbers.js";

const row = (...cells) =>
  h(
    "tr",
    {},
    cells.map((cell, i) => h(i || cell === "" ? "td" : "th", {}, cell)),
  );

function card(id, title, ...content) {
  return h("section", { class: "card", id }, h("h2", {}, title), content);
}

function kindCounts(model) {
  const names = [
    ["beam", "beams"],
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

/** The loads of combinations are in the view only, those of envelopes nowhere. */
const hasLoadTables = ({ selection }) => !selection || selection.kind === "case";

export function modelCard(report, model, members) {
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
      members.count ? row("Members", String(members.count)) : null,
      row("Materials", format(count("materials"))),
      row("Supported nodes", format(count("supports"))),
      hasLoadTables(report)
        ? row("Loads", `${count("nodal_loads")} at nodes, ${count("element_loads")} on elements`)
        : null,
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

/** Loads and reactions of the present choice; null for an envelope. */
export function balanceCard(report, model) {
  const { equilibrium, units } = report;
  if (!equilibrium) return null;
  const { plane } = model;
  const names = plane ? ["Fx", "Fy", "Mz"] : ["Fx", "Fy", "Fz", "Mx", "My", "Mz"];
  const places = plane ? [0, 1, 5] : [0, 1, 2, 3, 4, 5];
  const center = equilibrium.center
    .slice(0, plane ? 2 : 3)
    .map((value) => format(value, 4))
    .join(", ");
  const isForce = (k) => k < 3;
  /** Sums below 1e-10 of the largest force are rounding errors and become 0. */
  const largest = Math.max(
    ...[...equilibrium.loads.slice(0, 3), ...equilibrium.reactions.slice(0, 3)].map(Math.abs),
  );
  const clean = (value, k) =>
    Math.abs(value) < 1e-10 * largest * (isForce(k) ? 1 : model.box.size) ? 0 : value;
  const styleFor = (wanted) =>
    styleOf(
      places
        .filter((k) => isForce(k) === wanted)
        .flatMap((k) => [equilibrium.loads[k], equilibrium.reactions[k]])
        .map((value) => (Math.abs(value) < 1e-10 * largest ? 0 : value)),
    );
  const styles = { true: styleFor(true), false: styleFor(false) };
  /** A value that its column would round to 0 is a rest as the sum is: the row adds up. */
  const partText = (value, k) => {
    const text = styled(clean(value, k), styles[isForce(k)]);
    return /^-?[0.]+$/.test(text) ? restText(clean(value, k)) : text;
  };
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
            [name, aside(isForce(k) ? units.force : units.moment)],
            partText(load, k),
            partText(reaction, k),
            restText(sum),
          );
        }),
      ),
    ),
    equilibrium.residual === null ? null : verdict(equilibrium),
    h(
      "p",
      { class: "note" },
      `Moments are about (${center}), the middle of the model. ${
        equilibrium.residual === null
          ? "The sums are those of the cases, with their factors."
          : "The residual is the largest sum relative to the sizes of all loads or reactions."
      }`,
    ),
  );
}

function verdict({ balanced, residual, limit, advice }) {
  const size = residual.toExponential(1),
    bound = limit.toExponential(0);
  return h(
    "p",
    { class: balanced ? "verdict good" : "verdict bad" },
    balanced
      ? `Loads and reactions balance: residual ${size}, below ${bound}.`
      : `Warning: loads and reactions do not balance: residual ${size}, above ${bound}. ${advice}`,
  );
}

/** The sum of the loads and the residual of every load case. */
export function caseBalancesCard(report, model) {
  const { units, balances } = report;
  const names = ["Fx", "Fy", "Fz"].slice(0, model.plane ? 2 : 3);
  const largest = Math.max(
    ...balances.flatMap(({ equilibrium }) => equilibrium.loads.slice(0, 3).map(Math.abs)),
  );
  const clean = (value) => (Math.abs(value) < 1e-10 * largest ? 0 : value);
  const styles = names.map((_, k) =>
    styleOf(balances.map(({ equilibrium }) => clean(equilibrium.loads[k]))),
  );
  const line = ({ name, equilibrium: { loads, residual, balanced } }) =>
    h(
      "tr",
      { class: balanced ? "" : "unbalanced" },
      h("th", {}, name),
      names.map((_, k) => h("td", {}, styled(clean(loads[k]), styles[k]))),
      h("td", {}, residual.toExponential(1)),
    );
  const bad = balances.filter(({ equilibrium }) => !equilibrium.balanced);
  const limit = balances[0].equilibrium.limit.toExponential(0);
  return card(
    "balances",
    "Balance of every case",
    h(
      "div",
      { class: "scroll" },
      h(
        "table",
        { class: "sums" },
        h(
          "thead",
          {},
          row("loads", ...names.map((name) => [name, aside(units.force)]), "residual"),
        ),
        h("tbody", {}, balances.map(line)),
      ),
    ),
    h(
      "p",
      { class: bad.length ? "verdict bad" : "verdict good" },
      bad.length
        ? `Warning: loads and reactions do not balance: ${bad.map(({ name }) => name).join(", ")}. ${bad[0].equilibrium.advice}`
        : `Loads and reactions of every case balance: all residuals are below ${limit}.`,
    ),
  );
}

const GROUPS = {
  displacements: ["Displacements", "node"],
  reactions: ["Reactions", "node"],
  beam_diagrams: ["Beams", "element"],
  shell_forces: ["Shells", "element"],
  stresses: ["Solids", "node"],
};

/**
 * The least and the largest value of every component over an envelope, and the combinations
 * that govern.
 */
export function envelopeCard(report, onplace) {
  const lines = [];
  for (const [name, [group, key]] of Object.entries(GROUPS)) {
    const table = report.table(name);
    for (const column of table?.columns ?? []) {
      const component = column.name.match(/^(.*) min$/)?.[1];
      if (!component || (name === "beam_diagrams" && /^u/.test(component))) continue;
      lines.push(envelopeLine(table, component, group, key, onplace));
    }
  }
  const heads = ["", "", "least", "at", "by", "largest", "at", "by"];
  return card(
    "extremes",
    "Extremes",
    h(
      "div",
      { class: "wide" },
      h("table", { class: "sums governing" }, h("thead", {}, row(...heads)), h("tbody", {}, lines)),
    ),
  );
}

function envelopeLine(table, component, group, key, onplace) {
  const end = (which) => {
    const column = table.column(`${component} ${which}`);
    const found = extremesOf(column.values);
    const [value, at] = which === "min" ? [found.min, found.minAt] : [found.max, found.maxAt];
    const number = table.column(key).cell(at);
    const place = h(
      "button",
      { class: "link", onclick: () => onplace(key, number) },
      `${key === "element" ? (table.name === "beam_diagrams" ? "beam" : "element") : "node"} ${number}`,
    );
    return [significant(value), place, table.column(`${component} ${which} by`).cell(at)];
  };
  const { unit } = table.column(`${component} min`);
  return row([component.replace("_", " "), aside(unit)], group, ...end("min"), ...end("max"));
}

/**
 * The findings of the check of the problem file; null when it was not checked. onmotion(finding) is
 * called to show the motion of one.
 */
export function checkCard(report, onmotion) {
  if (!report.check) return null;
  const findings = report.check.map((finding) =>
    h(
      "li",
      { class: finding.error ? "bad" : "warn" },
      h("b", {}, finding.error ? "error" : "warning"),
      ` ${finding.place}: ${finding.text} `,
      motionButton(finding, onmotion),
    ),
  );
  return card(
    "check",
    "Check of the problem file",
    findings.length ? h("ul", {}, findings) : h("p", { class: "verdict good" }, "No warnings."),
  );
}

/** A least or largest value below this part of the other one is a rounding error. */
const NOISE = 1e-12;

export function extremesCard(report, model, shells, fields, onplace) {
  const place = (text) =>
    h("button", { class: "link", onclick: () => onplace(...text.split(" ")) }, text);
  const rows = fields.map((field) => {
    const { min, max, minAt, maxAt } = extremesOfField(field, model, shells);
    const largest = Math.max(Math.abs(min), Math.abs(max));
    const text = (value) => significant(Math.abs(value) < NOISE * largest ? 0 : value);
    return row(
      [field.id === "u" ? "|u|" : field.label, aside(field.unit)],
      text(min),
      place(minAt),
      text(max),
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
function errorBanner(report, onmotion) {
  const SHOWN = 3;
  const errors = (report.check ?? []).filter(({ error }) => error);
  if (!errors.length) return null;
  const count = errors.length === 1 ? "1 error" : `${errors.length} errors`;
  const items = errors
    .slice(0, SHOWN)
    .map((finding) =>
      h(
        "li",
        {},
        h("b", {}, `${finding.place}: `),
        `${finding.text} `,
        motionButton(finding, onmotion),
      ),
    );
  const meaning = report.hasResults
    ? "these results may be those of another model."
    : "there are no results.";
  if (errors.length > SHOWN)
    items.push(h("li", {}, `and ${errors.length - SHOWN} more, in the check of the problem file`));
  return h(
    "div",
    { class: "alert", role: "alert" },
    h("b", {}, `${count} in the problem file: ${meaning}`),
    h("ul", {}, items),
  );
}

/** Whether all is in equilibrium, and the words for it. */
function stateOf({ hasResults, equilibrium, balances }) {
  if (!hasResults) return { balanced: false, text: "no results" };
  const all = balances ? balances.map((one) => one.equilibrium) : [equilibrium];
  const residual = Math.max(...all.map((one) => one.residual)).toExponential(1);
  const bad = all.filter((one) => !one.balanced).length;
  const state = bad ? "not in equilibrium" : "in equilibrium";
  if (!balances) return { balanced: !bad, text: `${state}, residual ${residual}` };
  const which = bad ? `${bad} of ${all.length} cases` : `${all.length} cases`;
  return { balanced: !bad, text: `${which} ${state}, residual at most ${residual}` };
}

/** onmotion(finding): shows the motion of a finding of the check. */
export function header(report, onmotion) {
  const { balanced, text } = stateOf(report);
  const description = report.model.description;
  return h(
    "header",
    {},
    h(
      "div",
      { class: "titles" },
      h("h1", {}, report.model.file),
      h("span", { class: balanced ? "badge good" : "badge bad" }, text),
    ),
    errorBanner(report, onmotion),
    accuracyLine(report),
    description.length ? h("pre", { class: "description" }, description.join("\n")) : null,
  );
}
