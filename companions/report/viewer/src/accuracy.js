// How the results were found and how far they can be trusted, each number with its meaning.

import { format, h } from "./dom.js";

const UNKNOWN = "unknown";
const lower = (text) => text[0].toLowerCase() + text.slice(1);
const size = (value) => (value === 0 ? "0" : value.toExponential(1));

/** Why the data of the run are not known; empty when they are. */
function whyUnknown({ run }) {
  if (run?.state === "matches") return "";
  return run?.state === "differs"
    ? "The record of the run is of another state of the problem file."
    : "There is no record of the run beside the results: morlen-run writes it.";
}

function solverFact(run) {
  const equations = run.equations ? ` ${format(run.equations)} equations` : " the equations";
  const steps = run.iterations ? ` in ${format(run.iterations)} iterations` : "";
  const why = run.why ? ` Why it was chosen: ${run.why}.` : "";
  return [
    "Solver",
    run.solver ?? UNKNOWN,
    run.solver
      ? `The method that solved${equations}${steps}.${why}`
      : "The method that solved the equations.",
  ];
}

const number = (value) => (value === null || value === undefined ? UNKNOWN : size(value));

function equilibriumFact({ equilibrium, balances }) {
  const all = (balances?.map((one) => one.equilibrium) ?? [equilibrium]).filter(
    (one) => one && one.residual !== null,
  );
  const worst = all.length ? Math.max(...all.map(({ residual }) => residual)) : null;
  return [
    "Residual of equilibrium",
    number(worst),
    "The largest sum of loads and reactions, relative to all loads: above 1e-4 the reactions do not carry the loads.",
  ];
}

/** Facts as [name, value, meaning]. */
function factsOf(report) {
  const run = report.run?.state === "matches" ? report.run : {};
  return [
    solverFact(run),
    [
      "Residual of the solution",
      number(run.residual),
      "The part of the loads that the computed displacements do not balance: 0 is exact.",
    ],
    [
      "Estimated error",
      number(run.estimatedError),
      "How far the displacements may be from the exact solution of the equations, relative to the largest; it says nothing of the mesh or the model.",
    ],
    equilibriumFact(report),
  ];
}

/**
 * The facts of the solution in one line, which opens to all and their meanings; null for a page
 * without results.
 */
export function accuracyLine(report) {
  if (!report.hasResults) return null;
  const facts = factsOf(report);
  const why = whyUnknown(report);
  const first = facts.findIndex(([, value]) => value === UNKNOWN);
  const known = facts.slice(0, -1).filter(([, value]) => value !== UNKNOWN);
  const unknown = facts.filter(([, value]) => value === UNKNOWN).map(([name]) => lower(name));
  return h(
    "details",
    { class: "accuracy", id: "accuracy" },
    h(
      "summary",
      {},
      h("span", {}, "Accuracy"),
      known.map(([name, value]) => h("span", {}, `${name} `, h("b", {}, value))),
      unknown.length ? h("span", {}, `unknown: ${unknown.join(", ")}`) : null,
    ),
    h(
      "dl",
      {},
      facts.flatMap(([name, value, meaning], i) => [
        h("dt", {}, `${name}: `, h("b", {}, value)),
        h("dd", {}, meaning, i === first && why ? ` ${why}` : ""),
      ]),
    ),
  );
}
