// The panel beside the view: the chosen node, or the chosen element with the member that it belongs to.

import { h } from "./dom.js";
import { elementPanel } from "./element_panel.js";
import { memberPanel } from "./member_panel.js";
import { BEAM } from "./model.js";
import { nodePanel } from "./node_panel.js";

function hintFor(model) {
  return h(
    "p",
    { class: "hint" },
    model.beams.length
      ? "Click on a beam or a node in the view, or on a row of a table, for its diagrams and values."
      : "Click on an element or a node in the view, or on a row of a table, for its values.",
  );
}

/**
 * The content of the panel: of a node or an element, places in their lists, -1 for none; a hint without either.
 * view: {report, model, shells, fields, results, choose}.
 */
export function panelOf(view, { element, node }) {
  const { model, results, choose } = view;
  if (node >= 0) return nodePanel(view, node);
  if (element < 0) return [hintFor(model)];
  return model.elements.kinds[element] === BEAM
    ? memberPanel(results, element, choose)
    : elementPanel(view, element);
}
