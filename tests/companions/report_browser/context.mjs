// The browser and the folder that all tests of the pages share, and how a test gets a page.

import { execFileSync } from "node:child_process";
import { copyFileSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, afterEach } from "node:test";
import { Browser } from "./browser.mjs";

export const [MORLEN, EXPORT, REPORT, CASES, EXAMPLES, CHROMIUM, PICTURES] = process.argv.slice(2);

/** Problem files, results and pages; removed at the end. */
export const folder = mkdtempSync(join(tmpdir(), "report-test-"));

/** One browser for all pages. */
export const browser = await Browser.start(CHROMIUM);

afterEach(() => browser.closePages());

after(async () => {
  await browser.close();
  rmSync(folder, { recursive: true, force: true });
});

/** A small window where nobody looks: the processor draws every pixel. */
export const SIZE = PICTURES ? { width: 1400, height: 900 } : { width: 1120, height: 760 };

export const run = (program, ...args) =>
  execFileSync(program, args, { cwd: folder, encoding: "utf8" });

/** Runs a model and makes its report; the name of the page. */
export function reportOf(model) {
  const base = model.replace(/\.dat$/, "");
  run(MORLEN, model, `${base}.txt`);
  run(REPORT, model, "-o", `${base}.html`);
  return join(folder, `${base}.html`);
}

export function exampleReport(name) {
  copyFileSync(join(EXAMPLES, `${name}.dat`), join(folder, `${name}.dat`));
  return reportOf(`${name}.dat`);
}

/** The tables of morlen-export: a function that returns a column. */
export function exported(name) {
  run(EXPORT, `${name}.dat`, "--json", `${name}.json`);
  const { tables } = JSON.parse(readFileSync(join(folder, `${name}.json`), "utf8"));
  return (table, column) => {
    const { columns, rows } = tables[table];
    const place = columns.findIndex((one) => one.name === column);
    return rows.map((row) => row[place]);
  };
}

/** Leaves a picture of a page where somebody looks. */
export async function picture(page, name) {
  if (PICTURES) writeFileSync(join(PICTURES, `${name}.png`), await page.screenshot());
}

export async function openExample(name, size = SIZE) {
  const page = await browser.open(exampleReport(name), size);
  await picture(page, name);
  return page;
}
