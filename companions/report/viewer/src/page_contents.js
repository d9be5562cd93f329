// The texts and cards of the present report, for the screen and for the printer.

import { h } from "./dom.js";
import {
  balanceCard,
  caseBalancesCard,
  checkCard,
  envelopeCard,
  extremesCard,
  header,
  modelCard,
} from "./summary.js";

const showMotion = (page) => (finding) => page.motions.show(finding);

/** The head of the page, and the choice of load cases in words. */
export function headOf(page) {
  const choice = page.selector?.printed(page.report.selection);
  return [header(page.report, showMotion(page)), choice].filter(Boolean);
}

function extremes(page) {
  const { report, model, shells, fields } = page;
  return report.isEnvelope
    ? envelopeCard(report, page.choose)
    : extremesCard(report, model, shells, fields, page.choose);
}

/** The cards on the model and on its results. */
export function cardsOf(page) {
  const { report, model } = page;
  return [
    h(
      "div",
      { class: "cards" },
      modelCard(report, model, page.members),
      balanceCard(report, model),
      report.balances ? caseBalancesCard(report, model) : null,
      checkCard(report, showMotion(page)),
    ),
    report.hasResults ? extremes(page) : null,
  ].filter(Boolean);
}

export const footnoteOf = ({ report }) =>
  `${report.program}. Displacements, reactions and nodal loads are in global axes, forces of elements in local ones; signs as in the result files.`;
