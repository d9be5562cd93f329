// Tables on paper: those with many columns in pieces that fit the width, each with the numbers of
// its rows.

import { Table } from "./data.js";
import { h } from "./dom.js";
import { cellsOf, headOf, titleOf } from "./tables.js";

const WIDTH = 100; // characters in a line of a page, at the size of print.css
const GAP = 2; // characters between columns

const isKey = ({ name }) => /^(node|element|material|mesh|point|end|x)$/.test(name);

function widthOf(table, column) {
  const texts = headOf(column).map((part) => part?.textContent ?? part ?? "");
  let width = texts.join("").length;
  for (let row = 0; row < table.rows; ++row)
    width = Math.max(width, cellsOf({ columns: [column] }, row)[0].textContent.length);
  return width + GAP;
}

const isBare = (table, column) =>
  !isKey(column) &&
  Array.from({ length: table.rows }, (_, row) => column.cell(row)).every((cell) => !cell);

/** The table without its columns of nothing but 0 and empty cells, and a line that names these. */
function withoutBareColumns(table) {
  const bare = table.columns.filter((column) => isBare(table, column));
  const rest = table.columns.filter((column) => !bare.includes(column));
  if (bare.length === 0 || rest.every(isKey)) return [table, null];
  const names = bare.map(({ name }) => name.replaceAll("_", " ")).join(", ");
  return [new Table(table.name, table.rows, rest), `0 or empty in all rows: ${names}.`];
}

/** The table, or pieces of it with its first columns repeated. */
export function piecesOf(table) {
  const keys = table.columns.slice(0, 2).filter(isKey);
  const rest = table.columns.slice(keys.length);
  const widths = new Map(table.columns.map((column) => [column, widthOf(table, column)]));
  const widthOfAll = (columns) => columns.reduce((sum, column) => sum + widths.get(column), 0);
  const room = WIDTH - widthOfAll(keys),
    needed = widthOfAll(rest);
  const cut = (limit) => {
    const found = [];
    let used = Infinity;
    for (const column of rest) {
      if (used + widths.get(column) > limit) {
        found.push([]);
        used = 0;
      }
      found[found.length - 1].push(column);
      used += widths.get(column);
    }
    return found;
  };
  const least = cut(room);
  if (least.length < 2) return [table];
  const even = cut(Math.min(room, needed / least.length + Math.max(...widths.values()) / 2));
  const pieces = even.length > least.length ? least : even;
  return pieces.map((columns) => new Table(table.name, table.rows, [...keys, ...columns]));
}

function printedPiece(table, title) {
  const cell = (column) => h("th", { class: column.words ? "word" : "" }, headOf(column));
  return h(
    "table",
    { class: "printed" },
    h("caption", {}, title),
    h("thead", {}, h("tr", {}, table.columns.map(cell))),
    h(
      "tbody",
      {},
      Array.from({ length: table.rows }, (_, row) => h("tr", {}, cellsOf(table, row))),
    ),
  );
}

function printedTable(table) {
  const [rest, note] = withoutBareColumns(table);
  const title = titleOf(table);
  return [
    ...piecesOf(rest).map((piece, i) => printedPiece(piece, i ? `${title}, continued` : title)),
    note ? h("p", { class: "note" }, note) : null,
  ];
}

/** All tables with at most `most` rows; of the others only a note. */
export function printedTables(tables, most) {
  const short = tables.filter((table) => table.rows <= most),
    long = tables.filter((table) => table.rows > most);
  const listed = long.map((table) => `${titleOf(table)} (${table.rows})`).join(", ");
  return h(
    "section",
    {},
    short.flatMap(printedTable),
    long.length
      ? h("p", {}, `Tables with more than ${most} rows are not printed: ${listed}.`)
      : null,
  );
}
