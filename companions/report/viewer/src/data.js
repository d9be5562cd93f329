// The data of the report: tables by columns, each decoded when it is first needed.

const TYPES = { i4: Int32Array, f4: Float32Array, f8: Float64Array };
export const EMPTY = -2147483648;

/** The typed array of {"type", "data": base64}. */
export function unpack({ type, data }) {
  const text = atob(data);
  const bytes = new Uint8Array(text.length);
  for (let i = 0; i < text.length; ++i) bytes[i] = text.charCodeAt(i);
  return new TYPES[type](bytes.buffer);
}

class Column {
  constructor(packed) {
    this.name = packed.name;
    this.unit = packed.unit;
    this.words = packed.words ?? null;
    this.packed = packed;
  }

  get values() {
    if (!this.unpacked) {
      this.unpacked = unpack(this.packed);
      this.packed = null;
    }
    return this.unpacked;
  }

  /** The cell of a row as a number, a word, or null. */
  cell(row) {
    const value = this.values[row];
    if (value === EMPTY || Number.isNaN(value)) return null;
    return this.words ? this.words[value] : value;
  }

  get isInteger() {
    return this.values instanceof Int32Array && !this.words;
  }
}

class Table {
  constructor({ name, rows, columns }) {
    this.name = name;
    this.rows = rows;
    this.columns = columns.map((column) => new Column(column));
    this.byName = new Map(this.columns.map((column) => [column.name, column]));
  }

  column(name) {
    return this.byName.get(name) ?? null;
  }
}

/** Reads the data block of the page. */
export function readReport(text) {
  const report = JSON.parse(text);
  report.tables = report.tables.map((table) => new Table(table));
  report.table = (name) => report.tables.find((table) => table.name === name) ?? null;
  return report;
}
