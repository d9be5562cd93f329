// A table as the text of a CSV file: the one that the command line writes, with units in its head and
// numbers in full.

import { shortest } from "./numbers.js";

const ROWS_AT_ONCE = 1000;

/** In quotes where the text has characters that separate cells (RFC 4180). */
const quoted = (text) => (/[,"\r\n]/.test(text) ? `"${text.replaceAll('"', '""')}"` : text);

function fullText(column, row) {
  const cell = column.cell(row);
  if (cell === null) return "";
  return column.words ? quoted(cell) : shortest(cell);
}

/** The pieces of the file, in order. */
export function csvParts(table) {
  const line = (cells) => `${cells.join(",")}\n`;
  const head = table.columns.map(({ name, unit }) => quoted(unit ? `${name} [${unit}]` : name));
  const parts = [line(head)];
  for (let first = 0; first < table.rows; first += ROWS_AT_ONCE) {
    const rows = Math.min(ROWS_AT_ONCE, table.rows - first);
    parts.push(
      Array.from({ length: rows }, (_, i) =>
        line(table.columns.map((column) => fullText(column, first + i))),
      ).join(""),
    );
  }
  return parts;
}

export const csvOf = (table) => csvParts(table).join("");
