// The factor of the displacements: by the slider, whose middle shows them at a usual size, or typed.

import { format } from "./dom.js";

export class Deformation {
  constructor() {
    /** The factor in use; shared with all materials. */
    this.factor = { value: 0 };
    this.typed = null;
  }

  /** The factor at the middle of the slider: the largest displacement is 6% of the model's size. */
  take(model) {
    this.usual = model.largest > 0 ? roundFactor((0.06 * model.box.size) / model.largest) : 1;
  }

  /**
   * A typed factor stays until the slider moves, in other cases too. It is kept between 0 and a
   * thousand times the usual one, with which nothing of the shape would be seen.
   */
  type(value) {
    if (Number.isFinite(value)) this.typed = Math.min(Math.max(value, 0), 1000 * this.usual);
  }

  slide() {
    this.typed = null;
  }

  /** Brings factor, slider and number into agreement. */
  update({ deformation: slider, factor: number }, isEnvelope) {
    const sliding = Number(format(slider.value * this.usual, 3));
    this.factor.value = isEnvelope ? 0 : (this.typed ?? sliding);
    Object.assign(number, { value: String(this.factor.value) });
    if (this.typed !== null) Object.assign(slider, { value: String(this.typed / this.usual) });
  }
}

/** 1, 2 or 5 times a power of ten, below the value. */
function roundFactor(value) {
  const power = 10 ** Math.floor(Math.log10(value));
  return ([5, 2, 1].find((step) => step * power <= value) ?? 1) * power;
}
