// The view in three dimensions: how much it draws, sections, values along lines, what is hidden,
// legends, local axes and saved pictures.

import assert from "node:assert/strict";
import { writeFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { PICTURES, browser, exported, folder, openExample, picture, reportOf } from "./context.mjs";
import { PIXELS, assertNear, differing, extremes } from "./helpers.mjs";
import { TETRAHEDRA } from "../../../companions/report/viewer/src/section.js";
import { pulledBar, slab } from "./view_models.mjs";

const SMALL = PICTURES ? { width: 1400, height: 900 } : { width: 700, height: 620 };

async function openModel(name, text) {
  writeFileSync(join(folder, `${name}.dat`), text);
  return browser.open(reportOf(`${name}.dat`), SMALL);
}

/** Presses a mouse button of the window, moves and releases. */
const mouse = (page, type, x, y) =>
  page.send("Input.dispatchMouseEvent", {
    type,
    x,
    y,
    button: "left",
    buttons: type === "mouseReleased" ? 0 : 1,
    clickCount: 1,
  });

const FRAME = `(() => {
  const { isMoving, renderer } = morlenReport.stage, { calls, lines } = renderer.info.render;
  return { isMoving: Boolean(isMoving), calls, lines };
})()`;

test("a large model is two objects a mesh, and a moving one has no details", async () => {
  const page = await openModel("large", slab(51, 10, 3)); // 5202 shells
  await page.set("loads", false);
  await page.set("supports", false);
  assert.equal(await page.evaluate("document.getElementById('lines').checked"), false);
  const still = await page.evaluate(FRAME);
  assert.ok(still.calls <= 2, `${still.calls} objects`);
  const outline = 4 * 51 * 2; // edges of the slab, deformed and not
  assert.equal(still.lines, outline);
  const box = await page.evaluate(
    "(({ left, top, width, height }) => [left + width / 2, top + height / 2])(document.querySelector('.canvas canvas').getBoundingClientRect())",
  );
  await mouse(page, "mousePressed", ...box);
  for (const step of [10, 20, 30]) await mouse(page, "mouseMoved", box[0] + step, box[1] + step);
  await page.frame();
  const moving = await page.evaluate(FRAME);
  assert.deepEqual(moving, { isMoving: true, calls: 1, lines: 0 });
  await mouse(page, "mouseReleased", box[0] + 30, box[1] + 30);
  await page.evaluate("new Promise((done) => setTimeout(done, 400))");
  await page.frame();
  assert.deepEqual(await page.evaluate(FRAME), { ...still, isMoving: false });
  await page.set("lines", true);
  const inner = 3 * 51 * 51 - 2 * 51; // edges between two shells
  assert.deepEqual(await page.evaluate(FRAME), {
    isMoving: false,
    calls: 2,
    lines: outline + inner,
  });
  const vertices = await page.evaluate(
    "morlenReport.views.surfaces[0].mesh.geometry.attributes.position.count",
  );
  assert.equal(vertices, 52 * 52, "triangles share the vertices of a nodal field");
  await page.close();
});

test("a moving small model keeps all it has", async () => {
  const page = await openExample("portal_frame", SMALL);
  const before = await page.evaluate(FRAME);
  await page.evaluate("morlenReport.stage.beginMove(); morlenReport.stage.draw()");
  await page.frame();
  assert.deepEqual(await page.evaluate(FRAME), before);
  await page.close();
});

const E = 2e8,
  STRESS = 1e5;

/** The page of a pulled bar, for the tests of the cut: without a cut and seen from the front. */
let bar = null;
async function barPage() {
  bar ??= await openModel("bar", pulledBar(4, E, STRESS));
  bar.isShared = true;
  await bar.send("Page.bringToFront");
  await bar.set("cut-axis", "");
  await bar.evaluate("document.querySelector('[data-look=front]').click()");
  await bar.frame();
  return bar;
}

/** Corners of the filled cut, undeformed, in the coordinates of the problem file. */
const CUT = `(() => {
  const { center } = morlenReport.model.box, { array } = morlenReport.cutting.section.fill.geometry.attributes.position;
  return Array.from(array, (x, i) => x + center[i % 3]);
})()`;

const areaOf = (corners) => {
  let area = 0;
  for (let i = 0; i < corners.length; i += 9) {
    const [a, b, c] = [0, 3, 6].map((k) => corners.slice(i + k, i + k + 3));
    const [u, v] = [b, c].map((p) => p.map((x, k) => x - a[k]));
    area +=
      Math.hypot(u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]) /
      2;
  }
  return area;
};

/** Places of the field's values on the cut in the scale, 0..1. */
const CUT_VALUES = `(() => {
  const { array } = morlenReport.cutting.section.fill.geometry.attributes.uv, { scale } = morlenReport;
  return Array.from(array).filter((_, i) => i % 2 === 0).map((t) => scale.base + t * scale.bands * scale.step);
})()`;

const typePoints = async (page, points) => {
  for (const [i, name] of ["A", "B"].entries())
    for (const [k, axis] of [..."xyz"].entries())
      await page.evaluate(`{
        const input = document.getElementById("line-${name}-${axis}");
        input.value = "${points[i][k]}";
        input.dispatchEvent(new Event("change"));
      }`);
  await page.frame();
};

const PIECES = "morlenReport.cutting.line.pieces(morlenReport.field)";

test("a cut through a pulled bar has its area, and the field of theory", async () => {
  const page = await barPage();
  await page.set("colours", "ux");
  await page.set("cut-axis", "x");
  await page.set("cut-place", "1.3");
  await picture(page, "bar_cut");
  const corners = await page.evaluate(CUT);
  assertNear(areaOf(corners), 1, 1e-5, "area of the cut"); // 32-bit coordinates
  for (let i = 0; i < corners.length; i += 3) assertNear(corners[i], 1.3, 1e-6, "x of the cut");
  const ux = (x) => (STRESS * x) / E;
  for (const value of await page.evaluate(CUT_VALUES)) assertNear(value, ux(1.3), 1e-4, "ux");
  // Values along a skew line: ux is linear, so every piece lies on one straight line. Results have six digits.
  const [a, b] = [
    [0.2, 0.1, 0.15],
    [3.7, 0.9, 0.65],
  ];
  await typePoints(page, [a, b]);
  await picture(page, "bar_line");
  const pieces = await page.evaluate(PIECES);
  assertNear(pieces[0].from, 0, 1e-6, "start");
  assertNear(pieces.at(-1).to, 1, 1e-6, "end");
  pieces.forEach(({ from, to, values }, i) => {
    if (i > 0) assert.ok(Math.abs(from - pieces[i - 1].to) < 1e-5, "a gap");
    [from, to].forEach((t, end) =>
      assertNear(values[end], ux(a[0] + t * (b[0] - a[0])), 1e-4, `ux at ${t}`),
    );
  });
  assert.match(
    await page.evaluate("document.querySelector('.line-chart').textContent"),
    /Displacement ux from A to B.*distance from A m/,
  );
  const csv = await page.evaluate(
    `(() => { const { cutting, field } = morlenReport; return cutting.line.csv(field, ${PIECES}, Math.hypot(3.5, 0.8, 0.5)); })()`,
  );
  const [head, ...rows] = csv.trim().split("\n");
  assert.equal(head, "distance [m],x [m],y [m],z [m],Displacement ux [m],element");
  assert.equal(rows.length, 2 * pieces.length);
  const last = rows.at(-1).split(",").map(Number);
  assertNear(last[0], Math.hypot(3.5, 0.8, 0.5), 1e-5, "length");
  b.forEach((x, k) => assertNear(last[1 + k], x, 1e-5, "end point"));
  assertNear(last[4], ux(b[0]), 1e-4, "ux at the end");
  assert.deepEqual(page.complaints, []);
});

test("the cut leaves out one side, the other side after a turn, none without a cut", async () => {
  const page = await barPage();
  await page.set("deformation", "0");
  for (const id of ["supports", "loads"]) await page.set(id, false);
  const pickAt = (x) =>
    page.evaluate(`(() => {
      const { model, stage, views } = morlenReport;
      const [px, py] = stage.project([${x} - model.box.center[0], 0, 0]);
      const box = document.querySelector(".canvas canvas").getBoundingClientRect();
      return [px + box.left, py + box.top];
    })()`);
  const heading = async (x) => {
    await page.evaluate("morlenReport.select(-1)");
    await page.click(...(await pickAt(x)));
    return page.evaluate("document.querySelector('#panel h3')?.textContent ?? ''");
  };
  const whole = await page.evaluate(PIXELS);
  await page.set("cut-axis", "x");
  await page.set("cut-place", "2");
  const seen = [await heading(0.5), await heading(3.5)];
  assert.notEqual(seen[0] === "", seen[1] === "", "one side is left out");
  await page.evaluate("document.getElementById('cut-flip').click(); morlenReport.select(-1)");
  await page.frame();
  const turned = [await heading(0.5), await heading(3.5)];
  assert.deepEqual(
    turned.map((text) => text === ""),
    seen.map((text) => text !== ""),
  );
  await page.evaluate("morlenReport.select(-1)");
  assert.ok(differing(whole, await page.evaluate(PIXELS)) > 100);
  await page.set("cut-axis", "");
  assert.equal(differing(whole, await page.evaluate(PIXELS)), 0, "the cut leaves traces");
});

test("the handle drags the cut, its keys move it, and along the view it faces the eye", async () => {
  const page = await barPage();
  await page.set("cut-axis", "x");
  const where = () =>
    page.evaluate(`(() => {
      const { left, top, width, height } = document.querySelector(".cut-handle").getBoundingClientRect();
      return { at: [left + width / 2, top + height / 2], place: Number(document.getElementById("cut-place").value),
        metre: 1 / morlenReport.stage.pixel };
    })()`);
  const start = await where();
  assert.equal(start.place, 2);
  await mouse(page, "mousePressed", ...start.at);
  await mouse(page, "mouseMoved", start.at[0] + start.metre, start.at[1] + 3);
  await mouse(page, "mouseReleased", start.at[0] + start.metre, start.at[1] + 3);
  await page.frame();
  const end = await where();
  assertNear(end.place, 3, 0.02, "place after the drag"); // whole pixels
  assertNear(end.at[0], start.at[0] + start.metre, 0.02, "handle under the pointer");
  await page.evaluate(
    "document.querySelector('.cut-handle').dispatchEvent(new KeyboardEvent('keydown', { key: 'ArrowLeft' }))",
  );
  assertNear((await where()).place, end.place - 0.04, 1e-3, "place after a key");
  await page.set("cut-axis", "view");
  const normal = await page.evaluate("morlenReport.cutting.plane.normal");
  // The controls of the view stay 1e-6 away from a view along their pole.
  [0, -1, 0].forEach((x, k) => assert.ok(Math.abs(normal[k] - x) < 1e-5, `normal ${normal}`));
  assertNear(areaOf(await page.evaluate(CUT)), 4, 1e-5, "the section along the bar");
});

/** Value at a point by the volumes of the parts of the tetrahedron around it; null outside all. */
function interpolate(tetrahedra, values, point) {
  const minus = (a, b) => a.map((x, k) => x - b[k]);
  const volume = (a, b, c, d) => {
    const [u, v, w] = [minus(b, a), minus(c, a), minus(d, a)];
    return (
      u[0] * (v[1] * w[2] - v[2] * w[1]) -
      u[1] * (v[0] * w[2] - v[2] * w[0]) +
      u[2] * (v[0] * w[1] - v[1] * w[0])
    );
  };
  for (const { nodes, places } of tetrahedra) {
    const all = volume(...places);
    const parts = places.map(
      (_, i) => volume(...places.map((p, k) => (k === i ? point : p))) / all,
    );
    if (parts.every((part) => part > -1e-9))
      return parts.reduce((sum, part, i) => sum + part * values.get(nodes[i]), 0);
  }
  return null;
}

test("values along a line are those of an independent interpolation", async () => {
  const bent = pulledBar(5, E, STRESS).replace(
    /nodal_point_loads[^]*/,
    "nodal_point_loads\n6 3 7 11\nend nodal_point_loads\n",
  );
  const page = await openModel("bent", bent);
  await page.set("colours", "nodes:von_Mises");
  const [a, b] = [
    [0.1, 0.2, 0.3],
    [4.9, 0.7, 0.6],
  ];
  await typePoints(page, [a, b]);
  const pieces = await page.evaluate(PIECES);
  await page.close();
  const column = exported("bent");
  const place = new Map(
    column("nodes", "node").map((number, i) => [
      number,
      ["x", "y", "z"].map((k) => column("nodes", k)[i]),
    ]),
  );
  const corners = [1, 2, 3, 4].map((k) => column("elements", `node${k}`));
  const tetrahedra = corners[0].map((_, e) => {
    const nodes = corners.map((list) => list[e]);
    return { nodes, places: nodes.map((node) => place.get(node)) };
  });
  const values = new Map(
    column("stresses", "node").map((node, i) => [node, column("stresses", "von_Mises")[i]]),
  );
  const [low, high] = extremes([...values.values()]);
  assert.ok(high > 2 * low, "a field that varies");
  assert.ok(pieces.length >= 15, `${pieces.length} pieces`);
  for (const { from, to, values: ends } of pieces) {
    for (const part of [0.1, 0.5, 0.9]) {
      const t = from + part * (to - from);
      const expected = interpolate(
        tetrahedra,
        values,
        a.map((x, k) => x + t * (b[k] - x)),
      );
      // Coordinates have 32 bits in the page.
      assertNear(ends[0] + part * (ends[1] - ends[0]), expected, 1e-4, `at ${t}`);
    }
  }
});

test("the parts of a ten-node solid fill it without overlaps", () => {
  const corners = [
    [0, 0, 0],
    [3, 0, 0],
    [0, 2, 0],
    [0.5, 0.4, 1.7],
  ];
  const pairs = [
    [0, 1],
    [1, 2],
    [0, 2],
    [0, 3],
    [1, 3],
    [2, 3],
  ];
  const middles = pairs.map((pair) =>
    [0, 1, 2].map((k) => (corners[pair[0]][k] + corners[pair[1]][k]) / 2),
  );
  const all = [...corners, ...middles];
  const numbers = new Map(all.map((_, i) => [i, i]));
  const parts = TETRAHEDRA[10].map((nodes) => ({ nodes, places: nodes.map((node) => all[node]) }));
  for (const weights of [
    [0.12, 0.2, 0.29, 0.39],
    [0.7, 0.1, 0.15, 0.05],
    [0.28, 0.26, 0.25, 0.21],
    [0.4, 0.07, 0.42, 0.11],
    [0.1, 0.46, 0.05, 0.39],
    [0.35, 0.3, 0.05, 0.3],
    [0.05, 0.35, 0.31, 0.29],
    [0.03, 0.02, 0.05, 0.9],
  ]) {
    const point = [0, 1, 2].map((k) => weights.reduce((sum, w, i) => sum + w * corners[i][k], 0));
    const around = parts.filter((part) => interpolate([part], numbers, point) !== null);
    assert.equal(around.length, 1, `${around.length} parts have the point ${weights}`);
  }
});

test("in ten-node solids the values at all nodes are met", async () => {
  const page = await openExample("connecting_rod", SMALL);
  const column = exported("connecting_rod");
  const row = new Map(column("nodes", "node").map((number, i) => [number, i]));
  const at = (number) => ["x", "y", "z"].map((k) => column("nodes", k)[row.get(number)]);
  const value = (number) =>
    column("stresses", "von_Mises")[column("stresses", "node").indexOf(number)];
  const edge = [1, 5, 2].map((k) => column("elements", `node${k}`)[1000]); // a corner, the middle, a corner
  await typePoints(page, [at(edge[0]), at(edge[2])]);
  const pieces = await page.evaluate(PIECES);
  const valuesAt = (t) =>
    pieces
      .filter(({ from, to }) => from <= t + 1e-4 && to >= t - 1e-4)
      .map(
        ({ from, to, values }) => values[0] + ((t - from) / (to - from)) * (values[1] - values[0]),
      );
  edge.forEach((number, i) => {
    const found = valuesAt(i / 2);
    assert.ok(found.length > 0, `no value at node ${number}`);
    const nearest = Math.min(...found.map((one) => Math.abs(one / value(number) - 1)));
    assert.ok(nearest < 1e-3, `node ${number}: ${found}, expected ${value(number)}`);
  });
  await page.set("directions", "S");
  assert.ok(
    (await page.evaluate("morlenReport.crosses.geometry.attributes.position.count")) > 1000,
  );
  assert.deepEqual(page.complaints, []);
  await page.close();
});

test("shells are cut along lines, and lines through nodes meet their values", async () => {
  const page = await openModel("plate", slab(8, 8, 3));
  await page.set("colours", "uz");
  await page.set("cut-axis", "y");
  await page.set("cut-place", "3.5");
  const length = await page.evaluate(`(() => {
    const { instanceStart: a, instanceEnd: b } = morlenReport.cutting.section.lines.geometry.attributes;
    let sum = 0;
    for (let i = 0; i < a.count; ++i) sum += Math.abs(a.getX(i) - b.getX(i));
    return sum;
  })()`);
  assertNear(length, 8, 1e-5, "length of the cut");
  await typePoints(page, [
    [0, 4, 0],
    [8, 4, 0],
  ]);
  const pieces = await page.evaluate(PIECES);
  const column = exported("plate");
  const uz = column("nodes", "y").map(
    (y, i) => y === 4 && [column("nodes", "x")[i], column("displacements", "uz")[i]],
  );
  for (const [x, expected] of uz.filter(Boolean)) {
    const near = pieces.flatMap(({ from, to, values }) =>
      [from, to]
        .map((t, i) => (Math.abs(8 * t - x) < 1e-4 ? values[i] : null))
        .filter((one) => one !== null),
    );
    assert.ok(near.length > 0, `no piece ends at x = ${x}`);
    for (const value of near)
      assert.ok(Math.abs(value - expected) < 1e-9, `uz ${value} at ${x}, expected ${expected}`);
  }
  const labels = await page.evaluate("morlenReport.symbols.loads.labels.map(({ text }) => text)");
  assert.deepEqual(labels, ["3 kPa"], "the pressure, once");
  await page.close();
});

/** The load labels as "text x y z", those that surfaces cover last. */
const LOAD_LABELS = `(() => {
  const { symbols, labels, model } = morlenReport;
  const all = symbols.loads.labels, covered = labels.covered(all);
  const nameOf = ({ text, place }) =>
    [text, ...place.map((x, k) => (x + model.box.center[k]).toFixed(1))].join(" ");
  const those = (wanted) => all.filter((_, i) => covered[i] === wanted).map(nameOf).sort();
  return { seen: those(false), covered: those(true) };
})()`;

test("values of loads that a surface covers are left out", async () => {
  const page = await openExample("slab_and_wall", SMALL);
  const labels = async (view) => {
    await page.evaluate(`morlenReport.stage.look("${view}")`);
    await page.frame();
    return page.evaluate(LOAD_LABELS);
  };
  // From above the roof at z = 6 covers the slab at z = 3, whose label is in the same place.
  const [upper, lower] = ["3 3.7 2.7 6.0", "3 3.7 2.7 3.0"];
  const above = await labels("top");
  assert.ok(above.seen.includes(upper), `${above.seen}`);
  assert.ok(above.covered.includes(lower), `${above.covered}`);
  // Behind the walls x = 0 and y = 0, which the usual view shows: the slab, the columns at y = 6.
  const usual = await labels("iso");
  assert.ok(usual.seen.includes(upper) && usual.seen.some((one) => one.startsWith("1 0.0")));
  assert.deepEqual(
    usual.covered.filter((one) => !one.endsWith(" 3.0")).map((one) => one.split(" ")[2]),
    ["6.0", "6.0", "6.0", "6.0"],
  );
  assert.ok(usual.covered.includes(lower), `${usual.covered}`);
  const shown = await page.evaluate(PIXELS);
  // Walls that are hidden cover nothing.
  await page.set("mesh1", false);
  assert.ok((await labels("iso")).seen.includes(lower));
  await page.set("mesh1", true);
  await labels("iso");
  assert.equal(differing(shown, await page.evaluate(PIXELS)), 0, "the view has come back");
  assert.deepEqual(page.complaints, []);
  await page.close();
});

test("symbols, diagrams and numbers of hidden elements are hidden with them", async () => {
  const page = await openExample("slab_and_wall", SMALL);
  const column = exported("slab_and_wall");
  await page.set("diagram", "N");
  await page.set("numbers", true);
  const drawn = () =>
    page.evaluate(`(() => {
      const { symbols, labels, diagrams } = morlenReport;
      const count = (group) => group.children.reduce((sum, one) => sum + (one.count ?? 0), 0);
      const texts = (kind) => labels.sources.get(kind).labels.map(({ text }) => text);
      return { supports: count(symbols.supports.group), loads: texts("loads").sort(),
        nodes: texts("nodes").map(Number), diagrams: diagrams.labels.length };
    })()`);
  const all = await drawn();
  assert.equal(all.supports, column("supports", "node").length);
  assert.equal(all.nodes.length, column("nodes", "node").length);
  assert.deepEqual(all.loads, ["1", "2.25", "2.25", "2.25", "2.25", "2.25", "2.25", "3", "3"]);
  assert.ok(all.diagrams > 0);
  // Material 3 is that of the columns, which stand on 3 nodes; their other nodes belong to slabs.
  const notes = () => page.evaluate("document.querySelector('.legend-note').textContent");
  assert.doesNotMatch(await notes(), /hidden/);
  await page.set("material3", false);
  assert.match(await notes(), /of all elements, hidden ones too/);
  const without = await drawn();
  const kinds = column("elements", "kind");
  const ends = ["node1", "node2", "node3"].map((end) => column("elements", end));
  const ofShells = new Set(
    kinds.flatMap((kind, i) => (kind === "shell" ? ends.map((end) => end[i]) : [])),
  );
  const expected = column("nodes", "node").filter((node) => ofShells.has(node));
  assert.deepEqual(without.nodes, expected);
  assert.equal(expected.length, all.nodes.length - 3);
  assert.equal(without.supports, all.supports - 3);
  assert.deepEqual([without.loads, without.diagrams], [["1", "3", "3"], 0]);
  await page.set("material3", true);
  assert.deepEqual(await drawn(), all);
  assert.deepEqual(page.complaints, []);
  await page.close();
});

test("meshes and materials are hidden and come back", async () => {
  const page = await openExample("slab_and_wall", SMALL);
  const column = exported("slab_and_wall");
  const materials = column("elements", "material"),
    numbers = column("elements", "element");
  const drawn = `[...new Set(morlenReport.views.surfaces.flatMap(({ triangles }) => Array.from(triangles.owner)))]
    .map((e) => morlenReport.model.elements.numbers[e]).sort((a, b) => a - b)`;
  const shells = (test) =>
    numbers
      .filter((_, i) => column("elements", "kind")[i] === "shell" && test(i))
      .sort((a, b) => a - b);
  const before = await page.evaluate(PIXELS);
  await page.set("material1", false);
  assert.deepEqual(
    await page.evaluate(drawn),
    shells((i) => materials[i] !== 1),
  );
  await page.set("mesh1", false);
  assert.deepEqual(
    await page.evaluate(drawn),
    shells((i) => materials[i] !== 1 && column("elements", "mesh")[i] !== 1),
  );
  await page.set("material1", true);
  await page.set("mesh1", true);
  assert.equal(differing(before, await page.evaluate(PIXELS)), 0, "something is missing");
  await page.close();
});

/** A number written in the legend, with its decimals. */
const decimals = (text) => text.split(".")[1]?.length ?? 0;

test("legends have round ticks, 0 where both signs are, and limits that can be typed", async () => {
  const page = await openExample("slab_and_wall", SMALL);
  for (const field of ["points:Mx'", "points:Nxy'", "points:Qx'", "ux", "beams:N"]) {
    await page.set("colours", field);
    const { marks, min, max } = await page.evaluate(`({
      marks: [...legend.querySelectorAll(".marks span")].map((mark) => mark.textContent),
      min: Number(legend.dataset.min), max: Number(legend.dataset.max) })`);
    const values = marks.map(Number);
    const step = values[0] - values[1];
    const leading = Number((step / 10 ** Math.floor(Math.log10(step) + 1e-9)).toFixed(6));
    assert.ok([1, 2, 4, 5].includes(leading), `${field}: steps of ${step}`);
    values.forEach((value) => assertNear(Math.round(value / step) * step, value, 1e-6, field));
    assert.equal(new Set(marks.map(decimals)).size, 1, `${field}: ${marks}`);
    if (min < 0 && max > 0) assert.ok(values.includes(0), `${field}: ${marks}`);
  }
  await page.set("colours", "points:Mx'");
  const wide = await page.evaluate(PIXELS);
  await page.set("legend-low", "-4");
  await page.set("legend-high", "6");
  const typed = await page.evaluate(`({
    marks: [...legend.querySelectorAll(".marks span")].map((mark) => Number(mark.textContent)),
    notes: legend.querySelector(".legend-note").textContent,
    beyond: [-100, -4.1, 5.9, 1e9].map((value) => morlenReport.scale.colour(value).join()) })`);
  assert.deepEqual([typed.marks[0], typed.marks.at(-1)], [6, -4]);
  assert.match(typed.notes, /more than 6\.00.*less than -4\.00/s);
  assert.equal(typed.beyond[0], typed.beyond[1]);
  assert.equal(typed.beyond[2], typed.beyond[3]);
  assert.notEqual(typed.beyond[1], typed.beyond[2]);
  assert.ok(differing(wide, await page.evaluate(PIXELS)) > 100);
  // The largest value keeps its digits under limits that are far larger.
  const noted = () =>
    page.evaluate("document.querySelector('.legend-note').textContent.match(/max (\\S+)/)[1]");
  const before = Number(await noted());
  await page.set("legend-high", "1e6");
  assertNear(Number(await noted()), before, 5e-3, "three digits");
  await page.set("legend-high", "6");
  await page.set("legend-high", "-5");
  assert.equal(await page.evaluate("document.getElementById('legend-high').ariaInvalid"), "true");
  const limits = `morlenReport.scale.low + " " + morlenReport.scale.high`;
  const said = "document.querySelector('.limits [role=status]').textContent";
  assert.match(await page.evaluate(said), /lower limit -4 is not below the upper limit -5/);
  assert.equal(await page.evaluate(limits), "-4 6");
  for (const text of ["abc", "", "1e999", "1,000"]) {
    await page.set("legend-high", text);
    assert.match(await page.evaluate(said), /is no number/, text);
    assert.equal(await page.evaluate(limits), "-4 6");
  }
  await page.set("legend-high", "1,5");
  assert.equal(await page.evaluate(limits), "-4 1.5");
  assert.equal(await page.evaluate(said), "");
  await page.evaluate("document.getElementById('legend-reset').click()");
  await page.frame();
  assert.equal(differing(wide, await page.evaluate(PIXELS)), 0, "limits stay");
  await page.close();
});

const MESSAGE = (place) => `document.querySelector("${place} [role=status]").textContent`;

test("a place of the cut that cannot be used is told, and the cut stays", async () => {
  const page = await barPage();
  await page.set("cut-axis", "x");
  await page.set("cut-place", "1.3");
  const said = MESSAGE(".cut-rows");
  for (const [text, message] of [
    ["abc", "abc is no number; 1.3 stays"],
    ["", "an empty text is no number; 1.3 stays"],
    ["4.5", "4.5 is outside the model, from 0 to 4; 1.3 stays"],
    ["-1", "-1 is outside the model, from 0 to 4; 1.3 stays"],
  ]) {
    await page.set("cut-place", text);
    assert.equal(await page.evaluate(said), message);
    assert.equal(
      await page.evaluate("document.getElementById('cut-place').ariaInvalid"),
      "true",
      text,
    );
    assertNear((await page.evaluate(CUT))[0], 1.3, 1e-6, `the cut after "${text}"`);
  }
  await page.set("cut-place", "2,25");
  assert.equal(await page.evaluate(said), "");
  assert.equal(await page.evaluate("document.getElementById('cut-place').ariaInvalid"), "false");
  assertNear((await page.evaluate(CUT))[0], 2.25, 1e-6, "the cut with a comma");
  await page.set("cut-axis", "");
});

test("a line stays while a coordinate is no number, and needs two places", async () => {
  const page = await barPage();
  await page.set("colours", "ux");
  const [a, b] = [
    [0.2, 0.1, 0.15],
    [3.7, 0.9, 0.65],
  ];
  await typePoints(page, [a, b]);
  const before = await page.evaluate(PIECES);
  const said = MESSAGE(".line-fields");
  for (const [text, message] of [
    ["abc", "abc is no number; the line stays as it is"],
    ["", "an empty text is no number; the line stays as it is"],
  ]) {
    await page.set("line-B-x", text);
    assert.equal(await page.evaluate(said), message);
    assert.equal(
      await page.evaluate("document.getElementById('line-B-x').ariaInvalid"),
      "true",
      text,
    );
    assert.deepEqual(await page.evaluate(PIECES), before);
  }
  await page.set("line-B-x", "2,2");
  assert.equal(await page.evaluate(said), "");
  const moved = await page.evaluate(PIECES);
  assertNear(moved.at(-1).values[1], (STRESS * 2.2) / E, 1e-4, "ux at the new end"); // six digits
  await typePoints(page, [a, a]);
  assert.match(
    await page.evaluate("document.querySelector('.line-chart').textContent"),
    /A and B are the same place/,
  );
  await page.evaluate("document.getElementById('line-clear').click()");
  assert.equal(await page.evaluate(said), "");
  assert.deepEqual(page.complaints, []);
});

test("places far from the origin keep the digits that the model needs", async () => {
  const origin = 1234500;
  const far = pulledBar(4, E, STRESS).replace(/^coordinates$[^]*^end coordinates$/m, (block) =>
    block.replace(/^(\d+) (\d+) /gm, (_, number, x) => `${number} ${origin + Number(x)} `),
  );
  const page = await openModel("far", far);
  await page.set("cut-axis", "x");
  await page.set("cut-place", String(origin + 1.25));
  const shown = "document.getElementById('cut-place').value";
  assert.equal(Number(await page.evaluate(shown)), origin + 1.25);
  await page.evaluate("morlenReport.cutting.line.setPoint(0, [-0.75, 0.125, 0])");
  const x = "document.getElementById('line-A-x').value";
  assert.equal(Number(await page.evaluate(x)), origin + 1.25);
  await page.close();
});

test("the field of a typed limit keeps the focus", async () => {
  const page = await openExample("slab_and_wall", SMALL);
  await page.set("colours", "points:Mx'");
  const active = "document.activeElement.id";
  await page.evaluate("document.querySelector('.limits').open = true");
  await page.evaluate("document.getElementById('legend-low').focus()");
  await page.set("legend-low", "-4");
  assert.equal(await page.evaluate(active), "legend-low");
  assert.equal(await page.evaluate("morlenReport.scale.low"), -4);
  await page.evaluate("document.getElementById('legend-reset').focus()");
  await page.evaluate("document.getElementById('legend-reset').click()");
  assert.equal(await page.evaluate(active), "legend-high", "the button is of no more use");
  assert.equal(await page.evaluate("document.querySelector('.limits').open"), true);
  assert.notEqual(await page.evaluate("morlenReport.scale.low"), -4);
  await page.close();
});

test("the scale of the deformation can be typed", async () => {
  const page = await openExample("portal_frame", SMALL);
  const before = await page.evaluate(PIXELS);
  await page.set("factor", "1234");
  assert.equal(await page.evaluate("morlenReport.factor.value"), 1234);
  const said = "document.querySelector('.tool [role=status]').textContent";
  for (const [text, message] of [
    ["1e12", /1e12 is not between 0 and \d+/],
    ["-5", /-5 is not between 0 and \d+/],
    ["abc", /abc is no number/],
    ["", /an empty text is no number/],
  ]) {
    await page.set("factor", text);
    assert.match(await page.evaluate(said), message);
    assert.equal(await page.evaluate("morlenReport.factor.value"), 1234);
    assert.equal(await page.evaluate("document.getElementById('factor').value"), "1234");
  }
  await page.set("factor", "1,5");
  assert.equal(await page.evaluate("morlenReport.factor.value"), 1.5);
  assert.equal(await page.evaluate(said), "");
  await page.set("factor", "1234");
  assert.ok(differing(before, await page.evaluate(PIXELS)) > 50);
  await page.set("deformation", "0");
  assert.equal(await page.evaluate("document.getElementById('factor').value"), "0");
  await page.close();
});

/** Ends of the lines of the local axes, by frames of three axes. */
const AXES = `(() => {
  const { position } = morlenReport.axes.line.geometry.attributes, frames = [];
  for (let i = 0; i < position.count; i += 6)
    frames.push([0, 2, 4].map((k) => [0, 1, 2].map((c) => position.array[3 * (i + k + 1) + c] - position.array[3 * (i + k) + c])));
  return frames;
})()`;

const directionOf = (a) => a.map((x) => x / Math.hypot(...a));

test("local axes of the selected element, of all, and of inclined supports", async () => {
  const page = await openExample("skew_support", SMALL);
  const visible = "!document.querySelector('.axes-key').hidden";
  assert.equal(await page.evaluate(visible), false);
  await page.set("axes", "selected");
  assert.equal((await page.evaluate(AXES)).length, 1);
  await page.set("axes", "all");
  assert.equal(await page.evaluate(visible), true);
  const frames = (await page.evaluate(AXES)).map((frame) => frame.map(directionOf));
  assert.equal(frames.length, 4, "three beams along X and one inclined support");
  const [cosine, sine] = [Math.cos(Math.PI / 6), Math.sin(Math.PI / 6)];
  const expected = [...Array(3).fill([1, 0, 0]), [cosine, sine, 0]];
  frames.forEach((frame, i) => {
    expected[i].forEach((x, k) =>
      assert.ok(Math.abs(frame[0][k] - x) < 1e-5, `x' of frame ${i}: ${frame[0]}`),
    );
    assert.ok(Math.abs(frame[1][0] + expected[i][1]) < 1e-5, `y' of frame ${i}: ${frame[1]}`);
    assert.ok(frame[2][2] > 0.99999, `z' of frame ${i}: ${frame[2]}`);
  });
  await page.close();
});

/** The files that the page hands over while a button is clicked: [name, type, base64]. */
const saved = (id) => `(async () => {
  const files = [], make = URL.createObjectURL, click = HTMLAnchorElement.prototype.click;
  let blob;
  URL.createObjectURL = (one) => ((blob = one), "data:,");
  HTMLAnchorElement.prototype.click = function () { files.push([this.download, blob]); };
  document.getElementById(${JSON.stringify(id)}).click();
  for (let i = 0; i < 100 && files.length === 0; ++i) await new Promise((done) => setTimeout(done, 50));
  Object.assign(URL, { createObjectURL: make });
  HTMLAnchorElement.prototype.click = click;
  const [name, content] = files[0];
  const bytes = new Uint8Array(await content.arrayBuffer());
  return [name, content.type, btoa(Array.from(bytes, (byte) => String.fromCharCode(byte)).join(""))];
})()`;

test("the picture is saved as PNG, of frames as SVG too", async () => {
  const page = await openExample("portal_frame", SMALL);
  const [name, type, data] = await page.evaluate(saved("save-png"));
  const png = Buffer.from(data, "base64");
  assert.deepEqual([name, type], ["portal_frame.view.png", "image/png"]);
  assert.equal(png.subarray(1, 4).toString(), "PNG");
  const size = await page.evaluate("[morlenReport.stage.width, morlenReport.stage.height]");
  assert.deepEqual([png.readUInt32BE(16), png.readUInt32BE(20)], [2 * size[0], 2 * (size[1] + 44)]);
  const [svgName, svgType, svgData] = await page.evaluate(saved("save-svg"));
  const text = Buffer.from(svgData, "base64").toString();
  assert.deepEqual([svgName, svgType], ["portal_frame.Mz.svg", "image/svg+xml"]);
  const read = await page.evaluate(`(() => {
    const doc = new DOMParser().parseFromString(${JSON.stringify(text)}, "image/svg+xml");
    return { faults: doc.querySelectorAll("parsererror").length, paths: doc.querySelectorAll("path").length,
      texts: [...doc.querySelectorAll("text")].map((t) => t.textContent) };
  })()`);
  assert.equal(read.faults, 0);
  assert.ok(read.paths >= 6, `${read.paths} paths`);
  const [min, max] = extremes(exported("portal_frame")("beam_diagrams", "Mz"));
  for (const value of [min, max])
    assert.ok(
      read.texts.some((one) => Math.abs(Number(one) / value - 1) < 1e-3),
      `${value} in ${read.texts}`,
    );
  const factor = await page.evaluate("document.getElementById('factor').value");
  const title = `portal_frame.dat, Bending moment Mz in force*length, deformed \u00d7 ${factor}`;
  assert.ok(read.texts.includes(title), `${title} in ${read.texts}`);
  await page.set("factor", "0");
  const [, , undeformed] = await page.evaluate(saved("save-svg"));
  assert.match(Buffer.from(undeformed, "base64").toString(), /length, undeformed</);
  assert.deepEqual(page.complaints, []);
  await page.close();
  const solid = await openModel("no_svg", slab(2, 2, 1));
  assert.equal(await solid.evaluate("document.getElementById('save-svg')"), null);
  await solid.close();
});
