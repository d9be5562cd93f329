// Members, nodes and tables of the reports: beside theory, and beside the files of morlen-export.

import assert from "node:assert/strict";
import { copyFileSync, existsSync, mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { Members } from "../../../companions/report/viewer/src/members.js";
import {
  shortest,
  significant,
  styleOf,
  styled,
  styledTogether,
} from "../../../companions/report/viewer/src/numbers.js";
import {
  CASES,
  EXAMPLES,
  EXPORT,
  REPORT,
  SIZE,
  browser,
  exampleReport,
  exported,
  folder,
  picture,
  reportOf,
  run,
} from "./context.mjs";
import { assertNear } from "./helpers.mjs";

/** Where only panels and tables are read: few pixels to draw. */
const SMALL = { width: 700, height: 420 };

/**
 * A model by hand: nodes as [x, y, z], beams as [first node, second node, {material, hinge, y}], numbered from 1.
 * The local axis y' is global Y where none is given.
 */
function modelOf(nodes, beams, held = []) {
  const model = {
    nodeCount: nodes.length,
    nodeNumbers: nodes.map((_, i) => i + 1),
    xyz: Float64Array.from(nodes.flat()),
    beams: beams.map((_, b) => b),
    elements: { numbers: beams.map((_, b) => b + 1) },
    axes: Float32Array.from(beams.flatMap(([, , { y = [0, 1, 0] } = {}]) => y)),
    node: (element, i) => beams[element][i] - 1,
  };
  const of = (name, without) => (element) => beams[element][2]?.[name] ?? without;
  return new Members(model, {
    hinges: of("hinge", 11),
    section: of("material", 1),
    isHeld: (node) => held.includes(node + 1),
  });
}

/** The numbers of the beams of every member. */
const groups = (members) =>
  Array.from(members.lengths, (_, m) => Array.from(members.beamsOf(m), (b) => b + 1));

const LINE = [0, 1, 2, 3].map((x) => [x, 0, 0]);
const tilted = (degrees) => {
  const angle = (degrees * Math.PI) / 180;
  return [
    [0, 0, 0],
    [1, 0, 0],
    [1 + Math.cos(angle), 0, Math.sin(angle)],
  ];
};
const turned = (degrees) => [
  0,
  Math.cos((degrees * Math.PI) / 180),
  Math.sin((degrees * Math.PI) / 180),
];
const POLYGON = (corners) =>
  Array.from({ length: corners }, (_, i) => {
    const angle = (2 * Math.PI * i) / corners;
    return [Math.cos(angle), 0, Math.sin(angle)];
  });
const around = (corners) =>
  Array.from({ length: corners }, (_, i) => [i + 1, ((i + 1) % corners) + 1]);

test("members end at supports, hinges, other materials and directions, and nowhere else", () => {
  const three = (...others) => [
    [1, 2, others[0]],
    [2, 3, others[1]],
    [3, 4, others[2]],
  ];
  const cases = [
    ["one beam", LINE.slice(0, 2), [[1, 2]], [], [[1]]],
    ["a line", LINE, three(), [], [[1, 2, 3]]],
    [
      "a line in another order",
      LINE,
      [
        [3, 4],
        [1, 2],
        [2, 3],
      ],
      [],
      [[2, 3, 1]],
    ],
    ["supports at the ends only", LINE, three(), [1, 4], [[1, 2, 3]]],
    ["a support inside", LINE, three(), [2], [[1], [2, 3]]],
    ["a hinge at an end 2", LINE, three({ hinge: 10 }), [], [[1], [2, 3]]],
    ["a hinge at an end 1", LINE, three({}, {}, { hinge: 1 }), [], [[1, 2], [3]]],
    ["hinges at the outer ends", LINE, three({ hinge: 1 }, {}, { hinge: 10 }), [], [[1, 2, 3]]],
    ["a bar of a truss", LINE, three({}, { hinge: 0 }, {}), [], [[1], [2], [3]]],
    ["another material", LINE, three({}, { material: 2 }, { material: 2 }), [], [[1], [2, 3]]],
    [
      "a corner of 0.09 degrees",
      tilted(0.09),
      [
        [1, 2],
        [2, 3],
      ],
      [],
      [[1, 2]],
    ],
    [
      "a corner of 0.11 degrees",
      tilted(0.11),
      [
        [1, 2],
        [2, 3],
      ],
      [],
      [[1], [2]],
    ],
    [
      "a corner of 90 degrees",
      tilted(90),
      [
        [1, 2],
        [2, 3],
      ],
      [],
      [[1], [2]],
    ],
    ["axes turned by 0.09 degrees", LINE, three({}, { y: turned(0.09) }), [], [[1, 2, 3]]],
    ["axes turned by 0.11 degrees", LINE, three({}, {}, { y: turned(0.11) }), [], [[1, 2], [3]]],
    ["axes turned by 180 degrees", LINE, three({}, {}, { y: turned(180) }), [], [[1, 2], [3]]],
    [
      "a beam that runs the other way",
      LINE,
      [
        [1, 2],
        [3, 2],
        [3, 4],
      ],
      [],
      [[1], [2], [3]],
    ],
    ["a beam that frames in", [...LINE, [1, 1, 0]], [...three(), [2, 5]], [], [[1], [2, 3], [4]]],
    ["a doubled beam", LINE, [...three(), [2, 3]], [], [[1], [2], [3], [4]]],
    ["a beam over two others", LINE, [...three(), [2, 4]], [], [[1], [2, 3], [4]]],
    [
      "there and back",
      LINE,
      [
        [1, 2],
        [2, 1],
      ],
      [],
      [[1], [2]],
    ],
    ["a triangle", POLYGON(3), around(3), [], [[1], [2], [3]]],
    ["a fine ring", POLYGON(4000), around(4000), [], [around(4000).map((_, i) => i + 1)]],
    [
      "a fine ring with a support",
      POLYGON(4000),
      around(4000),
      [1],
      [around(4000).map((_, i) => i + 1)],
    ],
    ["no beams", LINE, [], [], []],
  ];
  for (const [name, nodes, beams, held, expected] of cases)
    assert.deepEqual(groups(modelOf(nodes, beams, held)), expected, name);
});

test("a member tells its length, its name, where its beams lie, and why it ends", () => {
  const members = modelOf(
    [...LINE, [3, 0, 1]],
    [
      [1, 2],
      [2, 3],
      [3, 4],
      [4, 5],
    ],
    [1],
  );
  assert.deepEqual(members.names, ["1 to 4", "4 to 5"]);
  assert.deepEqual(Array.from(members.lengths), [3, 1]);
  assert.deepEqual(Array.from(members.offset), [0, 1, 2, 0]);
  assert.deepEqual(
    [0, 1].map((i) => members.whyEnds(0, i)),
    ["support", "beam 4 has another direction"],
  );
  assert.deepEqual(
    [0, 1].map((i) => members.whyEnds(1, i)),
    ["beam 3 has another direction", ""],
  );
  assert.deepEqual(
    [0, 1].map((m) => members.elementsText(m)),
    ["1 to 3", "4"],
  );
  const why = (beams) => modelOf(LINE, beams).whyEnds(0, 1);
  assert.equal(
    why([
      [1, 2],
      [3, 2],
    ]),
    "beam 2 runs the other way",
  );
  assert.equal(
    why([
      [1, 2],
      [2, 3, { material: 2 }],
    ]),
    "beam 2 has another material",
  );
  assert.equal(
    why([
      [1, 2],
      [2, 3, { hinge: 1 }],
    ]),
    "hinge",
  );
  assert.equal(
    why([
      [1, 2],
      [2, 3, { y: turned(90) }],
    ]),
    "beam 2 has other local axes",
  );
  assert.equal(
    why([
      [1, 2],
      [2, 1],
    ]),
    "beam 2 lies on the same line",
  );
  assert.equal(
    why([
      [1, 2],
      [2, 3],
      [2, 4],
    ]),
    "2 other beams",
  );
  const ring = modelOf(POLYGON(4000), around(4000));
  assert.ok(ring.isRing(0));
  // 2 n sin(pi / n) of a polygon in the unit circle; all numbers have 16 digits.
  assertNear(ring.lengths[0], 8000 * Math.sin(Math.PI / 4000), 1e-12, "length of a ring");
  const doubled = modelOf(LINE, [
    [1, 2],
    [1, 2],
  ]);
  assert.deepEqual(doubled.names, ["1 to 2", "1 to 2 (2)"]);
});

test("materials of single elements count by their values", async () => {
  const items = ["", "E=1e6", "E=2e6", "E=2e6", "", "A=0.2"];
  const nodes = Array.from({ length: items.length + 1 }, (_, i) => i + 1);
  writeFileSync(
    join(folder, "own.dat"),
    [
      "problem type: 2d",
      "NumOfDivisions 2",
      "mesh dimension = 2 elemtype Linear nnode = 2",
      "coordinates",
      ...nodes.map((i) => `${i} ${i} 0`),
      "end coordinates",
      "elements",
      ...items.map((item, i) => `${i + 1} ${i + 1} ${i + 2} 1 ${item}`),
      "end elements",
      "materials",
      "1 E=1e6 A=0.1 Iz=0.01",
      "end materials",
      "constraints",
      "1 111 0 0 0",
      "end constraints",
      "nodal_point_loads",
      "7 0 -1 0",
      "end nodal_point_loads",
      "",
    ].join("\n"),
  );
  const page = await browser.open(reportOf("own.dat"), SMALL);
  await openTable(page, "members");
  const members = Object.values(await page.evaluate(MEMBER_TABLE));
  assert.deepEqual(
    members.map(({ elements }) => elements),
    ["1 2", "3 4", "5", "6"],
  );
  await page.close();
});

test("numbers: the same decimals in a column, all digits in files", () => {
  const column = (values) => {
    const style = styleOf(values);
    return values.map((value) => styled(value, style));
  };
  assert.deepEqual(column([12.34567, -0.000123, 0]), ["12.346", "0.000", "0.000"]);
  assert.deepEqual(column([5, -60, 2.5]), ["5.0", "-60.0", "2.5"]);
  assert.deepEqual(column([0.001234567, -0.01]), ["0.001235", "-0.010000"]);
  // From 100000 and below 0.00001 with a common power of ten, a multiple of three.
  const ten = (power) => `\u00d710${power}`;
  const [million, thousand, millionth] = ["\u2076", "\u00b3", "\u207b\u2076"].map(ten);
  assert.deepEqual(column([2.1e8, 3.25e7]), [`210.0${million}`, `32.5${million}`]);
  assert.deepEqual(column([-1234567, 0, 45678]), [`-1.2346${million}`, "0", "45678"]);
  assert.deepEqual(column([123456, 7]), [`123.46${thousand}`, "7"]);
  assert.deepEqual(column([99999.7]), ["100000"]);
  assert.deepEqual(column([98765.4, 7.04]), ["98765", "7"]);
  assert.deepEqual(column([3.25e-6, -4e-7]), [`3.25${millionth}`, `-0.40${millionth}`]);
  assert.deepEqual(column([0, 0]), ["0", "0"]);
  // Four digits of the largest, or five where a value of a thousandth of it or more needs them.
  const short = (values) => styledTogether(values, 4);
  assert.deepEqual(short([0.012342, 0.000353, -0.000151]), ["0.012342", "0.000353", "-0.000151"]);
  assert.deepEqual(short([98.7654, 0.99123]), ["98.765", "0.991"]);
  assert.deepEqual(short([98.7654, 0.099123]), ["98.765", "0.099"]);
  assert.deepEqual(short([98.7654, 0.0087654]), ["98.77", "0.01"]);
  assert.deepEqual(short([-0.030672, -0.000153]), ["-0.030672", "-0.000153"]);
  assert.deepEqual(short([98.7654, 12.3456]), ["98.77", "12.35"]);
  assert.equal(significant(12.3456), "12.35");
  assert.equal(significant(-60), "-60.00");
  assert.equal(significant(9999.7), "10000");
  assert.equal(significant(2.1e11), `210.0${ten("\u2079")}`);
  assert.equal(significant(-1234567), `-1.235${million}`);
  assert.equal(significant(99999), `100.0${thousand}`);
  assert.equal(significant(4e-7), `400.0${ten("\u207b\u2079")}`);
  const texts = {
    0.1: 0.1,
    "1e-04": 0.0001,
    0.00123: 0.00123,
    "1e+05": 1e5,
    123456: 123456,
    10000: 1e4,
    "2.1e+08": 2.1e8,
    "-1.5": -1.5,
    "1e-300": 1e-300,
    "-0": -0,
    0: 0,
    "1.2345e-05": 1.2345e-5,
    0.30000000000000004: 0.1 + 0.2,
    123456789012: 123456789012,
  };
  for (const [text, value] of Object.entries(texts)) assert.equal(shortest(value), text);
});

/**
 * Two girders of six beams of 2 m under 10 kN/m, over one span of 12 m and over two of 6 m; the nodes of both
 * belong to slabs that are too soft to carry anything.
 */
function girders() {
  const rows = [];
  const girder = [0, 1, 2, 3, 4, 5, 6];
  const spans = [0, 1];
  const node = (span, i, side) => 14 * span + 7 * side + i + 1;
  rows.push("problem type: 3d", "units_names", " S kN m kPa 1000 1", "end units_names");
  rows.push("units_mesh m", "units_mat_and_load S", "units_res S", "NumOfDivisions 8");
  rows.push("mesh dimension = 3 elemtype Linear nnode = 2", "coordinates");
  for (const span of spans)
    for (const side of [0, 1])
      for (const i of girder)
        rows.push(`${node(span, i, side)} ${2 * i} ${10 * span + 2 * side} 0`);
  rows.push("end coordinates", "elements");
  for (const span of spans)
    for (const i of girder.slice(0, 6))
      rows.push(`${6 * span + i + 1} ${node(span, i, 0)} ${node(span, i + 1, 0)} 1`);
  rows.push("end elements", "mesh dimension = 3 elemtype Triangle nnode = 3");
  rows.push("coordinates", "end coordinates", "elements");
  let shell = 12;
  for (const span of spans)
    for (const i of girder.slice(0, 6)) {
      const [a, b, c, d] = [
        [i, 0],
        [i + 1, 0],
        [i + 1, 1],
        [i, 1],
      ].map((one) => node(span, ...one));
      rows.push(`${++shell} ${a} ${b} ${c} 2`, `${++shell} ${a} ${c} ${d} 2`);
    }
  rows.push("end elements", "materials", "1 E=2e8 G=8e7 widthY=0.2 widthZ=0.4");
  rows.push("2 E=0.01 nu=0.2 G=0.004 t=0.1", "end materials", "constraints");
  const zeros = "0 0 0 0 0 0";
  for (const span of spans) {
    rows.push(`${node(span, 0, 0)} 111100 ${zeros}`, `${node(span, 6, 0)} 011000 ${zeros}`);
    for (const i of girder) rows.push(`${node(span, i, 1)} 111111 ${zeros}`);
  }
  rows.push(`${node(1, 3, 0)} 001000 ${zeros}`, "end constraints", "global_pressure_loads");
  for (let beam = 1; beam <= 12; ++beam) rows.push(`${beam} 0 0 -10`);
  rows.push("end global_pressure_loads", "");
  writeFileSync(join(folder, "girders.dat"), rows.join("\n"));
  return reportOf("girders.dat");
}

/** The table of members by their names: {name: {column: cell}}. */
const MEMBER_TABLE = `(() => {
  const { table } = morlenReport.tables, members = {};
  for (let row = 0; row < table.rows; ++row)
    members[table.column("member").cell(row)] = Object.fromEntries(
      table.columns.map((column) => [column.name, column.cell(row)]));
  return members;
})()`;

/** What a page would save of a table; null without it. */
const csvIn = (page, table) =>
  page.evaluate(`(() => {
    const { tables } = morlenReport;
    const found = tables.tables.find(({ name }) => name === ${JSON.stringify(table)});
    return found ? tables.csvOf(found) : null;
  })()`);

const HEADING = "document.querySelector('#panel h3')?.textContent ?? ''";
const openTable = (page, name) =>
  page.evaluate(`document.querySelector('[data-table=${name}]').click()`);

test("girders of six beams with a slab have the extremes and places of theory", async () => {
  const page = await browser.open(girders(), SIZE);
  await openTable(page, "members");
  const members = await page.evaluate(MEMBER_TABLE);
  assert.deepEqual(Object.keys(members), ["1 to 7", "15 to 18", "18 to 21"]);
  const [q, E, I] = [10, 2e8, (0.2 * 0.4 ** 3) / 12];
  // Local z' looks up: My is negative where the fibres below are in tension, loads act along -z'.
  const simple = members["1 to 7"];
  assert.equal(simple.elements, "1 to 6");
  const near = (member, name, value, place) => {
    // Results have six digits, the slab carries less than 1e-6.
    assertNear(Math.abs(member[name]), value, 2e-5, name);
    assertNear(member[`${name} at`], place, 1e-9, `place of ${name}`);
  };
  const sizes = ["My min", "My max"].map((name) => Math.abs(simple[name]));
  near(simple, sizes[0] > sizes[1] ? "My min" : "My max", (q * 12 ** 2) / 8, 6);
  for (const name of ["Vz min", "Vz max"])
    assertNear(Math.abs(simple[name]), (q * 12) / 2, 2e-5, name);
  near(simple, "uz' min", (5 * q * 12 ** 4) / (384 * E * I), 6);
  // Two spans: -q L^2 / 8 over the support in the middle, 9 q L^2 / 128 at 3 L / 8 from the outer one.
  const left = members["15 to 18"],
    right = members["18 to 21"];
  const signs = Math.sign(left["My max"] + left["My min"]);
  const [hogging, sagging] = signs > 0 ? ["My max", "My min"] : ["My min", "My max"];
  near(left, hogging, (q * 6 ** 2) / 8, 6);
  near(left, sagging, (9 * q * 6 ** 2) / 128, 2.25);
  near(right, hogging, (q * 6 ** 2) / 8, 0);
  near(right, sagging, (9 * q * 6 ** 2) / 128, 3.75);
  // The first choice is the member with the largest moment.
  assert.equal(await page.evaluate("morlenReport.results.mostBent() < 6"), true);
  await picture(page, "girders");
  assert.deepEqual(page.complaints, []);
  await page.close();
});

test("the diagrams of a member span its beams, and tell places", async () => {
  const page = await browser.open(join(folder, "girders.html"), SIZE);
  await page.evaluate("morlenReport.choose('beam', 3)");
  assert.equal(await page.evaluate(HEADING), "Member 1 to 7");
  const facts = await page.evaluate(
    "[...document.querySelectorAll('#panel .facts tr')].map((row) => [...row.children].map((c) => c.textContent.trim()))",
  );
  assert.deepEqual(facts, [
    ["From", "node 1 (support)"],
    ["To", "node 7 (support)"],
    ["Length", "12.00 m"],
    ["Material", "1"],
    ["Beams", "1 2 3 4 5 6"],
  ]);
  assert.equal(await page.evaluate("document.querySelector('#panel .chosen').textContent"), "3");
  const figure = `[...document.querySelectorAll("#panel figure")].find((one) => one.textContent.startsWith("Bending moment My"))`;
  const drawn = await page.evaluate(`(() => {
    const drawing = ${figure}.querySelector("svg"), at = (one, name) => Number(one.getAttribute(name));
    return { borders: [...drawing.querySelectorAll(".border")].map((one) => at(one, "x1")),
      own: ["x", "width"].map((name) => at(drawing.querySelector(".own"), name)) };
  })()`);
  // The drawing has 384 units between margins of 8.
  assert.deepEqual(drawn.borders, [72, 136, 200, 264, 328]);
  assert.deepEqual(drawn.own, [136, 64]);
  assert.match(await page.evaluate(`${figure}.textContent`), /180 kN\*m at 6\.00 m/);
  const readout = async (drawing, position) => {
    await page.evaluate(`(() => {
      const drawing = ${drawing}, box = drawing.getBoundingClientRect();
      const clientX = box.left + (box.width * (8 + 384 * ${position})) / 400;
      drawing.dispatchEvent(new PointerEvent("pointermove", { clientX, clientY: box.top + 5 }));
    })()`);
    return page.evaluate("document.querySelector('#panel .readout').textContent");
  };
  const text = await readout(`${figure}.querySelector("svg")`, 2.5 / 12);
  assert.match(text, /^at 2\.50 m \(beam 2, x\u2032 = 0\.50 m\)/);
  // q (L - x) x / 2 and q (L / 2 - x); five digits are shown.
  assertNear(Math.abs(Number(text.match(/My = (\S+) kN\*m/)[1])), (10 * 9.5 * 2.5) / 2, 1e-4, text);
  assertNear(Math.abs(Number(text.match(/Vz = (\S+) kN/)[1])), 35, 1e-4, text);
  await page.close();
});

test("jumps of forces at nodes keep both values", async () => {
  const page = await browser.open(exampleReport("stiffened_plate"), SMALL);
  const values = exported("stiffened_plate");
  const beams = [529, 530];
  const shears = values("beam_diagrams", "Vz").filter((_, i) =>
    beams.includes(values("beam_diagrams", "element")[i]),
  );
  assert.ok(Math.abs(shears[2] - shears[3]) > 1, `${shears}`);
  await page.evaluate("morlenReport.choose('beam', 529)");
  const at = async (position) => {
    await page.evaluate(`(() => {
      const drawing = document.querySelector("#panel .diagram"), box = drawing.getBoundingClientRect();
      const clientX = box.left + (box.width * (8 + 384 * ${position})) / 400;
      drawing.dispatchEvent(new PointerEvent("pointermove", { clientX, clientY: box.top + 5 }));
    })()`);
    const text = await page.evaluate("document.querySelector('#panel .readout').textContent");
    return Number(text.match(/Vz = (\S+) kN/)[1]);
  };
  // Eleven beams of one length: the first ends at 1 / 11. Readouts have three decimals.
  assertNear(await at(1 / 11 - 0.001), shears[2], 1e-3, "on the left");
  assertNear(await at(1 / 11 + 0.001), shears[3], 1e-3, "on the right");
  await page.close();
});

test("the table of members sorts, filters and chooses", async () => {
  const page = await browser.open(join(folder, "girders.html"), SMALL);
  await openTable(page, "members");
  const first =
    "[...document.querySelectorAll('.rows tbody tr:not(.space)')].map((row) => row.children[0].textContent)";
  const sort = (name) =>
    page.evaluate(
      `[...document.querySelectorAll(".rows th")].find((one) => one.textContent.startsWith(${JSON.stringify(name)})).click()`,
    );
  await sort("length");
  await sort("length");
  assert.equal((await page.evaluate(first))[0], "1 to 7");
  for (const [wanted, expected] of [
    ["9", ["15 to 18"]],
    ["18", ["15 to 18", "18 to 21"]],
    ["99", []],
  ]) {
    await page.evaluate(`(() => {
      const search = document.querySelector(".tables input");
      search.value = ${JSON.stringify(wanted)};
      search.dispatchEvent(new Event("input"));
    })()`);
    assert.deepEqual((await page.evaluate(first)).sort(), expected, wanted);
  }
  await openTable(page, "members");
  await page.evaluate("document.querySelectorAll('.rows tbody tr:not(.space)')[2].click()");
  assert.equal(await page.evaluate(HEADING), "Member 18 to 21");
  // The chosen beam is the one with the largest moment: at the support.
  assert.equal(await page.evaluate("morlenReport.selected"), 9);
  await page.close();
});

/** The place of a node, or of the middle of a beam, in the window. */
const placeInWindow = (expression) => `(() => {
  const { model, stage } = morlenReport, box = document.querySelector("canvas").getBoundingClientRect();
  const [x, y] = stage.project(${expression});
  return [x + box.left, y + box.top];
})()`;

test("a click near a node chooses it, and shows all about it", async () => {
  const page = await browser.open(exampleReport("portal_frame"), SIZE);
  await page.set("deformation", "0");
  const values = exported("portal_frame");
  const nodeAt = (number) => placeInWindow(`model.place(model.nodeAt.get(${number}))`);
  const [x, y] = await page.evaluate(nodeAt(2));
  await page.click(x + 3, y - 3);
  assert.equal(await page.evaluate(HEADING), "Node 2");
  const shown = async (name) =>
    Object.fromEntries(
      await page.evaluate(
        `[...document.querySelectorAll("#panel [data-values=${name}] tbody tr")].map((row) => [row.children[0].textContent, Number(row.children[1].textContent)])`,
      ),
    );
  const row = values("displacements", "node").indexOf(2);
  const moves = await shown("displacements");
  for (const name of ["ux", "uy"]) {
    // Five digits of the largest displacement.
    const tolerance = 1e-4 * Math.hypot(moves.ux, moves.uy);
    assert.ok(Math.abs(moves[name] - values("displacements", name)[row]) <= tolerance, name);
  }
  const panel = () => page.evaluate("document.querySelector('#panel').textContent");
  assert.match(await panel(), /LoadPx 20\.00/);
  assert.match(await panel(), /Elementsbeam 1, beam 2/);
  await page.evaluate(
    "[...document.querySelectorAll('#panel .link')].find((one) => one.textContent === 'beam 1').click()",
  );
  assert.match(await page.evaluate(HEADING), /^Member 1 to 2/);
  await page.evaluate(
    "[...document.querySelectorAll('#panel .link')].find((one) => one.textContent === 'node 1').click()",
  );
  assert.equal(await page.evaluate(HEADING), "Node 1");
  const reaction = await shown("reactions");
  const support = values("reactions", "node").indexOf(1);
  for (const name of ["Px", "Py", "M"])
    assertNear(reaction[name], values("reactions", name)[support], 1e-3, name);
  assert.match(await panel(), /Supportux, uy, rz held/);
  assert.equal(await page.evaluate("morlenReport.highlight.dot.visible"), true);
  // Away from the nodes the beam is chosen.
  const middle = placeInWindow("model.place(0).map((a, k) => (a + model.place(1)[k]) / 2)");
  await page.click(...(await page.evaluate(middle)));
  assert.match(await page.evaluate(HEADING), /^Member 1 to 2/);
  assert.equal(await page.evaluate("morlenReport.highlight.dot.visible"), false);
  await openTable(page, "displacements");
  await page.evaluate("document.querySelectorAll('.rows tbody tr:not(.space)')[3].click()");
  assert.equal(await page.evaluate(HEADING), "Node 4");
  assert.deepEqual(page.complaints, []);
  await page.close();
});

test("nodes of shells can be chosen, and small shells too", async () => {
  const page = await browser.open(exampleReport("slab_and_wall"), SIZE);
  await page.set("deformation", "0");
  await page.evaluate("document.querySelector('[data-look=top]').click()");
  const corner = await page.evaluate(
    "Array.from(morlenReport.model.nodeNumbers)[morlenReport.model.local.reduce((best, z, i) => (i % 3 === 2 && z >= morlenReport.model.local[3 * best + 2] ? (i - 2) / 3 : best), 0)]",
  );
  const [x, y] = await page.evaluate(
    placeInWindow(`(() => {
      const node = model.nodeAt.get(${corner}), e = Array.from(model.elements.kinds.keys()).find((one) => model.node(one, 0) === node || model.node(one, 1) === node || model.node(one, 2) === node);
      const middle = [0, 1, 2].map((k) => [0, 1, 2].reduce((sum, i) => sum + model.place(model.node(e, i))[k] / 3, 0));
      return model.place(node).map((a, k) => a + 0.05 * (middle[k] - a));
    })()`),
  );
  await page.click(x, y);
  assert.equal(await page.evaluate(HEADING), `Node ${corner}`);
  await page.evaluate(
    "morlenReport.stage.camera.zoom *= 0.02; morlenReport.stage.camera.updateProjectionMatrix()",
  );
  await page.click(
    ...(await page.evaluate(placeInWindow(`model.place(model.nodeAt.get(${corner}))`))),
  );
  assert.doesNotMatch(await page.evaluate(HEADING), /^Node/);
  await page.close();
});

test("numbers of a column have the same decimals", async () => {
  const page = await browser.open(join(folder, "slab_and_wall.html"), SMALL);
  for (const name of ["nodes", "materials", "displacements", "shell_forces", "members"]) {
    await openTable(page, name);
    const columns = await page.evaluate(`(() => {
      const rows = [...document.querySelectorAll(".rows tbody tr:not(.space)")];
      return [...document.querySelectorAll(".rows th")].map((head, k) => rows.map((row) => row.children[k]).filter((cell) => !cell.classList.contains("word")).map((cell) => cell.textContent));
    })()`);
    for (const texts of columns) {
      const decimals = new Set(
        texts.filter(Boolean).map((text) => text.split("e")[0].split(".")[1]?.length ?? 0),
      );
      assert.ok(decimals.size <= 1, `${name}: ${texts}`);
    }
  }
  await page.close();
});

test("a column of large numbers has the power of ten in its head", async () => {
  // A cantilever of 2 m in N and mm.
  const zeros = "0 0 0 0 0 0";
  const text = `problem type: 3d
units_names
S N mm MPa 1 1
end units_names
units_mesh mm
units_mat_and_load S
units_res S
mesh dimension = 3 elemtype Linear nnode = 2
coordinates
1 0 0 0
2 2000 0 0
end coordinates
elements
1 1 2 1
end elements
materials
1 E=210000 G=80000 widthY=500 widthZ=500
end materials
constraints
1 111111 ${zeros}
end constraints
nodal_point_loads
2 1234567 0 -500 0 0 0
end nodal_point_loads
`;
  writeFileSync(join(folder, "large_forces.dat"), text);
  const page = await browser.open(reportOf("large_forces.dat"), SMALL);
  assert.deepEqual(
    await page.evaluate("morlenReport.symbols.loads.labels.map(({ text }) => text)"),
    ["1.235\u00d710\u2076 N"],
  );
  const sums = await page.evaluate(
    "[...document.querySelectorAll('.sums td:last-child')].map((one) => one.textContent)",
  );
  assert.ok(sums.length >= 6 && sums.every((one) => !/e[-+]0$/.test(one)), `${sums}`);
  await openTable(page, "reactions");
  const cell = (name) =>
    page.evaluate(`(() => {
      const heads = [...document.querySelectorAll(".rows th")];
      const k = heads.findIndex((head) => head.textContent.startsWith("${name}"));
      const one = document.querySelectorAll(".rows tbody tr:not(.space) td")[k];
      return [heads[k].querySelector("small").textContent.trim(), one.textContent, one.title];
    })()`);
  assert.deepEqual(await cell("Px"), ["\u00d710\u2076 N", "-1.2346", "-1234570"]);
  assert.deepEqual(await cell("Pz"), ["N", "500", ""]);
  assert.deepEqual(await cell("My"), ["\u00d710\u2076 N*mm", "-1", "-1e+06"]);
  assert.match(await csvIn(page, "reactions"), /-1234570/);
  await page.evaluate("morlenReport.choose('node', 1)");
  const values = await page.evaluate(
    "[...document.querySelectorAll('[data-values=reactions] tbody td:nth-child(2)')].map((one) => one.textContent)",
  );
  assert.deepEqual(values, ["-1.2346\u00d710\u2076", "0", "500", "0", "-1\u00d710\u2076", "0"]);
  const bending = await page.evaluate(
    "[...document.querySelectorAll('tr')].find((row) => row.textContent.startsWith('My N*mm-1.000')).children[3].textContent",
  );
  assert.equal(bending, "0", "5.8e-10 is a rounding error of 1e6");
  await openTable(page, "members"); // extremes of a quantity are read together: no digits of noise
  assert.deepEqual((await cell("My min")).slice(0, 2), ["\u00d710\u2076 N*mm", "-1"]);
  assert.deepEqual((await cell("My max")).slice(0, 2), ["\u00d710\u2076 N*mm", "0"]);
  await page.close();
});

/** The file of two beams, the first with a hinge at its first end. */
function hingedBeam() {
  const text = `problem type: 2d
mesh dimension = 2 elemtype Linear nnode = 2
coordinates
1 0 0
2 3 0
3 6 0
end coordinates
elements
1 1 2 1
2 2 3 1
end elements
materials
1 E=1e6 A=0.1 Iz=0.01
end materials
constraints
1 111 0 0 0
3 111 0 0 0
end constraints
elem_rotules
1 01
end elem_rotules
nodal_point_loads
2 0 -3 0
end nodal_point_loads
`;
  writeFileSync(join(folder, "hinged.dat"), text);
  return "hinged.dat";
}

test("hinges are seen on a selected beam, and their codes have two digits", async () => {
  const page = await browser.open(reportOf(hingedBeam()), SMALL);
  await openTable(page, "elements");
  const codes = `[...document.querySelectorAll(".rows tbody tr:not(.space) td:nth-child(5)")]
    .map((one) => one.textContent)`;
  assert.deepEqual(await page.evaluate(codes), ["01", "11"]);
  // White pixels of the ball on the highlighted beam.
  const ball = `(() => {
    const { stage, hinges } = morlenReport;
    const [balls] = hinges.children;
    const matrix = balls.matrix.clone();
    balls.getMatrixAt(0, matrix);
    const at = stage.project(matrix.elements.slice(12, 15));
    stage.drawNow();
    const source = document.querySelector("canvas"), copy = document.createElement("canvas");
    [copy.width, copy.height] = [source.width, source.height];
    const context = copy.getContext("2d");
    context.drawImage(source, 0, 0);
    const ratio = source.width / stage.width;
    return [...context.getImageData(at[0] * ratio, at[1] * ratio, 1, 1).data];
  })()`;
  await page.set("loads", false);
  await page.set("diagram", "");
  await page.set("factor", "0");
  await page.evaluate("morlenReport.select(-1)");
  const free = await page.evaluate(ball);
  await page.evaluate("morlenReport.select(0)");
  assert.deepEqual(await page.evaluate(ball), free);
  assert.ok(Math.min(...free) > 150, `${free} is no ball`);
  await page.close();
});

/** Compares every table of a page with the files of a folder, byte by byte. */
async function compareFiles(page, files, names) {
  for (const name of names)
    assert.ok(
      (await csvIn(page, name)) === readFileSync(join(files, `${name}.csv`), "utf8"),
      `${name} differs from the file`,
    );
}

test("saved tables are those of morlen-export, byte by byte", async () => {
  for (const name of ["portal_frame", "slab_and_wall", "connecting_rod"]) {
    const page = await browser.open(exampleReport(name), SMALL);
    const files = join(folder, `${name}-csv`);
    run(EXPORT, `${name}.dat`, "--csv", files);
    const names = await page.evaluate("morlenReport.report.tables.map(({ name }) => name)");
    assert.ok(names.length > 5, names.join());
    for (const one of names) assert.ok(existsSync(join(files, `${one}.csv`)), one);
    await compareFiles(page, files, names);
    await page.close();
  }
});

test("the table of members is saved with its extremes in full", async () => {
  const page = await browser.open(join(folder, "girders.html"), SMALL);
  const [head, ...rows] = (await csvIn(page, "members"))
    .trim()
    .split("\n")
    .map((line) => line.split(","));
  const at = (name) => head.indexOf(name);
  assert.deepEqual(head.slice(0, 6), [
    "member",
    "elements",
    "from",
    "to",
    "length [m]",
    "material",
  ]);
  const values = exported("girders");
  const moments = values("beam_diagrams", "My").filter(
    (_, i) => values("beam_diagrams", "element")[i] <= 6,
  );
  assert.deepEqual(rows[0].slice(0, 6), ["1 to 7", "1 to 6", "1", "7", "12", "1"]);
  assert.equal(Number(rows[0][at("My min [kN*m]")]), Math.min(...moments));
  assert.equal(Number(rows[0][at("My max [kN*m]")]), Math.max(...moments));
  await page.close();
});

test("a click saves the open table as a file", async () => {
  const page = await browser.open(join(folder, "girders.html"), SMALL);
  const downloads = join(folder, "downloads");
  mkdirSync(downloads, { recursive: true });
  await browser.send("Browser.setDownloadBehavior", { behavior: "allow", downloadPath: downloads });
  await openTable(page, "reactions");
  await page.evaluate("document.querySelector('[data-action=save-csv]').click()");
  const file = join(downloads, "girders.reactions.csv");
  for (let i = 0; i < 100 && !existsSync(file); ++i)
    await new Promise((done) => setTimeout(done, 50));
  run(EXPORT, "girders.dat", "--csv", "girders-csv");
  assert.equal(
    readFileSync(file, "utf8"),
    readFileSync(join(folder, "girders-csv", "reactions.csv"), "utf8"),
  );
  assert.deepEqual(page.complaints, []);
  await page.close();
});

if (CASES) {
  test("tables of a load case are those of morlen-cases", async () => {
    for (const file of ["hall.cases", "hall_frame.dat"])
      copyFileSync(join(EXAMPLES, file), join(folder, file));
    run(REPORT, "hall.cases");
    run(CASES, "hall.cases", "--write", "*", "--formats", "csv", "-o", "members-csv");
    const page = await browser.open(join(folder, "hall.html"), SMALL);
    for (const one of ["G", "Q"]) {
      await page.set(
        "selection",
        await page.evaluate(
          `String(morlenReport.selector.list.findIndex(({ name }) => name === "${one}"))`,
        ),
      );
      for (const name of ["displacements", "reactions", "beam_end_forces", "beam_diagrams"]) {
        const rows = (text) =>
          text
            .trim()
            .split("\n")
            .map((line) => line.split(","));
        const own = rows(await csvIn(page, name)),
          other = rows(readFileSync(join(folder, "members-csv", `${one}.${name}.csv`), "utf8"));
        assert.deepEqual(own[0], other[0], `${one} ${name}`);
        assert.equal(own.length, other.length);
        // Values along beams come from five points of each, and sizes from another square root: they differ in
        // their last digits.
        const isExact = (k) => name !== "beam_diagrams" && !own[0][k].startsWith("u ");
        const largest = other[0].map((_, k) =>
          Math.max(...other.slice(1).map((row) => Math.abs(row[k]))),
        );
        own.slice(1).forEach((row, i) =>
          row.forEach((cell, k) => {
            const expected = other[i + 1][k];
            assert.ok(
              isExact(k) ? cell === expected : Math.abs(cell - expected) <= 1e-11 * largest[k],
              `${one} ${name} ${own[0][k]}, row ${i + 1}: ${cell}, ${expected}`,
            );
          }),
        );
      }
    }
    await page.close();
  });

  test("deflections of an envelope are those of its combinations", async () => {
    const page = await browser.open(join(folder, "hall.html"), SMALL);
    await page.evaluate(
      `morlenReport.show(morlenReport.selector.list.find(({ name }) => name === "ULS"))`,
    );
    const names = await page.evaluate(
      "morlenReport.report.selection.members.map((member) => morlenReport.study.all[member].name)",
    );
    assert.ok(names.length > 10, `${names.length} combinations`);
    /** uy' of the points of beam 2, from the displacements of a combination: y' is x' turned by 90 degrees. */
    const deflections = (name) => {
      const file = `${name.replace(/[^A-Za-z0-9._-]/g, "_")}.beam_diagrams.csv`;
      const [head, ...rows] = readFileSync(join(folder, "members-csv", file), "utf8")
        .trim()
        .split("\n")
        .map((line) => line.split(","));
      const at = (column) =>
        head.findIndex((one) => one.startsWith(`${column} `) || one === column);
      const own = rows.filter((row) => row[at("element")] === "2");
      const [x, y] = ["x", "y"].map((axis) => own.at(-1)[at(axis)] - own[0][at(axis)]);
      return own.map((row) => (x * row[at("uy")] - y * row[at("ux")]) / Math.hypot(x, y));
    };
    const all = new Map(names.map((name) => [name, deflections(name)]));
    const curves = await page.evaluate(`(() => {
      const { model, results } = morlenReport, first = model.beamOf.get(model.elementAt.get(2)) * model.points;
      return results.quantities.find(({ name }) => name.startsWith("uy")).curves.map(({ label, values, by }) => ({
        label, values: Array.from(values.slice(first, first + model.points)),
        by: Array.from({ length: model.points }, (_, i) => by.cell(first + i)) }));
    })()`);
    assert.deepEqual(
      curves.map(({ label }) => label),
      ["min", "max"],
    );
    // Axes of the page have seven digits.
    const isNear = (a, b) =>
      Math.abs(a - b) <= 1e-6 * Math.max(...all.get(names[0]).map(Math.abs), 1e-3);
    for (const { label, values, by } of curves) {
      values.forEach((value, i) => {
        const found = names.map((name) => all.get(name)[i]);
        const expected = label === "min" ? Math.min(...found) : Math.max(...found);
        assert.ok(isNear(value, expected), `${label} ${i}: ${value}, ${expected}`);
        assert.ok(isNear(all.get(by[i])[i], expected), `${label} ${i}: ${by[i]}`);
      });
    }
    assert.deepEqual(page.complaints, []);
    await page.close();
  });
}
