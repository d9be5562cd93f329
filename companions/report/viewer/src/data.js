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

export class Column {
  /** make(): the values. words: those of a column of words, whose values are places in them. */
  constructor(name, unit, make, words = null) {
    Object.assign(this, { name, unit, make, words });
  }

  static unpacked(packed) {
    return new Column(packed.name, packed.unit, () => unpack(packed), packed.words ?? null);
  }

  get values() {
    if (this.make) {
      this.made = this.make();
      this.make = null;
    }
    return this.made;
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

export class Table {
  /** hidden: further columns, which are found by their names only. */
  constructor(name, rows, columns, hidden = []) {
    Object.assign(this, { name, rows, columns });
    this.byName = new Map([...columns, ...hidden].map((column) => [column.name, column]));
  }

  static unpacked({ name, rows, columns }) {
    return new Table(name, rows, columns.map(Column.unpacked));
  }

  column(name) {
    return this.byName.get(name) ?? null;
  }
}

export const unpackLoads = ({ surfaces, beams, q }) => ({
  surfaces: unpack(surfaces),
  beams: unpack(beams),
  q: unpack(q),
});

/** Gives a report its tables. */
export function withTables(report, tables) {
  const table = (name) => tables.find((one) => one.name === name) ?? null;
  return { ...report, tables, table, hasResults: table("displacements") !== null };
}

/** Reads the report of a run from the data block of the page. */
export function readReport(data) {
  return withTables({ ...data, loads: unpackLoads(data.loads) }, data.tables.map(Table.unpacked));
}
