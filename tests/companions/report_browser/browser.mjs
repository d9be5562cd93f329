// A headless Chromium, spoken to over a pipe by its own protocol: no packages are needed.

import { spawn } from "node:child_process";
import { once } from "node:events";
import { mkdtempSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { pathToFileURL } from "node:url";

// WebGL without a graphics card, and nothing of the browser's own on the network.
const FLAGS = [
  "--headless=new",
  "--no-sandbox",
  "--use-angle=swiftshader",
  "--enable-unsafe-swiftshader",
  "--disable-background-networking",
  "--disable-component-update",
  "--disable-sync",
  "--no-first-run",
  "--disable-dev-shm-usage",
  "--hide-scrollbars",
  "--remote-debugging-pipe",
];

const PATIENCE = 120000; // ms for one answer of the browser

export class Browser {
  static async start(program) {
    const browser = new Browser();
    browser.profile = mkdtempSync(join(tmpdir(), "report-browser-"));
    browser.process = spawn(
      program,
      [...FLAGS, `--user-data-dir=${browser.profile}`, "about:blank"],
      {
        stdio: ["ignore", "ignore", "ignore", "pipe", "pipe"],
      },
    );
    browser.listen();
    return browser;
  }

  listen() {
    this.waiting = new Map();
    this.pages = new Set(); // that are open
    this.handlers = new Map();
    this.last = 0;
    const [, , , , answers] = this.process.stdio;
    let rest = Buffer.alloc(0);
    answers.on("data", (data) => {
      rest = Buffer.concat([rest, data]);
      for (let end = rest.indexOf(0); end >= 0; end = rest.indexOf(0)) {
        this.take(JSON.parse(rest.subarray(0, end).toString()));
        rest = rest.subarray(end + 1);
      }
    });
    this.process.on("exit", () => {
      for (const { reject, limit } of this.waiting.values()) {
        clearTimeout(limit);
        reject(new Error("the browser has ended"));
      }
    });
  }

  take({ id, result, error, method, params, sessionId }) {
    if (id === undefined) return this.handlers.get(sessionId)?.(method, params);
    const { resolve, reject, limit } = this.waiting.get(id);
    clearTimeout(limit);
    this.waiting.delete(id);
    if (error) reject(new Error(error.message));
    else resolve(result);
  }

  send(method, params = {}, sessionId = undefined) {
    const id = ++this.last;
    this.process.stdio[3].write(`${JSON.stringify({ id, method, params, sessionId })}\0`);
    return new Promise((resolve, reject) => {
      const limit = setTimeout(() => reject(new Error(`no answer to ${method}`)), PATIENCE);
      this.waiting.set(id, { resolve, reject, limit });
    });
  }

  async open(file, size) {
    const { targetId } = await this.send("Target.createTarget", { url: "about:blank" });
    const { sessionId } = await this.send("Target.attachToTarget", { targetId, flatten: true });
    const page = new Page(this, targetId, sessionId);
    this.pages.add(page);
    await page.load(file, size);
    return page;
  }

  /** Closes the pages that a failed test has left open: a page that they cover draws nothing. */
  async closePages() {
    for (const page of this.pages) if (!page.isShared) await page.close();
  }

  async close() {
    const ended = once(this.process, "exit");
    this.send("Browser.close").catch(() => {});
    await ended;
    rmSync(this.profile, { recursive: true, force: true, maxRetries: 5, retryDelay: 200 });
  }
}

class Page {
  constructor(browser, target, session) {
    Object.assign(this, { browser, target, session });
    this.requests = []; // addresses that the page asks for
    this.complaints = []; // errors and warnings on its console
    browser.handlers.set(session, (method, params) => this.note(method, params));
  }

  note(method, params) {
    if (method === "Network.requestWillBeSent") this.requests.push(params.request.url);
    if (method === "Runtime.exceptionThrown")
      this.complaints.push(JSON.stringify(params.exceptionDetails));
    if (method === "Runtime.consoleAPICalled" && params.type !== "log")
      this.complaints.push(JSON.stringify(params.args));
    if (method === "Log.entryAdded" && params.entry.level !== "verbose")
      this.complaints.push(params.entry.text);
    if (method === "Page.loadEventFired") this.loaded?.();
  }

  send(method, params) {
    return this.browser.send(method, params, this.session);
  }

  async load(file, { width, height }) {
    for (const domain of ["Page", "Runtime", "Log", "Network"]) await this.send(`${domain}.enable`);
    await this.send("Emulation.setDeviceMetricsOverride", {
      width,
      height,
      deviceScaleFactor: 1,
      mobile: false,
    });
    const loaded = new Promise((resolve) => {
      this.loaded = resolve;
    });
    await this.send("Page.navigate", { url: pathToFileURL(file).href });
    await loaded;
    await this.frame();
  }

  /** The value of an expression in the page. */
  async evaluate(expression) {
    const { result, exceptionDetails } = await this.send("Runtime.evaluate", {
      expression,
      returnByValue: true,
      awaitPromise: true,
    });
    if (exceptionDetails)
      throw new Error(exceptionDetails.exception?.description ?? exceptionDetails.text);
    return result.value;
  }

  /** Waits until what has changed is drawn. */
  frame() {
    return this.evaluate(
      "new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(() => done(0))))",
    );
  }

  async click(x, y) {
    for (const type of ["mousePressed", "mouseReleased"]) {
      await this.send("Input.dispatchMouseEvent", { type, x, y, button: "left", clickCount: 1 });
    }
    await this.frame();
  }

  /** Gives a control a value, as a user does. */
  async set(id, value) {
    await this.evaluate(`{
      const control = document.getElementById(${JSON.stringify(id)});
      if (control.type === "checkbox") control.checked = ${JSON.stringify(value)};
      else control.value = ${JSON.stringify(value)};
      control.dispatchEvent(new Event("input"));
      control.dispatchEvent(new Event("change"));
    }`);
    await this.frame();
  }

  async screenshot(clip = undefined) {
    const { data } = await this.send("Page.captureScreenshot", {
      format: "png",
      clip,
      captureBeyondViewport: clip !== undefined,
    });
    return Buffer.from(data, "base64");
  }

  async pdf() {
    const { data } = await this.send("Page.printToPDF", {
      printBackground: true,
      preferCSSPageSize: true,
      paperWidth: 8.27,
      paperHeight: 11.69,
    });
    return Buffer.from(data, "base64");
  }

  close() {
    this.browser.pages.delete(this);
    return this.browser.send("Target.closeTarget", { targetId: this.target });
  }
}
