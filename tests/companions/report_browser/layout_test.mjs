// The page around the view: narrow screens, light and dark, keys, accessibility, print, accuracy,
// motions that the check finds.

import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { existsSync, readFileSync, writeFileSync } from "node:fs";
import { dirname, join } from "node:path";
import { test } from "node:test";
import { fileURLToPath } from "node:url";
import {
  PICTURES,
  REPORT,
  browser,
  exampleReport,
  exported,
  folder,
  openExample,
  picture,
} from "./context.mjs";
import { assertNear } from "./helpers.mjs";

const PHONE = { width: 400, height: 800 };
const SMALL = { width: 900, height: 640 };

/** Opens a page as on a phone. */
async function openOnPhone(name) {
  const page = await browser.open(exampleReport(name), PHONE);
  await page.send("Emulation.setDeviceMetricsOverride", {
    ...PHONE,
    deviceScaleFactor: 1,
    mobile: true,
  });
  await page.send("Emulation.setTouchEmulationEnabled", { enabled: true });
  await page.frame();
  return page;
}

const setMedia = (page, media, ...features) =>
  page.send("Emulation.setEmulatedMedia", {
    media,
    features: features.map(([name, value]) => ({ name, value })),
  });

const CODES = { Tab: 9, Enter: 13, Escape: 27 };

async function press(page, key, modifiers = 0) {
  const windowsVirtualKeyCode = CODES[key];
  const text = key.length === 1 ? key : key === "Enter" ? "\r" : undefined;
  await page.send("Input.dispatchKeyEvent", {
    type: text ? "keyDown" : "rawKeyDown",
    key,
    text,
    modifiers,
    windowsVirtualKeyCode,
  });
  await page.send("Input.dispatchKeyEvent", { type: "keyUp", key, modifiers });
}

/** Elements that reach over the right edge, outside of boxes that scroll. */
const overhanging = (width, root) => `(() => {
  const scrolls = (one) => one && one !== document.documentElement &&
    (/auto|scroll|hidden/.test(getComputedStyle(one).overflowX) || scrolls(one.parentElement));
  return [...document.querySelectorAll(${JSON.stringify(root)} + " *")]
    .filter((one) => one.getClientRects().length && !scrolls(one.parentElement))
    .filter((one) => one.getBoundingClientRect().right > ${width} + 0.5)
    .map((one) => one.outerHTML.slice(0, 100));
})()`;

const BOX = (selector) =>
  `(({ left, right, top, bottom }) => ({ left, right, top, bottom }))(document.querySelector(${JSON.stringify(selector)}).getBoundingClientRect())`;

test("on a phone nothing is wider than the page, and the controls fold", async () => {
  for (const name of ["portal_frame", "slab_and_wall"]) {
    const page = await openOnPhone(name);
    await picture(page, `${name}-phone`);
    assert.equal(await page.evaluate("document.documentElement.scrollWidth"), 400);
    assert.equal(await page.evaluate("innerWidth"), 400);
    assert.deepEqual(await page.evaluate(overhanging(400, "body")), []);
    const hidden = "getComputedStyle(document.getElementById('toolbar')).display === 'none'";
    assert.equal(await page.evaluate(hidden), true);
    await page.evaluate("document.querySelector('.toolbar-fold').click()");
    await page.frame();
    assert.equal(await page.evaluate(hidden), false);
    assert.deepEqual(await page.evaluate(overhanging(400, "#toolbar")), []);
    await page.set("colours", "beams:N");
    const [frame, canvas, legend, panel] = [
      await page.evaluate(BOX(".frame")),
      await page.evaluate(BOX(".canvas")),
      await page.evaluate(BOX("#legend")),
      await page.evaluate(BOX("#panel")),
    ];
    assert.ok(legend.left >= frame.left && legend.right <= frame.right, "legend beside the view");
    assert.ok(legend.top >= canvas.bottom - 0.5 && legend.bottom <= frame.bottom + 0.5);
    assert.ok(panel.top >= frame.bottom - 0.5, "panel beside the view");
    assert.ok(canvas.bottom - canvas.top < 0.6 * 800, "no room to scroll beside the view");
    assert.deepEqual(page.complaints, []);
    await page.close();
  }
});

const CAMERA = `(({ camera, controls }) => ({
  direction: camera.position.clone().sub(controls.target).normalize().toArray(),
  target: controls.target.toArray(), zoom: camera.zoom }))(morlenReport.stage)`;

const apart = (a, b) => Math.hypot(...a.map((x, i) => x - b[i]));

test("fingers turn and zoom the view, and scroll the page beside it", async () => {
  const page = await openOnPhone("slab_and_wall");
  await page.evaluate("document.querySelector('.canvas').scrollIntoView({ block: 'center' })");
  const { left, top } = await page.evaluate(BOX(".canvas"));
  const touch = (type, ...points) =>
    page.send("Input.dispatchTouchEvent", {
      type,
      touchPoints: points.map(([x, y], id) => ({ x: left + x, y: top + y, id })),
    });
  const before = await page.evaluate(CAMERA);
  await touch("touchStart", [150, 150]);
  await touch("touchMove", [210, 150]);
  await touch("touchEnd");
  await page.frame();
  const turned = await page.evaluate(CAMERA);
  assert.ok(apart(before.direction, turned.direction) > 0.1, "one finger does not turn");
  assertNear(turned.direction[2], before.direction[2], 1e-6, "height of the camera");
  assert.equal(turned.zoom, before.zoom);
  await touch("touchStart", [150, 150], [200, 150]);
  await touch("touchMove", [130, 150], [220, 150]);
  await touch("touchMove", [110, 150], [240, 150]);
  await touch("touchEnd");
  await page.frame();
  assert.ok((await page.evaluate(CAMERA)).zoom > 1.2 * before.zoom, "two fingers do not zoom");
  const action = (selector) =>
    page.evaluate(`getComputedStyle(document.querySelector("${selector}")).touchAction`);
  assert.equal(await action(".canvas canvas"), "none");
  for (const selector of ["#panel", ".cards", "body"])
    assert.equal(await action(selector), "auto", selector);
  await page.close();
});

/** The colour of the first pixel of the view. */
const GROUND = `(() => {
  const copy = document.createElement("canvas");
  copy.width = copy.height = 1;
  const context = copy.getContext("2d");
  context.drawImage(document.querySelector(".canvas canvas"), 0, 0, 1, 1, 0, 0, 1, 1);
  return [...context.getImageData(0, 0, 1, 1).data].slice(0, 3);
})()`;
const PAPER =
  "getComputedStyle(document.querySelector('.view')).backgroundColor.match(/\\d+/g).map(Number)";

test("light and dark follow the system or the choice, which is remembered", async () => {
  const page = await openExample("slab_and_wall", SMALL);
  const grounds = async () => {
    await page.frame();
    return [await page.evaluate(GROUND), await page.evaluate(PAPER)];
  };
  const isDark = (colour) => Math.max(...colour) < 60;
  const white = [255, 255, 255];
  assert.deepEqual(await grounds(), [white, white]);
  await setMedia(page, "", ["prefers-color-scheme", "dark"]);
  const [ground, paper] = await grounds();
  await picture(page, "slab_and_wall-dark");
  assert.equal(await page.evaluate("document.querySelectorAll('#menu-section').length"), 1);
  assert.ok(isDark(ground) && isDark(paper), `${ground} ${paper}`);
  assert.deepEqual(ground, paper);
  await page.set("appearance", "light");
  assert.deepEqual(await grounds(), [white, white]);
  await page.set("appearance", "dark");
  await setMedia(page, "", ["prefers-color-scheme", "light"]);
  assert.ok((await grounds()).every(isDark));
  await page.load(join(folder, "slab_and_wall.html"), SMALL);
  assert.ok((await grounds()).every(isDark), "the choice is forgotten");
  // Print is light, and the page is dark again afterwards.
  await page.evaluate(`addEventListener("beforeprint", () => {
    const picture = document.querySelector(".print-view canvas");
    window.printed = [...picture.getContext("2d").getImageData(0, 0, 1, 1).data].slice(0, 3);
  })`);
  await page.pdf();
  assert.deepEqual(await page.evaluate("printed"), white);
  assert.ok((await grounds()).every(isDark));
  await page.set("appearance", "auto");
  assert.deepEqual(page.complaints, []);
  await page.close();
});

const FOCUS = `(() => {
  const { activeElement: one } = document;
  const { outlineStyle, outlineWidth } = getComputedStyle(one);
  return { id: one.id, name: one.tagName, class: one.className, role: one.getAttribute("role"),
    visible: outlineStyle !== "none" && parseFloat(outlineWidth) > 0 };
})()`;

/** Goes on by Tab until the focus is on an element; all stops on the way are visible. */
async function tabTo(page, isWanted) {
  for (let i = 0; i < 80; ++i) {
    await press(page, "Tab");
    const focus = await page.evaluate(FOCUS);
    assert.ok(focus.visible, `the focus on ${JSON.stringify(focus)} cannot be seen`);
    if (isWanted(focus)) return;
  }
  assert.fail("Tab does not reach it");
}

const HEADING = "document.querySelector('#panel h3')?.textContent ?? ''";
const SHIFT = 8;

test("keys alone turn the view, go through elements and tables", async () => {
  const page = await openExample("space_frame", SMALL);
  await tabTo(page, (focus) => focus.class === "canvas");
  const first = await page.evaluate(CAMERA);
  await press(page, "ArrowRight");
  const turned = await page.evaluate(CAMERA);
  assert.ok(apart(first.direction, turned.direction) > 0.05, "arrows do not turn");
  assert.deepEqual(turned.target, first.target);
  await press(page, "ArrowDown", SHIFT);
  const moved = await page.evaluate(CAMERA);
  assert.ok(apart(moved.target, turned.target) > 0.01, "Shift and arrows do not move");
  assert.ok(apart(moved.direction, turned.direction) < 1e-6);
  await press(page, "+");
  assertNear((await page.evaluate(CAMERA)).zoom, 1.2 * moved.zoom, 1e-9, "zoom");
  for (const [key, direction] of [
    ["2", [0, -1, 0]],
    ["3", [1, 0, 0]],
    ["4", [0, 0, 1]],
  ]) {
    await press(page, key);
    const looked = (await page.evaluate(CAMERA)).direction;
    assert.ok(apart(looked, direction) < 1e-4, `${key}: ${looked}`);
  }
  await press(page, "Escape");
  assert.equal(await page.evaluate(HEADING), "");
  await press(page, "n");
  await press(page, "n");
  assert.equal(await page.evaluate(HEADING), "Member 2 to 14");
  await press(page, "p");
  assert.equal(await page.evaluate(HEADING), "Member 1 to 13");
  await page.frame();
  const said = "document.getElementById('announcement').textContent";
  assert.match(await page.evaluate(said), /^Member 1 to 13, From node 1 .*Length 4/);
  await page.evaluate("new Promise((done) => setTimeout(done, 600))");
  assert.match(
    await page.evaluate("document.getElementById('view-text').textContent"),
    /^Structure of 180 elements and 84 nodes, 18 by 10 by 20 m\..*Selected: Member 1 to 13/,
  );
  await page.set("diagram", "Mz");
  await page.set("axes", "selected");
  await page.evaluate("new Promise((done) => setTimeout(done, 600))");
  assert.match(
    await page.evaluate("document.getElementById('view-text').textContent"),
    / m\. Colours: [^:.]*\. Diagram: Bending moment Mz\. local axes: of the selected element\. /,
  );
  // Along the first diagram of the member, N, and on to the next one.
  await tabTo(page, (focus) => focus.role === "slider");
  for (let i = 0; i < 5; ++i) await press(page, "ArrowRight");
  const force = exported("space_frame")("beam_diagrams", "N")[5];
  const read = "document.querySelector('#panel .readout').textContent";
  const [, place, axial] = (await page.evaluate(read)).match(/^x\u2032 = (\S+) m +N = (\S+)/);
  assertNear(Number(place), (4 * 5) / 20, 1e-4, "place along the member");
  assertNear(Number(axial), force, 1e-4, "axial force");
  await press(page, "ArrowDown");
  assert.match(
    await page.evaluate("document.activeElement.getAttribute('aria-label')"),
    /^Shear force Vy/,
  );
  assert.equal(
    await page.evaluate("document.activeElement.getAttribute('aria-valuetext')"),
    await page.evaluate(read),
  );
  await tabTo(page, (focus) => focus.role === "tab");
  const open = "document.querySelector('[role=tab][aria-selected=true]').dataset.table";
  assert.equal(await page.evaluate(open), "reactions");
  await press(page, "ArrowRight");
  assert.equal(await page.evaluate(open), "members");
  await press(page, "ArrowRight");
  assert.equal(await page.evaluate(open), "beam_diagrams");
  await tabTo(page, (focus) => focus.role === "grid");
  for (let i = 0; i < 45; ++i) await press(page, "ArrowDown");
  await press(page, "Enter");
  // 21 rows for each beam: row 45 is of the third one.
  assert.equal(await page.evaluate(HEADING), "Member 3 to 15");
  assert.deepEqual(
    await page.evaluate(`(() => {
      const grid = document.querySelector("[role=grid]");
      const row = document.getElementById(grid.getAttribute("aria-activedescendant"));
      const box = row.getBoundingClientRect(), around = grid.parentElement.getBoundingClientRect();
      return [row.rowIndex > 0, box.top >= around.top, box.bottom <= around.bottom];
    })()`),
    [true, true, true],
  );
  assert.deepEqual(page.complaints, []);
  await page.close();
});

test("readers tell units and counts as words, and forced colours keep the legend", async () => {
  const page = await openExample("space_frame", SMALL);
  await page.send("Accessibility.enable");
  const { nodes } = await page.send("Accessibility.getFullAXTree");
  const names = (role) =>
    nodes.filter((one) => one.role?.value === role).map((one) => one.name.value);
  assert.ok(names("tab").includes("Reactions 12"), `${names("tab")}`);
  assert.ok(names("columnheader").includes("Px kN"), `${names("columnheader")}`);
  const colours = `[...document.querySelectorAll(".bands span")]
    .map((one) => getComputedStyle(one).backgroundColor)`;
  const usual = await page.evaluate(colours);
  assert.equal(new Set(usual).size, 10, `${usual}`);
  await setMedia(page, "", ["forced-colors", "active"]);
  assert.deepEqual(await page.evaluate(colours), usual);
  await page.close();
});

test("without WebGL the page says so, and all but the view works", async () => {
  const page = await openExample("slab_and_wall", SMALL);
  await page.send("Page.addScriptToEvaluateOnNewDocument", {
    source: `{
      const { getContext } = HTMLCanvasElement.prototype;
      HTMLCanvasElement.prototype.getContext = function (kind, ...rest) {
        return /webgl/.test(kind) ? null : getContext.call(this, kind, ...rest);
      };
    }`,
  });
  await page.load(join(folder, "slab_and_wall.html"), SMALL);
  assert.match(
    await page.evaluate("document.querySelector('.canvas').textContent"),
    /^The view needs WebGL, which this browser does not offer\. The tables.*hardware acceleration/,
  );
  assert.match(
    await page.evaluate("document.getElementById('panel').textContent"),
    /^Click on a row of a table, for its diagrams and values\.$/,
  );
  await page.evaluate("document.querySelector('[role=grid] tbody tr:nth-child(2)').click()");
  assert.match(await page.evaluate(HEADING), /^Node /);
  await page.evaluate("document.getElementById('print').click()");
  assert.deepEqual(
    await page.evaluate(
      "[...document.querySelectorAll('dialog legend')].map((one) => one.textContent)",
    ),
    ["Elements and tables"],
  );
  await page.evaluate("document.querySelector('dialog').close()");
  await page.pdf();
  const faults = page.complaints.filter((one) => !/WebGL/.test(one));
  assert.deepEqual(faults, []);
  await page.close();
});

const AXE = join(
  dirname(fileURLToPath(import.meta.url)),
  "../../../companions/report/viewer/node_modules/axe-core/axe.min.js",
);

test(
  "axe finds no serious fault in light, dark and on a phone",
  { skip: existsSync(AXE) ? false : "axe-core is not installed: scripts/install_viewer_tools.sh" },
  async () => {
    const axe = readFileSync(AXE, "utf8");
    const serious = `axe.run().then(({ violations, passes }) => {
      if (passes.length < 10) throw new Error("axe has not looked at the page");
      return violations.filter(({ impact }) => /serious|critical/.test(impact))
        .map(({ id, nodes }) => id + ": " + nodes[0].html.slice(0, 150));
    })`;
    for (const [name, ...modes] of [
      ["portal_frame", "light", "dark"],
      ["slab_and_wall", "dark"],
    ]) {
      const page = await openExample(name, SMALL);
      await page.evaluate(`${axe}; 0`);
      for (const mode of modes) {
        await page.set("appearance", mode);
        assert.deepEqual(await page.evaluate(serious), [], `${name} ${mode}`);
      }
      await page.set("appearance", "auto");
      await page.send("Emulation.setDeviceMetricsOverride", {
        ...PHONE,
        deviceScaleFactor: 1,
        mobile: true,
      });
      await page.evaluate("document.querySelector('.toolbar-fold').click()");
      await page.frame();
      assert.deepEqual(await page.evaluate(serious), [], `${name} on a phone`);
      await page.evaluate("document.getElementById('print').click()");
      assert.deepEqual(await page.evaluate(serious), [], `${name}, dialog`);
      await page.close();
    }
  },
);

/** The members with the largest |value| of each force, in a frame where each beam is a member. */
function leadersOf(name) {
  const value = exported(name);
  const members = value("beam_diagrams", "element");
  const numbers = value("elements", "element");
  const [first, second] = ["node1", "node2"].map((end) => value("elements", end));
  const nameOf = (beam) => {
    const row = numbers.indexOf(beam);
    return `${first[row]} to ${second[row]}`;
  };
  return ["N", "Vy", "Vz", "T", "My", "Mz"].map((force) => {
    const sizes = value("beam_diagrams", force).map(Math.abs);
    return nameOf(members[sizes.indexOf(Math.max(...sizes))]);
  });
}

const A4 = { width: 794, height: 1123 }; // at 96 dots an inch
const PRINTED = 688; // less twice 14 mm

test("the chosen views and members print on A4", async () => {
  const page = await openExample("space_frame", SMALL);
  await page.evaluate("window.print = () => dispatchEvent(new Event('beforeprint'))");
  await page.evaluate("document.getElementById('print').click()");
  for (const id of ["front", "undeformed"]) await page.set(`print-${id}`, true);
  await page.set("print-members", "6");
  await page.set("print-rows", "100");
  await picture(page, "print-dialog");
  await page.evaluate("document.querySelector('dialog .primary').click()");
  const sheet = await page.evaluate(`({
    captions: [...document.querySelectorAll("#print-sheet .print-view figcaption")].map((one) => one.textContent),
    drawn: [...document.querySelectorAll("#print-sheet .print-view canvas")].map((one) => {
      const { data } = one.getContext("2d").getImageData(0, 0, one.width, one.height);
      let count = 0;
      for (let i = 0; i < data.length; i += 4) count += data[i] + data[i + 1] + data[i + 2] < 600;
      return count / (one.width * one.height);
    }),
    members: [...document.querySelectorAll("#print-sheet .print-element h3")].map((one) => one.textContent),
    tables: [...document.querySelectorAll("#print-sheet caption")].map((one) => one.textContent),
    dialogs: document.querySelectorAll("dialog").length })`);
  assert.deepEqual(sheet.captions, [
    "View, deformed \u00d7 200",
    "View XZ, deformed \u00d7 200",
    "Undeformed shape",
  ]);
  assert.deepEqual(
    await page.evaluate(
      "['.legend', '.limits'].map((one) => document.querySelectorAll(`#print-sheet ${one}`).length)",
    ),
    [3, 0],
  );
  for (const part of sheet.drawn) assert.ok(part > 0.01, `${part} of a picture is drawn`);
  for (const member of leadersOf("space_frame"))
    assert.ok(sheet.members.includes(`Member ${member}`), `${member} of ${sheet.members}`);
  for (const title of ["Displacements", "Reactions", "Materials, continued"])
    assert.ok(sheet.tables.includes(title), `${title} of ${sheet.tables}`);
  // All supports are clamped: their six values are 0, and no line has them.
  assert.ok(!sheet.tables.includes("Supports, continued"), `${sheet.tables}`);
  assert.match(
    await page.evaluate(`[...document.querySelectorAll("#print-sheet caption")]
      .find((one) => one.textContent === "Supports").parentElement.nextElementSibling.textContent`),
    /^0 or empty in all rows: value1, value2, value3, value4, value5, value6(, Euler\d)*\.$/,
  );
  assert.equal(sheet.dialogs, 0);
  // On paper nothing is wider than the page, nothing else of the page is seen, heads are repeated.
  await setMedia(page, "print");
  await page.send("Emulation.setDeviceMetricsOverride", {
    ...A4,
    width: PRINTED,
    deviceScaleFactor: 1,
    mobile: false,
  });
  assert.deepEqual(await page.evaluate(overhanging(PRINTED, "body")), []);
  assert.equal(await page.evaluate("document.documentElement.scrollWidth"), PRINTED);
  assert.deepEqual(
    await page.evaluate(
      "[...document.querySelectorAll('main > *')].filter((one) => one.getClientRects().length).map((one) => one.id)",
    ),
    ["print-sheet"],
  );
  assert.equal(
    await page.evaluate("getComputedStyle(document.querySelector('.printed thead')).display"),
    "table-header-group",
  );
  await setMedia(page, "");
  await page.evaluate("dispatchEvent(new Event('afterprint'))");
  assert.equal(await page.evaluate("document.querySelector('#print-sheet').children.length"), 0);
  const pdf = await page.pdf();
  const boxes = [...pdf.toString("latin1").matchAll(/\/MediaBox\s*\[([^\]]*)\]/g)];
  assert.ok(boxes.length > 2, `${boxes.length} pages`);
  for (const [, box] of boxes) assertNear(Number(box.trim().split(/\s+/)[2]), 595, 2e-3, "width");
  if (PICTURES) writeFileSync(join(PICTURES, "space_frame.pdf"), pdf);
  const text = spawnSync("pdftotext", ["-layout", "-", "-"], { input: pdf, encoding: "utf8" });
  if (!text.error) {
    // The head of the displacements, which fill more than a page.
    assert.match(text.stdout, new RegExp(`1 ?/ ?${boxes.length}\\n`), "number of the page");
    const heads = text.stdout.split("\f").filter((one) => /node +ux m? +uy m? +uz/.test(one));
    assert.ok(heads.length >= 2, `a head on ${heads.length} pages`);
  }
  assert.deepEqual(page.complaints, []);
  await page.close();
});

/** Writes a copy of a page whose data has other values under some keys. */
function changedPage(file, name, change) {
  const html = readFileSync(file, "utf8");
  const [before, after] = ['<script type="application/json" id="data">', "</script>"];
  const begin = html.indexOf(before) + before.length;
  const end = html.indexOf(after, begin);
  const data = { ...JSON.parse(html.slice(begin, end)), ...change };
  const changed = join(folder, name);
  writeFileSync(changed, html.slice(0, begin) + JSON.stringify(data) + html.slice(end));
  return changed;
}

test("the head tells the solver and the accuracy, or that they are unknown", async () => {
  const file = exampleReport("portal_frame");
  const none = { version: null, solver: null, why: null, iterations: null, residual: null };
  const known = {
    state: "matches",
    version: "0.1.0",
    solver: "Direct",
    why: "the matrix is small",
    iterations: null,
    residual: 3.2e-15,
    estimatedError: 2e-12,
    equations: 15,
  };
  const cases = [
    [undefined, /unknown: solver, residual of the solution, estimated error$/, /no record/],
    [{ state: "absent", ...none }, /unknown: solver/, /There is no record of the run/],
    [{ state: "differs", ...none }, /unknown: solver/, /of another state of the problem file/],
    [
      known,
      /Solver Direct ?Residual of the solution 3\.2e-15 ?Estimated error 2\.0e-12$/,
      /solved 15 equations\. Why it was chosen: the matrix is small\./,
    ],
  ];
  for (const [run, line, meaning] of cases) {
    const page = await browser.open(changedPage(file, "run.html", { run }), SMALL);
    const text = (selector) =>
      page.evaluate(
        `document.querySelector("${selector}").textContent.replace(/\\s+/g, " ").trim()`,
      );
    assert.match(await text("#accuracy summary"), line);
    assert.match(await text("#accuracy dl"), meaning);
    assert.match(
      await text("#accuracy dl"),
      /Residual of equilibrium: \d\.\de-\d+ ?The largest sum/,
    );
    await page.close();
  }
});

/** A portal whose columns are hinged at both ends, beside a clamped column. */
const MECHANISM = `problem type: 2d
mesh dimension = 2 elemtype Linear nnode = 2
coordinates
1 0 0
2 0 3
3 4 3
4 4 0
5 6 0
6 6 2
end coordinates
elements
1 1 2 1
2 2 3 1
3 3 4 1
4 5 6 1
end elements
materials
1 E=1e6 A=0.1 Iz=0.01
end materials
constraints
1 110 0 0 0
4 110 0 0 0
5 111 0 0 0
end constraints
elem_rotules
1 00
2 00
3 00
end elem_rotules
nodal_point_loads
2 5 -3 0
end nodal_point_loads
`;

test("a model that can move gets a page that shows the motion", async () => {
  writeFileSync(join(folder, "mechanism.dat"), MECHANISM);
  const made = spawnSync(REPORT, ["mechanism.dat"], { cwd: folder, encoding: "utf8" });
  assert.equal(made.status, 1, made.stderr);
  assert.match(made.stderr, /^warning: there are no results of this model/);
  const page = await browser.open(join(folder, "mechanism.html"), SMALL);
  await picture(page, "mechanism");
  const text = (selector) => page.evaluate(`document.querySelector("${selector}").textContent`);
  assert.equal(await text(".badge.bad"), "no results");
  assert.match(await text("header .alert"), /nodes 2 and 3 can move along x.*Show the motion/);
  assert.match(await text("#motion"), /nodes 2 and 3 can move along x/);
  // Nodes 2 and 3 move along x by the same, the others rest.
  const vectors = await page.evaluate("Array.from(morlenReport.motions.view.vectors)");
  const sign = Math.sign(vectors[3]);
  const expected = [2, 3].flatMap((node) => [3 * (node - 1), sign]);
  vectors.forEach((value, i) => {
    const wanted = i === expected[0] || i === expected[2] ? sign : 0;
    assert.ok(Math.abs(value - wanted) < 1e-6, `component ${i} is ${value}`);
  });
  const amplitude = "morlenReport.motions.view?.amplitude.value";
  const later = (ms) => page.evaluate(`new Promise((done) => setTimeout(done, ${ms}))`);
  const start = await page.evaluate(amplitude);
  await later(400);
  assert.notEqual(await page.evaluate(amplitude), start);
  const button = (name) =>
    page.evaluate(
      `[...document.querySelectorAll("#motion button")].find((one) => one.textContent === "${name}").click()`,
    );
  await button("Pause");
  const paused = await page.evaluate(amplitude);
  await later(200);
  assert.equal(await page.evaluate(amplitude), paused);
  await button("Stop");
  assert.equal(await page.evaluate("document.getElementById('motion').hidden"), true);
  await page.evaluate("morlenReport.select(0)");
  assert.equal(await page.evaluate(HEADING), "Member 1 to 2");
  assert.equal(await page.evaluate("document.querySelectorAll('#panel .diagram').length"), 0);
  // Without animation where the user wants none; the outermost place is seen.
  await setMedia(page, "", ["prefers-reduced-motion", "reduce"]);
  await page.evaluate("document.querySelector('header .show-motion').click()");
  const still = await page.evaluate(amplitude);
  await later(200);
  assert.equal(await page.evaluate(amplitude), still);
  assert.ok(still > 0.05 * Math.hypot(6, 3), `${still}`);
  assert.deepEqual(page.complaints, []);
  await page.close();
});
