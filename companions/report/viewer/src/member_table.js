// The table of members: nodes, beams, length and material, and the extremes of every quantity with
// their places.

import { Column, Table } from "./data.js";
import { firstExtremes } from "./member_results.js";

/** A column of words that are made when they are first needed. */
function columnOfTexts(name, make) {
  const words = [];
  const values = () => {
    words.push(...make());
    return Int32Array.from(words.keys());
  };
  return new Column(name, "", values, words);
}

/**
 * The members of MemberResults as a table, with "Mz min" and its place "Mz min at", of an envelope the
 * combination that governs "Mz min by", and the same for the largest values. beamOf(row): the number
 * of the beam of a member that bends most.
 */
function memberTable(results) {
  const { members, model, report } = results;
  const all = Array.from({ length: members.count }, (_, m) => m);
  const numbers = (name, of) => new Column(name, "", () => Int32Array.from(all, of));
  const materials = report.table("elements").column("material");
  const table = new Table("members", members.count, [
    columnOfTexts("member", () => members.names),
    columnOfTexts("elements", () => all.map((m) => members.elementsText(m))),
    numbers("from", (m) => model.nodeNumbers[members.endNode(m, 0)]),
    numbers("to", (m) => model.nodeNumbers[members.endNode(m, 1)]),
    new Column("length", model.units.length, () => members.lengths),
    numbers("material", (m) => materials.values[model.beams[members.beamsOf(m)[0]]]),
    ...results.quantities.flatMap((quantity) => columnsOf(results, quantity)),
  ]);
  table.beamOf = (row) => model.elements.numbers[results.mostBentOf(row)];
  return table;
}

/** The tables of a report with that of the members, which is in front of the diagrams of their beams. */
export function withMembers(tables, results) {
  const place = tables.findIndex(({ name }) => name === "beam_diagrams");
  return place < 0
    ? tables
    : [...tables.slice(0, place), memberTable(results), ...tables.slice(place)];
}

/** The points with the extremes of a quantity in every member: two arrays by member. */
function extremePoints(results, quantity) {
  const { curves } = quantity;
  const { count } = results.members;
  const [low, high] = [curves[0].values, curves[curves.length - 1].values];
  const tie = results.tieOf(quantity);
  const least = new Int32Array(count),
    most = new Int32Array(count);
  for (let m = 0; m < count; ++m) {
    const rows = results.pointsOf(m);
    least[m] = rows[firstExtremes(rows, low, tie).minAt];
    most[m] = rows[firstExtremes(rows, high, tie).maxAt];
  }
  return { least, most };
}

function columnsOf(results, quantity) {
  const { curves, unit } = quantity;
  const name = quantity.name.replace("\u2032", "'");
  let points = null;
  const found = (which) => (points ??= extremePoints(results, quantity))[which];
  const columns = (which, key, curve) => [
    new Column(`${name} ${key}`, unit, () =>
      Float64Array.from(found(which), (point) => curve.values[point]),
    ),
    new Column(`${name} ${key} at`, results.model.units.length, () =>
      Float64Array.from(found(which), (point) => results.distance(point)),
    ),
    ...(curve.by ? [governing(`${name} ${key} by`, () => found(which), curve.by)] : []),
  ];
  const least = columns("least", "min", curves[0]),
    most = columns("most", "max", curves[curves.length - 1]);
  for (const k of [0, 1]) [least[k].partner, most[k].partner] = [most[k], least[k]];
  return [...least, ...most];
}

/** The combinations that govern at some points. */
const governing = (name, points, by) =>
  new Column(name, "", () => Int32Array.from(points(), (point) => by.values[point]), by.words);
