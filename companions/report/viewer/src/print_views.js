// Pictures of the view for the printer: the scene is drawn anew in the size of the picture, with its
// labels, and copied, so that the view on the screen stays as it is.

import { h } from "./dom.js";

const RATIO = 2; // dots of the printer for a pixel of the page

/**
 * The views that can be printed: {id, text, look, factor}; without a look or a factor (null) the
 * present one is kept.
 */
export function viewsOf(report) {
  const { model } = report;
  const standard = [
    { id: "iso", text: "3D view", look: "iso" },
    { id: "front", text: "View XZ", look: "front" },
    { id: "side", text: "View YZ", look: "side" },
    { id: "top", text: model.plane ? "Whole model" : "View XY", look: "top" },
  ];
  const isDeformable = report.hasResults && !report.report.isEnvelope;
  return [
    { id: "current", text: "The view as it is now", look: null },
    ...(model.plane ? standard.slice(3) : standard),
    ...(isDeformable
      ? [
          { id: "deformed", text: "Deformed shape", look: null, factor: report.deformation.usual },
          { id: "undeformed", text: "Undeformed shape", look: null, factor: 0 },
        ]
      : []),
  ].map((one) => ({ look: null, factor: null, ...one }));
}

function cameraState({ camera, controls }) {
  return {
    position: camera.position.clone(),
    up: camera.up.clone(),
    target: controls.target.clone(),
    zoom: camera.zoom,
  };
}

function restoreCamera({ camera, controls }, state) {
  camera.position.copy(state.position);
  camera.up.copy(state.up);
  camera.zoom = state.zoom;
  controls.target.copy(state.target);
  camera.lookAt(state.target);
  camera.updateProjectionMatrix();
  camera.updateMatrixWorld();
}

/** Copies the picture of the stage, labels included. */
function copyOf(stage, width, height) {
  const copy = h("canvas", { width: width * RATIO, height: height * RATIO });
  const context = copy.getContext("2d");
  for (const layer of stage.container.querySelectorAll("canvas"))
    context.drawImage(layer, 0, 0, copy.width, copy.height);
  return copy;
}

/** Width and height that the camera sees. */
const extentOf = ({ camera }) => [
  (camera.right - camera.left) / camera.zoom,
  (camera.top - camera.bottom) / camera.zoom,
];

/** Zooms so that at least an extent is seen, whatever the shape of the picture. */
function showExtent({ camera }, [width, height]) {
  camera.zoom = Math.min(
    (camera.right - camera.left) / width,
    (camera.top - camera.bottom) / height,
  );
  camera.updateProjectionMatrix();
}

/** Canvases of views, of a width and a height in pixels of the page. */
export function picturesOf(report, views, width, height) {
  const { stage } = report;
  const camera = cameraState(stage);
  const factor = report.factor.value;
  const extent = extentOf(stage);
  const ratio = stage.renderer.getPixelRatio();
  stage.renderer.setPixelRatio(RATIO);
  stage.resizeTo(width, height);
  const pictures = views.map((view) => {
    if (view.look) stage.look(view.look);
    else showExtent(stage, extent);
    if (view.factor !== null) report.deformBy(view.factor);
    stage.drawNow();
    const picture = copyOf(stage, width, height);
    if (view.factor !== null) report.deformBy(factor);
    restoreCamera(stage, camera);
    return picture;
  });
  stage.renderer.setPixelRatio(ratio);
  stage.resize();
  stage.drawNow();
  return pictures;
}
