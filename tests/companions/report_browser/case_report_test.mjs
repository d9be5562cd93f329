// The page of load cases, beside the files that morlen-cases writes.

import assert from "node:assert/strict";
import { copyFileSync, readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { CASES, EXAMPLES, REPORT, SIZE, browser, folder, picture, run } from "./context.mjs";
import { PIXELS, assertNear, differing, extremes } from "./helpers.mjs";

/** Cases of the example of shells, beams and both kinds of loads; one is a settlement. */
const SHELLS = `model = "slab_and_wall.dat"
[cases.G]
gravity = true
[cases.W]
title = "Wind"
text = '''
global_pressure_loads
 161 0 0 -3
 162 1 0 0
end global_pressure_loads
nodal_point_loads
 200 3 -4 5  0 0 0
end nodal_point_loads
'''
[cases.A]
from_model = true
[cases.S]
text = '''
constraints
 1 001000 0 0 -0.002 0 0 0
end constraints
'''
[combinations]
"ULS 1" = { G = 1.35, W = 1.5 }
"ULS 2" = { G = 1.0, W = -1.5, S = 1.0 }
"ULS <3>" = { A = 1.0, S = -0.5, W = 0.3 }
[envelopes]
ULS = ["ULS *", "G"]
`;

/** A cube of five tetrahedra with smoothed stresses. */
const SOLIDS = {
  model: `problem type: 3d
mesh dimension = 3 elemtype Tetrahedra nnode = 4
coordinates
1 0 0 0
2 1 0 0
3 1 1 0
4 0 1 0
5 0 0 1
6 1 0 1
7 1 1 1
8 0 1 1
end coordinates
elements
1 1 2 4 5 1
2 3 4 2 7 1
3 6 5 7 2 1
4 8 7 5 4 1
5 2 7 4 5 1
end elements
materials
1 E=1e6 nu=0.3
end materials
constraints
1 111 0 0 0
2 111 0 0 0
3 111 0 0 0
4 111 0 0 0
end constraints
`,
  cases: `model = "cube.dat"
[cases.X]
text = '''
nodal_point_loads
 7 5 -1 2
end nodal_point_loads
'''
[cases.Y]
text = '''
nodal_point_loads
 8 1 7 -3
end nodal_point_loads
'''
[combinations]
both = { X = 1.0, Y = -2.0 }
half = { X = 0.5, Y = 1.0 }
[envelopes]
E = ["*"]
`,
};

/** Makes the page of a file of load cases and the CSV files of everything in it. */
function prepare(name) {
  run(REPORT, `${name}.cases`);
  run(CASES, `${name}.cases`, "--write", "*", "--formats", "csv", "-o", `${name}-csv`);
}

function prepareHall() {
  for (const file of ["hall.cases", "hall_frame.dat"])
    copyFileSync(join(EXAMPLES, file), join(folder, file));
  prepare("hall");
}

function prepareShells() {
  copyFileSync(join(EXAMPLES, "slab_and_wall.dat"), join(folder, "slab_and_wall.dat"));
  writeFileSync(join(folder, "slab.cases"), SHELLS);
  prepare("slab");
}

function prepareSolids() {
  writeFileSync(join(folder, "cube.dat"), SOLIDS.model);
  writeFileSync(join(folder, "cube.cases"), SOLIDS.cases);
  prepare("cube");
}

async function open(name) {
  const page = await browser.open(join(folder, `${name}.html`), SIZE);
  await picture(page, name);
  return page;
}

/** Chooses as a user does. */
async function choose(page, name) {
  const index = await page.evaluate(
    `String(morlenReport.selector.list.findIndex((one) => one.name === ${JSON.stringify(name)}))`,
  );
  await page.set("selection", index);
}

/** Rows of cells of a CSV file without quotes, and the heads as [name, unit]. */
function csv(name, file) {
  const text = readFileSync(join(folder, `${name}-csv`, `${file}.csv`), "utf8").trim();
  const [head, ...rows] = text.split(/\r?\n/).map((line) => line.split(","));
  return { heads: head.map((one) => one.match(/^(.*?)(?: \[(.*)\])?$/).slice(1)), rows };
}

const fileOf = (name) => name.replace(/[^A-Za-z0-9._-]/g, "_");

/** A column of the present choice: {unit, values}, the values as numbers or words. */
const columnOf = (page, table, column) =>
  page.evaluate(`(() => {
    const found = morlenReport.report.table(${JSON.stringify(table)})?.column(${JSON.stringify(column)});
    return found && { unit: found.unit, values: Array.from(found.values, (_, i) => found.cell(i)) };
  })()`);

/** Both round, and differently: 1e-11 of the largest is far above that, and far below all digits shown. */
function assertSame(actual, expected, what) {
  assert.equal(actual.length, expected.length, what);
  const tolerance = 1e-11 * Math.max(...expected.map(Math.abs));
  actual.forEach((value, i) =>
    assert.ok(
      Math.abs(value - expected[i]) <= tolerance,
      `${what}, row ${i + 1}: ${value}, ${expected[i]}`,
    ),
  );
}

const PLACE = /^[xyz]$/;

async function compareCombination(page, name, one, tables) {
  await choose(page, one);
  for (const table of tables) {
    const { heads, rows } = csv(name, `${fileOf(one)}.${table}`);
    for (const [k, [column, unit]] of heads.entries()) {
      if (PLACE.test(column)) continue;
      const found = await columnOf(page, table, column);
      const what = `${one}: ${table} ${column}`;
      assert.ok(found, what);
      assert.equal(found.unit, unit ?? "", what);
      assertSame(
        found.values,
        rows.map((row) => Number(row[k])),
        what,
      );
    }
  }
}

async function compareEnvelope(page, name, one, tables) {
  await choose(page, one);
  for (const [table, file] of Object.entries(tables)) {
    const { heads, rows } = csv(name, `${one}.${file}`);
    const at = (column) => heads.findIndex(([head]) => head === column);
    for (const [column, unit] of heads.slice(at("combination") + 1)) {
      for (const extreme of ["min", "max"]) {
        const own = rows.filter(
          (row) => row[at("component")] === column && row[at("extreme")] === extreme,
        );
        const what = `${one}: ${table} ${column} ${extreme}`;
        const found = await columnOf(page, table, `${column} ${extreme}`);
        assert.ok(found, what);
        assert.equal(found.unit, unit ?? "", what);
        assertSame(
          found.values,
          own.map((row) => Number(row[at(column)])),
          what,
        );
        const by = await columnOf(page, table, `${column} ${extreme} by`);
        assert.deepEqual(
          by.values,
          own.map((row) => row[at("combination")]),
          `${what} by`,
        );
      }
    }
  }
}

test("frame: the page has the numbers of morlen-cases", async () => {
  prepareHall();
  const page = await open("hall");
  const tables = ["displacements", "reactions", "beam_diagrams", "beam_end_forces"];
  for (const one of ["G", "C", "file", "6.10/7", "ULS with imperfection"])
    await compareCombination(page, "hall", one, tables);
  for (const one of ["ULS", "SLS", "same"])
    await compareEnvelope(page, "hall", one, {
      displacements: "displacements",
      reactions: "reactions",
      beam_diagrams: "beam_forces",
    });
  assert.deepEqual(page.complaints, []);
  await page.close();
});

test("frame: the points of the members lie where morlen-cases puts them", async () => {
  const page = await open("hall");
  await choose(page, "G");
  const { heads, rows } = csv("hall", "G.beam_diagrams");
  const places = await page.evaluate(`(() => {
    const { model } = morlenReport, { points } = model, places = [];
    model.beams.forEach((element) => {
      const [a, b] = [0, 1].map((i) => [0, 1].map((k) => model.xyz[3 * model.node(element, i) + k]));
      for (let i = 0; i < points; ++i)
        places.push(a.map((x, k) => x + (i / (points - 1)) * (b[k] - x)));
    });
    return places;
  })()`);
  assert.equal(places.length, rows.length);
  for (const [k, axis] of ["x", "y"].entries()) {
    const column = heads.findIndex(([head]) => head === axis);
    assertSame(
      places.map((place) => place[k]),
      rows.map((row) => Number(row[column])),
      axis,
    );
  }
  await page.close();
});

test("shells: the page has the numbers of morlen-cases", async () => {
  prepareShells();
  const page = await open("slab");
  const tables = ["displacements", "reactions", "beam_diagrams", "shell_forces"];
  for (const one of ["W", "S", "ULS 2", "ULS <3>"])
    await compareCombination(page, "slab", one, tables);
  await compareEnvelope(page, "slab", "ULS", {
    displacements: "displacements",
    reactions: "reactions",
    beam_diagrams: "beam_forces",
    shell_forces: "shell_forces",
  });
  assert.deepEqual(page.complaints, []);
  await page.close();
});

test("solids: the page has the numbers of morlen-cases", async () => {
  prepareSolids();
  const page = await open("cube");
  for (const one of ["X", "both", "half"])
    await compareCombination(page, "cube", one, ["displacements", "stresses"]);
  await compareEnvelope(page, "cube", "E", { stresses: "stresses" });
  assert.deepEqual(page.complaints, []);
  await page.close();
});

test("the selector names everything, and steps", async () => {
  const page = await open("slab");
  const groups = await page.evaluate(
    "[...selection.querySelectorAll('optgroup')].map((g) => [g.label, [...g.children].map((o) => o.textContent)])",
  );
  assert.deepEqual(groups, [
    ["Cases", ["G", "W: Wind", "A", "S"]],
    ["Combinations", ["ULS 1", "ULS 2", "ULS <3>"]],
    ["Envelopes", ["ULS"]],
  ]);
  const note = () => page.evaluate("document.getElementById('selection-note').textContent");
  await choose(page, "ULS 2");
  assert.equal(await note(), "1 G \u2212 1.5 W + 1 S");
  const step = (by) => page.evaluate(`document.querySelector('[aria-label="${by} one"]').click()`);
  await step("next");
  assert.equal(await note(), "0.3 W + 1 A \u2212 0.5 S");
  await step("next");
  assert.equal(await note(), "least and largest values of 4 cases and combinations");
  await step("next");
  assert.match(await note(), /^least and largest/);
  for (let i = 0; i < 10; ++i) await step("previous");
  assert.equal(await note(), "load case");
  assert.deepEqual(page.complaints, []);
  await page.close();
});

test("a choice changes the view, and another one brings it back", async () => {
  const page = await open("slab");
  const pictures = [];
  for (const one of ["W", "ULS 1", "ULS", "W"]) {
    await choose(page, one);
    await page.frame();
    pictures.push(await page.evaluate(PIXELS));
  }
  assert.ok(differing(pictures[0], pictures[1]) > 100, "the combination looks like the case");
  assert.ok(differing(pictures[1], pictures[2]) > 100, "the envelope looks like the combination");
  assert.equal(differing(pictures[0], pictures[3]), 0, "the case does not return");
  await page.close();
});

test("contours of an envelope lie between its extremes", async () => {
  const page = await open("slab");
  await choose(page, "ULS");
  const { heads, rows } = csv("slab", "ULS.shell_forces");
  const at = (column) => heads.findIndex(([head]) => head === column);
  for (const extreme of ["min", "max"]) {
    const own = rows
      .filter((row) => row[at("component")] === "Mx'" && row[at("extreme")] === extreme)
      .map((row) => Number(row[at("Mx'")]));
    await page.set("colours", `points:Mx' ${extreme}`);
    const [min, max] = await page.evaluate(
      "[Number(legend.dataset.min), Number(legend.dataset.max)]",
    );
    assertNear(min, extremes(own)[0], 1e-9, `least ${extreme}`);
    assertNear(max, extremes(own)[1], 1e-9, `largest ${extreme}`);
  }
  await choose(page, "G");
  assert.equal(await page.evaluate("colours.value"), "points:Mx'");
  await page.close();
});

test("a diagram of an envelope has two curves and tells what governs", async () => {
  const page = await open("hall");
  await choose(page, "ULS");
  const { heads, rows } = csv("hall", "ULS.beam_forces");
  const at = (column) => heads.findIndex(([head]) => head === column);
  const points = await page.evaluate("morlenReport.model.points");
  await page.evaluate("morlenReport.choose('element', 2)");
  const drawings = "[...document.querySelectorAll('#panel .diagram')]";
  assert.deepEqual(
    await page.evaluate(`${drawings}.map((one) => one.querySelectorAll('polyline').length)`),
    [2, 2, 2, 2], // N, Vy, Mz and the deflection
  );
  for (const i of [0, 5, points - 1]) {
    await page.evaluate(`(() => {
      const drawing = ${drawings}[2], box = drawing.getBoundingClientRect();
      const x = box.left + box.width * (8 + ${i} / ${points - 1} * 384) / 400;
      drawing.dispatchEvent(new PointerEvent("pointermove", { clientX: x, clientY: box.top + 5 }));
    })()`);
    const readout = await page.evaluate("document.querySelector('#panel .readout').textContent");
    for (const extreme of ["min", "max"]) {
      const row = rows.find(
        (one) =>
          Number(one[0]) === 2 &&
          Number(one[1]) === i + 1 &&
          one[at("component")] === "Mz" &&
          one[at("extreme")] === extreme,
      );
      const [, value, by] = readout.match(new RegExp(`Mz ${extreme} = (\\S+) \\(([^)]*)\\)`));
      assertNear(Number(value), Number(row[at("Mz")]), 1e-4, readout);
      assert.equal(by, row[at("combination")]);
    }
  }
  await page.close();
});

test("every case has its balance, and its own loads", async () => {
  const page = await open("slab");
  const lines = await page.evaluate(
    "[...document.querySelectorAll('#balances tbody tr')].map((tr) => [...tr.children].map((c) => c.textContent))",
  );
  assert.deepEqual(
    lines.map(([name]) => name),
    ["G", "W", "A", "S"],
  );
  for (const [, , , , residual] of lines) assert.ok(Number(residual) < 1e-9, residual);
  assert.match(
    await page.evaluate("document.querySelector('.badge.good').textContent"),
    /^4 cases in equilibrium, residual at most/,
  );
  await choose(page, "ULS 1");
  const { values } = await columnOf(page, "nodal_loads", "Px");
  assert.equal(values.length, 1);
  assertNear(values[0], 4.5, 1e-12, "1.5 times the load");
  const sums = await page.evaluate("morlenReport.report.equilibrium");
  for (let k = 0; k < 3; ++k)
    assert.ok(Math.abs(sums.loads[k] + sums.reactions[k]) < 1e-9 * 1000, `component ${k}`);
  await choose(page, "ULS 2");
  const settlement = await columnOf(page, "supports", "value3");
  assertNear(settlement.values[0], -0.002, 1e-6, "settlement");
  await page.close();
});

test("a page of cases prints the present choice", async () => {
  const page = await open("hall");
  await choose(page, "6.10/7");
  const pdf = await page.pdf();
  assert.ok(pdf.length > 20000, `${pdf.length} bytes`);
  assert.match(
    await page.evaluate("document.querySelector('.print-only').textContent"),
    /6\.10\/7.*1\.35 G \+ 1\.5 Q/s,
  );
  await page.close();
});

test("the page fits a narrow window", async () => {
  for (const name of ["hall", "slab"]) {
    const page = await browser.open(join(folder, `${name}.html`), { width: 400, height: 800 });
    for (const one of ["G", "ULS"]) {
      await choose(page, one);
      assert.ok(
        (await page.evaluate("document.documentElement.scrollWidth")) <= 400,
        `${name} ${one}`,
      );
      await picture(page, `${name}-${one}-400`);
    }
    await page.close();
  }
});
