// Windows over the page, closed by a button or Escape. The browser keeps the focus inside.

import { h } from "./dom.js";

/**
 * Opens a dialog with a title, its content, and a button for each [text, action] beside "Close".
 * The first of them is the usual one.
 */
export function openDialog(title, content, actions = []) {
  const close = () => dialog.close();
  const act = (action) => () => {
    close();
    action();
  };
  const dialog = h(
    "dialog",
    { "aria-labelledby": "dialog-title" },
    h("h2", { id: "dialog-title" }, title),
    content,
    h(
      "div",
      { class: "dialog-buttons" },
      actions.map(([text, action], i) =>
        h("button", { class: i ? "" : "primary", onclick: act(action) }, text),
      ),
      h("button", { onclick: close }, "Close"),
    ),
  );
  dialog.addEventListener("close", () => dialog.remove());
  document.body.append(dialog);
  dialog.showModal();
  return dialog;
}
