// Light and dark: the choice of the user, and the colours of theme.css for drawings by script.

const KEY = "morlen-report-appearance";
const CHOICES = ["auto", "light", "dark"];

/** The choice that the browser has stored; null without one, or where files may not store. */
function remembered() {
  try {
    return window.localStorage.getItem(KEY);
  } catch {
    return null;
  }
}

function remember(choice) {
  try {
    window.localStorage.setItem(KEY, choice);
  } catch {
    // The choice holds for this page only.
  }
}

class Theme {
  constructor() {
    this.listeners = [];
    this.forced = null;
    const choice = remembered();
    this.choice = CHOICES.includes(choice) ? choice : "auto";
    this.system = window.matchMedia("(prefers-color-scheme: dark)");
    this.system.addEventListener("change", () => this.apply());
    this.apply();
  }

  /** The present colours: "light" or "dark". */
  get shown() {
    if (this.forced) return this.forced;
    if (this.choice !== "auto") return this.choice;
    return this.system.matches ? "dark" : "light";
  }

  get isDark() {
    return this.shown === "dark";
  }

  /** choice: "auto" (as the system), "light" or "dark". */
  choose(choice) {
    this.choice = choice;
    remember(choice);
    this.apply();
  }

  /** Shows the light colours while it is on: for the printer. */
  forceLight(on) {
    this.forced = on ? "light" : null;
    this.apply();
  }

  apply() {
    const root = document.documentElement;
    if (root.dataset.theme === this.shown) return;
    root.dataset.theme = this.shown;
    this.colours = new Map();
    for (const listener of this.listeners) listener();
  }

  /** Calls back after every change between light and dark. */
  onChange(listener) {
    this.listeners.push(listener);
  }

  /** A colour of theme.css by its name without the two hyphens, for CSS and for canvases. */
  css(name) {
    if (!this.colours.has(name)) {
      const value = getComputedStyle(document.documentElement).getPropertyValue(`--${name}`);
      this.colours.set(name, value.trim());
    }
    return this.colours.get(name);
  }

  /** The same as red, green and blue from 0 to 1, without its opacity. */
  rgb(name) {
    const digits = this.css(name);
    return [1, 3, 5].map((i) => parseInt(digits.slice(i, i + 2), 16) / 255);
  }

  /** The same as one number, for three.js. */
  hex(name) {
    return parseInt(this.css(name).slice(1, 7), 16);
  }
}

export const theme = new Theme();
