// The choices before printing: which views, how many members, how long tables.

import { openDialog } from "./dialog.js";
import { checkbox, h } from "./dom.js";
import { viewsOf } from "./print_views.js";

function numberField(id, text, value, most) {
  const input = h("input", { type: "number", id, min: 0, max: most, step: 1, value });
  return [h("label", { class: "number-field", for: id }, text, input), input];
}

const whole = (input) => {
  const value = Math.round(Number(input.value));
  return Number.isFinite(value) ? Math.min(Number(input.max), Math.max(0, value)) : 0;
};

export function openPrintDialog(report) {
  const { choices } = report.sheet;
  const views = viewsOf(report).map(({ id, text }) => [
    id,
    checkbox(`print-${id}`, text, choices.views.includes(id), () => {}),
  ]);
  const selected = checkbox(
    "print-selected",
    "The selected element or node",
    choices.selected,
    () => {},
  );
  const [members, memberCount] = numberField(
    "print-members",
    "Members with the largest forces",
    choices.members,
    report.members.count,
  );
  const [rows, rowCount] = numberField(
    "print-rows",
    "Tables with at most this many rows (0: none)",
    choices.rows,
    5000,
  );
  const isOn = (label) => label.querySelector("input").checked;
  const print = () => {
    report.sheet.choices = {
      views: views.filter(([, label]) => isOn(label)).map(([id]) => id),
      selected: isOn(selected),
      members: whole(memberCount),
      rows: whole(rowCount),
    };
    window.print();
  };
  openDialog(
    "Print on A4",
    [
      report.stage
        ? h(
            "fieldset",
            {},
            h("legend", {}, "Views"),
            views.map(([, label]) => label),
          )
        : null,
      h(
        "fieldset",
        {},
        h("legend", {}, "Elements and tables"),
        report.selected >= 0 || report.selectedNode >= 0 ? selected : null,
        report.model.beams.length ? members : null,
        rows,
      ),
      h("p", { class: "note" }, "The browser can also save the print as a PDF file."),
    ],
    [["Print", print]],
  );
}
