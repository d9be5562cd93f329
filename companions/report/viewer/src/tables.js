// The tables: sorted by a click on a column, searched by a number, drawn only as far as they are seen.

import { csvOf, csvParts } from "./csv.js";
import { aside, h } from "./dom.js";
import { cellText, shortest, unitOfColumn } from "./numbers.js";
import { fileName, save } from "./save.js";
import { listenInRows, listenInTabs } from "./table_keys.js";

const ROW = 25,
  SPARE = 8;

const TITLES = {
  nodes: "Nodes",
  elements: "Elements",
  materials: "Materials",
  supports: "Supports",
  nodal_loads: "Nodal loads",
  element_loads: "Element loads",
  displacements: "Displacements",
  reactions: "Reactions",
  members: "Members",
  beam_diagrams: "Beam diagrams",
  beam_end_forces: "Beam end forces",
  shell_forces: "Shell forces",
  stresses: "Stresses",
};

export const titleOf = (table) => TITLES[table.name] ?? table.name;

/** A heading: name and unit, with the power of ten of the cells. */
export function headOf(column) {
  const unit = unitOfColumn(column);
  return [column.name.replaceAll("_", " "), unit ? aside(unit) : null];
}

/** The order of words; numbers in them count as numbers. */
const compareWords = new Intl.Collator(undefined, { numeric: true }).compare;

/** Columns by which the rows can be searched. */
const SEARCHED = /^(node|element|material)\d*$|^(member|elements|from|to)$/;

/** Whether a cell is a wanted number, or a list of words that has it: "11 to 16", "3 8 9". */
function hasNumber(cell, wanted) {
  const text = String(cell);
  if (text === wanted) return true;
  if (typeof cell !== "string") return false;
  const run = text.match(/^(\d+) to (\d+)$/);
  if (run && Number(wanted) > Number(run[1]) && Number(wanted) < Number(run[2])) return true;
  return text.split(" ").includes(wanted);
}

/** Places of the rows in the order of a column; empty cells at the end. */
export function sortedRows(column, rows, descending) {
  const order = Uint32Array.from({ length: rows }, (_, i) => i);
  const sign = descending ? -1 : 1;
  if (column.words)
    return order.sort(
      (a, b) => sign * compareWords(String(column.cell(a)), String(column.cell(b))) || a - b,
    );
  const values = Float64Array.from({ length: rows }, (_, i) => column.cell(i) ?? NaN);
  return order.sort((a, b) => {
    if (Number.isNaN(values[a]) || Number.isNaN(values[b]))
      return Number.isNaN(values[a]) - Number.isNaN(values[b]) || a - b;
    return sign * (values[a] - values[b]) || a - b;
  });
}

export class TableView {
  /**
   * onrow(kind, number) is called with "node" or "element" and the number in a clicked row, or with "beam" and
   * the number that beamOf(row) of a table gives; first: the name of the table that is open at first; files: the beginning of the names
   * of saved files.
   */
  constructor(tables, onrow, first = "reactions", files = []) {
    this.tables = tables;
    this.onrow = onrow;
    this.files = files;
    this.tabs = h(
      "div",
      { class: "tabs", role: "tablist", "aria-label": "tables" },
      tables.map((table) =>
        h(
          "button",
          {
            role: "tab",
            "data-table": table.name,
            "aria-controls": "rows",
            onclick: () => this.open(table),
          },
          titleOf(table),
          aside(String(table.rows)),
        ),
      ),
    );
    this.search = h("input", {
      type: "search",
      placeholder: "number",
      "aria-label": "number of a node or element",
    });
    this.search.addEventListener("input", () => this.arrange());
    this.head = h("thead");
    this.body = h("tbody");
    this.grid = h("table", { role: "grid", tabindex: 0 }, this.head, this.body);
    this.scroller = h("div", { class: "rows", id: "rows", role: "tabpanel" }, this.grid);
    this.scroller.addEventListener("scroll", () => this.drawRows());
    listenInRows(this, this.grid, ROW);
    listenInTabs(this.tabs);
    this.element = h(
      "div",
      { class: "tables" },
      h(
        "div",
        { class: "tablebar" },
        this.tabs,
        h(
          "div",
          { class: "tabletools" },
          this.search,
          h(
            "button",
            {
              "data-action": "save-csv",
              title: "all rows and digits",
              onclick: () => this.saveCsv(),
            },
            "Save CSV",
          ),
        ),
      ),
      this.scroller,
    );
    this.open(tables.find((table) => table.name === first) ?? tables[0]);
  }

  open(table) {
    this.table = table;
    this.sortedBy = null;
    this.descending = false;
    this.search.value = "";
    for (const tab of this.tabs.children) {
      const isOpen = tab.dataset.table === table.name;
      tab.setAttribute("aria-selected", isOpen);
      tab.tabIndex = isOpen ? 0 : -1;
    }
    this.grid.setAttribute("aria-label", `${titleOf(table)}, Enter selects the element of a row`);
    this.scroller.setAttribute("aria-label", titleOf(table));
    this.scroller.scrollTop = 0;
    this.arrange();
  }

  sortBy(column) {
    this.descending = this.sortedBy === column && !this.descending;
    this.sortedBy = column;
    const isByKey = this.head.contains(document.activeElement);
    this.arrange();
    if (isByKey) this.head.querySelectorAll("button")[this.table.columns.indexOf(column)].focus();
  }

  /** Marks a row, by its place in the order, and scrolls to it: the row that keys act on. */
  activate(place) {
    this.active = place;
    const top = place * ROW,
      seen = this.scroller.clientHeight - this.head.offsetHeight - ROW;
    if (top < this.scroller.scrollTop) this.scroller.scrollTop = top;
    else if (top > this.scroller.scrollTop + seen) this.scroller.scrollTop = top - seen;
    this.drawRows();
  }

  /** Puts the rows into their order and draws. */
  arrange() {
    this.active = -1;
    const { table } = this;
    const columns = table.columns;
    this.order = this.sortedBy
      ? sortedRows(this.sortedBy, table.rows, this.descending)
      : Uint32Array.from({ length: table.rows }, (_, i) => i);
    const wanted = this.search.value.trim();
    if (wanted) {
      const keys = columns.filter((column) => SEARCHED.test(column.name));
      this.order = this.order.filter((row) =>
        keys.some((column) => hasNumber(column.cell(row), wanted)),
      );
    }
    const mark = (column) =>
      column !== this.sortedBy ? null : this.descending ? " \u25be" : " \u25b4";
    const sorting = (column) =>
      column !== this.sortedBy ? null : this.descending ? "descending" : "ascending";
    this.head.replaceChildren(
      h(
        "tr",
        {},
        columns.map((column) =>
          h(
            "th",
            {
              onclick: () => this.sortBy(column),
              class: column.words ? "word" : "",
              "aria-sort": sorting(column),
            },
            h("button", { class: "sort" }, headOf(column), mark(column)),
          ),
        ),
      ),
    );
    this.drawRows();
  }

  drawRows() {
    const height = this.scroller.clientHeight || 400;
    const first = Math.max(0, Math.floor(this.scroller.scrollTop / ROW) - SPARE);
    const last = Math.min(this.order.length, first + Math.ceil(height / ROW) + 2 * SPARE);
    const space = (rows) =>
      h("tr", { class: "space", "aria-hidden": "true", style: `height:${rows * ROW}px` });
    const rows = [];
    for (let i = first; i < last; ++i) rows.push(this.row(this.order[i], i));
    this.grid.setAttribute("aria-rowcount", this.order.length + 1);
    if (this.active >= first && this.active < last)
      this.grid.setAttribute("aria-activedescendant", `row-${this.active}`);
    else this.grid.removeAttribute("aria-activedescendant");
    this.body.replaceChildren(space(first), ...rows, space(this.order.length - last));
  }

  row(row, place) {
    const attributes = {
      id: `row-${place}`,
      "aria-rowindex": place + 2,
      class: place === this.active ? "active" : "",
      onclick: () => this.choose(row),
    };
    return h("tr", attributes, cellsOf(this.table, row));
  }

  choose(row) {
    if (this.table.beamOf) return this.onrow("beam", this.table.beamOf(row));
    const key = this.table.columns.find(({ name }) => name === "element" || name === "node");
    return key && this.onrow(key.name, key.cell(row));
  }

  /** The text of the file of a table. */
  csvOf(table) {
    return csvOf(table);
  }

  /** Saves the open table, all its rows in their own order. */
  saveCsv() {
    const { table } = this;
    save(fileName(...this.files, table.name, "csv"), csvParts(table), "text/csv");
  }
}

/** The cells of a row. */
export function cellsOf(table, row) {
  return table.columns.map((column) => {
    const text = cellText(column, row);
    if (column.words)
      return h("td", { class: "word", title: text.length > 24 ? text : null }, text);
    const full = column.isInteger ? text : shortest(column.cell(row) ?? NaN);
    return h("td", { title: full === text ? null : full }, text);
  });
}
