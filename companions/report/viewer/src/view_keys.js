// The view by keys: turn, shift, zoom, the standard views, and the elements one after the other.

const TURN = (5 * Math.PI) / 180;
const SHIFT = 40; // pixels
const ZOOM = 1.2;
const ARROWS = {
  ArrowLeft: [-1, 0],
  ArrowRight: [1, 0],
  ArrowUp: [0, -1],
  ArrowDown: [0, 1],
};
const LOOKS = { 1: "iso", 2: "front", 3: "side", 4: "top" };

/** The keys of the page as [keys, meaning], for the user. */
export function keysOf(model) {
  return [
    ...(model.plane
      ? [["Arrows", "move the view"]]
      : [
          ["Arrows", "turn the view"],
          ["Shift + arrows", "move the view"],
        ]),
    ["+ and \u2212", "zoom"],
    model.plane ? ["0", "the whole model"] : ["1 2 3 4", "views 3D, XZ, YZ, XY; 0 is the first"],
    ["N and P", "next and previous element"],
    ["Escape", "select nothing; end a motion"],
    ["Tab", "from one control to the next; the keys above work in the view"],
    ["Arrows", "in a diagram of a member: along it, and to its other diagrams"],
    ["Arrows, Enter", "in a table: from row to row, and select its element"],
    ["Left and right", "in the list of tables: from table to table"],
  ];
}

function zoom(stage, by) {
  stage.camera.zoom *= by;
  stage.camera.updateProjectionMatrix();
  stage.draw();
}

function moveByArrow(stage, model, [x, y], isShift) {
  if (model.plane || isShift) {
    stage.controls.pan(-SHIFT * x, -SHIFT * y);
  } else if (x) {
    stage.controls.rotateLeft(-TURN * x);
  } else {
    stage.controls.rotateUp(TURN * y);
  }
  stage.draw();
}

/** Selects the element `by` places after the selected one, in the order of the file. */
function step(report, by) {
  const { count } = report.model.elements;
  const from = report.selected < 0 ? (by > 0 ? -1 : count) : report.selected;
  report.select((from + by + count) % count);
}

/** The action of a key in the view; null where it has none. */
function actionOf(report, { key, shiftKey }) {
  const { stage, model } = report;
  if (ARROWS[key]) return () => moveByArrow(stage, model, ARROWS[key], shiftKey);
  if (key === "+" || key === "=") return () => zoom(stage, ZOOM);
  if (key === "-" || key === "_") return () => zoom(stage, 1 / ZOOM);
  if (key === "0" || (model.plane && LOOKS[key]))
    return () => stage.look(model.plane ? "top" : "iso");
  if (LOOKS[key]) return () => stage.look(LOOKS[key]);
  if (key === "n" || key === "N") return () => step(report, 1);
  if (key === "p" || key === "P") return () => step(report, -1);
  if (key === "Escape") return () => report.release();
  return null;
}

/** Makes the view reachable by Tab and moved by keys. */
export function listenToKeys(report) {
  report.canvasBox.addEventListener("keydown", (event) => {
    if (event.ctrlKey || event.metaKey || event.altKey) return;
    const action = actionOf(report, event);
    if (!action) return;
    event.preventDefault();
    action();
  });
}
