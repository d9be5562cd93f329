// The panel beside the view: the chosen node, or the chosen element with the member that it belongs to.

import { h } from "./dom.js";
import { elementPanel } from "./element_panel.js";
import { memberPanel } from "./member_panel.js";
import { BEAM } from "./model.js";
import { nodePanel } from "./node_panel.js";

function hintFor({ model, stage }) {
  const [element, shown] = model.beams.length
    ? ["a beam", "diagrams and values"]
    : ["an element", "values"];
  const place = stage
    ? `${element} or a node in the view, or on a row of a table`
    : "a row of a table";
  return h("p", { class: "hint" }, `Click on ${place}, for its ${shown}.`);
}

/**
 * The content of the panel: of a node or an element, places in their lists, -1 for none; a hint without either.
 * view: {report, model, stage, shells, fields, results, choose}.
 */
export function panelOf(view, { element, node }) {
  const { model, results, choose } = view;
  if (node >= 0) return nodePanel(view, node);
  if (element < 0) return [hintFor(view)];
  return model.elements.kinds[element] === BEAM
    ? memberPanel(results, element, choose)
    : elementPanel(view, element);
}
