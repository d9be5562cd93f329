// What the reports show in a browser, beside the tables that morlen-export writes.

import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { pathToFileURL } from "node:url";
import {
  EXAMPLES,
  MORLEN,
  PICTURES,
  REPORT,
  SIZE,
  browser,
  exampleReport,
  exported,
  folder,
  openExample,
  picture,
  reportOf,
  run,
} from "./context.mjs";
import { PIXELS, assertNear, differing, extremes } from "./helpers.mjs";

for (const name of ["portal_frame", "space_frame", "slab_and_wall", "connecting_rod"]) {
  test(`${name} opens from one file, without complaints, and draws`, async () => {
    const page = await openExample(name);
    assert.deepEqual(
      page.requests.filter((url) => !url.startsWith("data:")),
      [pathToFileURL(join(folder, `${name}.html`)).href],
    );
    const pixels = await page.evaluate(PIXELS);
    const drawn = pixels.filter((pixel) => pixel !== "255 255 255").length;
    assert.ok(drawn > 0.01 * pixels.length, `${drawn} of ${pixels.length} pixels are drawn`);
    assert.ok(new Set(pixels).size > 10, "the canvas has one colour");
    assert.deepEqual(page.complaints, []);
    assert.match(
      await page.evaluate("document.querySelector('.badge').textContent"),
      /^in equilibrium/,
    );
    await page.close();
  });
}

async function legendOf(page, field) {
  await page.set("colours", field);
  return page.evaluate(`({
    min: Number(legend.dataset.min), max: Number(legend.dataset.max),
    title: legend.querySelector(".legend-title").textContent })`);
}

test("loads and reactions add up as they are shown", async () => {
  const page = await openExample("slab_and_wall");
  const rows = await page.evaluate(
    "[...document.querySelectorAll('#equilibrium tbody tr')].map((one) => [...one.cells].slice(1).map((cell) => cell.textContent))",
  );
  assert.equal(rows.length, 6);
  // No force along y: its sum is what rounding leaves in the reactions.
  const [load, reaction, sum] = rows[1];
  assert.equal(load, "0");
  assert.notEqual(reaction, "0");
  for (const row of rows)
    assert.ok(
      row.every((text) => !/^-?0\.0+$/.test(text)),
      `${row}`,
    );
  assert.equal(reaction, sum);
  await page.close();
});

test("the legend tells the extremes of the data", async () => {
  const cases = {
    slab_and_wall: [
      ["points:Mx'", "shell_forces", "Mx'"],
      ["points:Nxy'", "shell_forces", "Nxy'"],
      ["beams:N", "beam_diagrams", "N"],
    ],
    connecting_rod: [["nodes:von_Mises", "stresses", "von_Mises"]],
    portal_frame: [["beams:Mz", "beam_diagrams", "Mz"]],
  };
  for (const [model, fields] of Object.entries(cases)) {
    const page = await openExample(model);
    const values = exported(model);
    for (const [field, table, column] of fields) {
      const [min, max] = extremes(values(table, column));
      const legend = await legendOf(page, field);
      assertNear(legend.min, min, 1e-6, `${model} ${field} min`);
      assertNear(legend.max, max, 1e-6, `${model} ${field} max`);
    }
    await page.close();
  }
});

/** The middle of an element in the window, as it is drawn. */
const middleOf = (number) => `(() => {
  const { model, stage } = morlenReport, e = model.elementAt.get(${number});
  const count = Math.min(3, model.elements.nodeCounts[e]), middle = [0, 0, 0];
  for (let i = 0; i < count; ++i) model.place(model.node(e, i)).forEach((x, k) => { middle[k] += x / count; });
  const [x, y] = stage.project(middle), box = document.querySelector("canvas").getBoundingClientRect();
  return [x + box.left, y + box.top];
})()`;

const HEADING = "document.querySelector('#panel h3')?.textContent ?? ''";

test("a click shows the member under it, with its diagrams", async () => {
  const page = await openExample("portal_frame");
  await page.set("deformation", "0");
  const column = exported("portal_frame");
  const girder = [2, 3, 4];
  for (const [number, heading, beams] of [
    [1, "Member 1 to 2", [1]],
    ...girder.map((beam) => [beam, "Member 2 to 5", girder]),
    [5, "Member 6 to 5", [5]],
  ]) {
    await page.click(...(await page.evaluate(middleOf(number))));
    assert.equal(await page.evaluate(HEADING), heading);
    const titles = await page.evaluate(
      "[...document.querySelectorAll('#panel figcaption b')].map((b) => b.textContent)",
    );
    assert.deepEqual(titles, [
      "Axial force N",
      "Shear force Vy",
      "Bending moment Mz",
      "Deflection uy\u2032",
    ]);
    const shown = await page.evaluate(
      "[...document.querySelectorAll('#panel .diagram')[2].querySelectorAll('text')].map((t) => Number(t.textContent))",
    );
    const moments = column("beam_diagrams", "Mz").filter((_, i) =>
      beams.includes(column("beam_diagrams", "element")[i]),
    );
    assertNear(shown[0], moments[0], 1e-3, `moment at the first node of ${heading}`);
    assertNear(shown[1], moments.at(-1), 1e-3, `moment at the last node of ${heading}`);
  }
  await page.close();
});

test("a click shows the shell under it", async () => {
  const page = await openExample("slab_and_wall");
  await page.set("deformation", "0");
  await page.evaluate("document.querySelector('[data-look=top]').click()");
  await page.frame();
  const column = exported("slab_and_wall");
  const z = new Map(column("nodes", "node").map((node, i) => [node, column("nodes", "z")[i]]));
  const roof = column("elements", "element").filter(
    (_, i) =>
      column("elements", "kind")[i] === "shell" &&
      [1, 2, 3].every((k) => z.get(column("elements", `node${k}`)[i]) === 6),
  );
  for (const number of [roof[0], roof[10], roof.at(-1)]) {
    await page.click(...(await page.evaluate(middleOf(number))));
    assert.equal(await page.evaluate(HEADING), `Shell ${number}`);
  }
  await page.close();
});

test("the slider moves the shape", async () => {
  for (const name of ["portal_frame", "slab_and_wall"]) {
    const page = await openExample(name);
    const pictures = [];
    for (const value of ["0", "2", "0"]) {
      await page.set("deformation", value);
      pictures.push(await page.evaluate(PIXELS));
    }
    assert.ok(differing(pictures[0], pictures[1]) > 100, `${name} does not move`);
    assert.equal(differing(pictures[0], pictures[2]), 0, `${name} does not return`);
    assert.equal(await page.evaluate("factor.value"), "0");
    await page.close();
  }
});

test("diagrams and principal directions draw, and go", async () => {
  for (const [name, control, value] of [
    ["space_frame", "diagram", "My"],
    ["slab_and_wall", "directions", "M"],
    ["slab_and_wall", "directions", "N"],
  ]) {
    const page = await openExample(name);
    const pictures = [];
    for (const chosen of ["", value, ""]) {
      await page.set(control, chosen);
      pictures.push(await page.evaluate(PIXELS));
    }
    assert.ok(differing(pictures[0], pictures[1]) > 100, `${value} of ${name} does not show`);
    assert.equal(differing(pictures[0], pictures[2]), 0, `${value} of ${name} stays`);
    assert.deepEqual(page.complaints, []);
    await page.close();
  }
});

/** The half lines of a cross from its 12 coordinates, with the sign that makes a component positive. */
function halfLines(cross) {
  return [0, 6].map((first) => {
    const half = [0, 1, 2].map((k) => (cross[first + 3 + k] - cross[first + k]) / 2);
    const leading = half.find((x) => Math.abs(x) > 1e-3 * Math.hypot(...half));
    return half.map((x) => (leading < 0 ? -x : x));
  });
}

const distance = (a, b) => Math.hypot(...a.map((x, k) => x - b[k]));

test("principal directions are the same from local and from principal values", async () => {
  const model = readFileSync(join(EXAMPLES, "slab_and_wall.dat"), "utf8");
  const crosses = {};
  for (const [name, keyword] of [
    ["local", ""],
    ["main", "MainStresses"],
  ]) {
    writeFileSync(join(folder, `${name}.dat`), model.replace("ConvertTo6Nodes", keyword));
    const page = await browser.open(reportOf(`${name}.dat`), SIZE);
    for (const kind of ["N", "M"]) {
      await page.set("directions", kind);
      crosses[name + kind] = await page.evaluate(
        "Array.from(morlenReport.crosses.geometry.attributes.position.array)",
      );
    }
    await page.close();
  }
  for (const kind of ["N", "M"]) {
    const [local, main] = [crosses[`local${kind}`], crosses[`main${kind}`]];
    assert.equal(local.length, 12 * 352);
    for (let i = 0; i < local.length; i += 12) {
      const [a, b] = [local, main].map((values) => halfLines(values.slice(i, i + 12)));
      const size = Math.max(...a.map((half) => Math.hypot(...half)));
      const apart = Math.min(
        distance(a[0], b[0]) + distance(a[1], b[1]),
        distance(a[0], b[1]) + distance(a[1], b[0]),
      );
      assert.ok(apart < 1e-3 * size + 1e-5, `${kind} of shell ${i / 12 + 1}: ${a} and ${b}`);
    }
  }
});

test("tables sort by a column, both ways", async () => {
  const page = await openExample("space_frame");
  const [min, max] = extremes(exported("space_frame")("displacements", "uz"));
  await page.evaluate("document.querySelector('[data-table=displacements]').click()");
  for (const expected of [min, max]) {
    await page.evaluate("document.querySelectorAll('.rows th')[3].click()");
    assertNear(
      await page.evaluate(
        "Number(document.querySelectorAll('.rows tbody tr')[1].children[3].textContent)",
      ),
      expected,
      1e-4, // five digits are shown
      "first row",
    );
  }
  assert.ok(
    (await page.evaluate("document.querySelectorAll('.rows tbody tr').length")) < 60,
    "all rows are in the page",
  );
  await page.close();
});

test("a report prints, with its short tables", async () => {
  const page = await openExample("portal_frame");
  await page.evaluate(`addEventListener("beforeprint", () => {
    window.printed = [...document.querySelectorAll("#print-sheet caption")].map((one) => one.textContent);
  })`);
  const pdf = await page.pdf();
  assert.equal(pdf.subarray(0, 5).toString(), "%PDF-");
  assert.ok(pdf.length > 20000, `${pdf.length} bytes`);
  const titles = await page.evaluate("printed");
  assert.ok(titles.includes("Reactions") && titles.includes("Nodal loads"), titles.join());
  if (PICTURES) writeFileSync(join(PICTURES, "portal_frame.pdf"), pdf);
  await page.close();
});

const CANTILEVER = `problem type: 2d
# </script><img src=x onerror="window.broken=1"><!-- & "quoted"
units_names
S {force} {length} Pa 1000 1
end units_names
units_mesh {length}
units_mat_and_load S
units_res S
NumOfDivisions 4
mesh dimension = 2 elemtype Linear nnode = 2
coordinates
1 0 0
2 2 0
end coordinates
elements
1 1 2 1
end elements
materials
1 E=1e6 A=0.1 Iz=0.01
end materials
constraints
1 111 0 0 0
end constraints
nodal_point_loads
2 5 -3 0
end nodal_point_loads
`;

/** The alert in the head of a page: its text and its colour; null without one. */
const ALERT = `(() => {
  const alert = document.querySelector("header .alert");
  return alert && { text: alert.textContent, colour: getComputedStyle(alert).color, items: alert.querySelectorAll("li").length };
})()`;

test("errors of the problem file are in the head, in red", async () => {
  const model = readFileSync(join(EXAMPLES, "portal_frame.dat"), "utf8");
  const cases = [
    ["sound", model, null],
    ["comma", model.replace("78.08e-4", "78,08e-4"), 1],
    ["many", model.replace("78.08e-4", "78,08e-4 It=1 alpha=1 I_y=2 Ip=3"), 5],
  ];
  for (const [name, text, errors] of cases) {
    writeFileSync(join(folder, `${name}.dat`), text);
    const page = await browser.open(reportOf(`${name}.dat`), SIZE);
    await picture(page, name);
    const alert = await page.evaluate(ALERT);
    assert.deepEqual(page.complaints, []);
    await page.close();
    if (errors === null) {
      assert.equal(alert, null);
      continue;
    }
    assert.match(alert.text, new RegExp(`^${errors} errors? in the problem file`));
    assert.match(alert.text, /data lost: '78,08e-4' is no number as a whole/);
    assert.equal(alert.items, Math.min(errors, 4));
    assert.equal(alert.text.includes("and 2 more"), errors === 5);
    const [red, green, blue] = alert.colour.match(/\d+/g).map(Number);
    assert.ok(red > 2 * green && red > 2 * blue, alert.colour);
  }
});

test("text of the input is shown as it is and never runs", async () => {
  const force = "</script><img>",
    length = "<b>m&amp;'\"</b>";
  const name = "a<img src=x onerror=window.broken=1>&b.dat";
  writeFileSync(
    join(folder, name),
    CANTILEVER.replaceAll("{force}", force).replaceAll("{length}", length),
  );
  const page = await browser.open(reportOf(name), SIZE);
  await page.set("colours", "beams:N");
  assert.deepEqual(page.complaints, []);
  assert.equal(await page.evaluate("typeof window.broken"), "undefined");
  assert.equal(
    await page.evaluate("document.querySelectorAll('img, b b, script:not([type]) ~ *').length"),
    0,
  );
  assert.equal(await page.evaluate("document.title"), name);
  assert.equal(await page.evaluate("document.querySelector('h1').textContent"), name);
  assert.match(
    await page.evaluate("document.querySelector('.description').textContent"),
    /^<\/script><img src=x onerror=.*"quoted"$/,
  );
  assert.equal(
    await page.evaluate("document.querySelector('.legend-title span').textContent.trim()"),
    force,
  );
  await page.close();
});

test("reactions that do not carry the loads are told everywhere", async () => {
  writeFileSync(
    join(folder, "bad.dat"),
    CANTILEVER.replaceAll("{force}", "kN").replaceAll("{length}", "m"),
  );
  run(MORLEN, "bad.dat");
  const results = join(folder, "bad.morlen.res");
  const text = readFileSync(results, "utf8");
  const [head, reactions] = text.split(/(?=^Reactions)/m);
  assert.match(reactions, /^1 -5 3/m);
  writeFileSync(results, head + reactions.replace(/^1 -5 3/m, "1 -5 3.03"));
  const made = spawnSync(REPORT, ["bad.dat"], { cwd: folder, encoding: "utf8" });
  assert.equal(made.status, 1);
  assert.match(
    made.stderr,
    /^warning: loads and reactions are not in equilibrium\. The structure may be close to a mechanism/,
  );
  const residual = 0.03 / 8.03; // of the force; the sizes of the reactions are 5 and 3.03
  assertNear(
    Number(made.stdout.match(/residual of equilibrium: (\S+)/)[1]),
    residual,
    0.02,
    "printed",
  );
  const page = await browser.open(join(folder, "bad.html"), SIZE);
  assert.match(
    await page.evaluate("document.querySelector('.badge.bad').textContent"),
    /^not in equilibrium/,
  );
  assert.match(
    await page.evaluate("document.querySelector('#equilibrium .verdict.bad').textContent"),
    /above 1e-4\. The structure may be close to a mechanism/,
  );
  await page.close();
});
