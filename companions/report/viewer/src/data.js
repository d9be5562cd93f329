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

/** Powers of ten that are exact as numbers. */
const POWERS = Array.from({ length: 23 }, (_, power) => Number(`1e${power}`));

/**
 * The number of six digits that is stored as a number of 32 bits. Whole digits and powers up to 22 are
 * exact, so that one division or product gives the nearest number of 64 bits.
 */
function sixDigits(stored) {
  if (stored === 0 || Number.isNaN(stored)) return stored;
  const places = 5 - Math.floor(Math.log10(Math.abs(stored)));
  if (Math.abs(places) > 22) return Number(stored.toPrecision(6));
  return places >= 0
    ? Math.round(stored * POWERS[places]) / POWERS[places]
    : Math.round(stored / POWERS[-places]) * POWERS[-places];
}

/** The values of a column: those of 32 bits are written with at most six digits, which come back. */
function unpackColumn(packed) {
  const values = unpack(packed);
  return packed.type === "f4" ? Float64Array.from(values, sixDigits) : values;
}

export class Column {
  /**
   * make(): the values. words: those of a column of words, whose values are places in them. A column
   * with a `partner` is written with the same decimals.
   */
  constructor(name, unit, make, words = null) {
    Object.assign(this, { name, unit, make, words });
  }

  static unpacked(packed) {
    return new Column(packed.name, packed.unit, () => unpackColumn(packed), packed.words ?? null);
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

/**
 * The diagrams of beams with the places of their points, which the data block leaves out: points at equal
 * distances from end 1 to end 2.
 */
function withPlaces(diagrams, tables, points) {
  const named = (name) => tables.find((table) => table.name === name);
  const [nodes, elements] = [named("nodes"), named("elements")];
  const rows = new Map(Array.from(nodes.column("node").values, (node, row) => [node, row]));
  const kinds = elements.column("kind");
  const places = (name) => () => {
    const x = nodes.column(name).values;
    const [first, second] = ["node1", "node2"].map((key) => elements.column(key).values);
    const values = new Float64Array(diagrams.rows);
    for (let e = 0, row = 0; e < elements.rows; ++e) {
      if (kinds.cell(e) !== "beam") continue;
      const [a, b] = [x[rows.get(first[e])], x[rows.get(second[e])]];
      for (let i = 0; i < points; ++i) values[row++] = a + (i / (points - 1)) * (b - a);
    }
    return values;
  };
  const axes = nodes.columns.filter(({ name }) => /^[xyz]$/.test(name));
  const added = axes.map(({ name, unit }) => new Column(name, unit, places(name)));
  const [element, point, ...values] = diagrams.columns;
  const hidden = [...diagrams.byName.values()].filter((one) => !diagrams.columns.includes(one));
  return new Table(diagrams.name, diagrams.rows, [element, point, ...added, ...values], hidden);
}

/** Gives a report its tables. */
export function withTables(report, packed) {
  const points = report.model.beamDivisions + 1;
  const tables = packed.map((table) =>
    table.name === "beam_diagrams" ? withPlaces(table, packed, points) : table,
  );
  const table = (name) => tables.find((one) => one.name === name) ?? null;
  return { ...report, tables, table, hasResults: table("displacements") !== null };
}

/** Reads the report of a run from the data block of the page. */
export function readReport(data) {
  return withTables({ ...data, loads: unpackLoads(data.loads) }, data.tables.map(Table.unpacked));
}
