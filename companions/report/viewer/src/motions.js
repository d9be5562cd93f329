// Shows a motion that the check has found: the structure swings in it until it is stopped. Where the
// user wants less motion on the screen it stays in its outermost place until it is played.

import { h } from "./dom.js";
import { MotionView } from "./motion_view.js";

const PERIOD = 2600; // ms

export class Motions {
  constructor(report) {
    this.report = report;
    this.text = h("span", {});
    this.play = h("button", { onclick: () => this.setPlaying(!this.isPlaying) }, "Pause");
    this.element = h(
      "div",
      { class: "motion-bar", id: "motion", role: "status", hidden: true },
      h("b", {}, "Motion"),
      this.text,
      h(
        "span",
        { class: "motion-buttons" },
        this.play,
        h("button", { onclick: () => this.stop() }, "Stop"),
      ),
    );
  }

  /** Shows the motion of a finding of the check. */
  show(finding) {
    const { report } = this;
    if (!report.stage) return;
    this.stop();
    this.finding = finding;
    this.view = new MotionView(report.model, report.stage, finding.motion);
    report.stage.scene.add(this.view.group);
    this.text.textContent = finding.text;
    this.element.hidden = false;
    this.time = PERIOD / 4;
    this.view.move(1);
    this.setPlaying(!window.matchMedia("(prefers-reduced-motion: reduce)").matches);
    report.stage.draw();
    this.element.scrollIntoView({ block: "nearest" });
  }

  /** After the scene has been made anew. */
  restore() {
    if (this.finding) this.show(this.finding);
  }

  setPlaying(on) {
    this.isPlaying = on;
    this.play.textContent = on ? "Pause" : "Play";
    cancelAnimationFrame(this.request);
    this.last = null;
    if (on) this.request = requestAnimationFrame((now) => this.step(now));
  }

  step(now) {
    if (!this.isPlaying) return;
    this.time += this.last === null ? 0 : Math.min(100, now - this.last);
    this.last = now;
    this.view.move(Math.sin((2 * Math.PI * this.time) / PERIOD));
    this.report.stage.drawNow();
    this.request = requestAnimationFrame((next) => this.step(next));
  }

  stop() {
    this.setPlaying(false);
    this.element.hidden = true;
    this.finding = null;
    if (!this.view) return;
    this.report.stage.remove(this.view.group);
    this.view = null;
    this.report.stage.draw();
  }
}

/** The button that shows the motion of a finding; null where it has none. */
export function motionButton(finding, onmotion) {
  if (!finding.motion) return null;
  return h("button", { class: "show-motion", onclick: () => onmotion(finding) }, "Show the motion");
}
