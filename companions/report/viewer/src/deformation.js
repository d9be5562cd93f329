// The factor of the displacements: by the slider, whose middle shows them at a usual size, or typed.

import { format } from "./dom.js";
import { complaint, numberIn } from "./number_field.js";

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
   * A typed factor stays until the slider moves, in other cases too. Nothing of the shape would be
   * seen with more than a thousand times the usual factor. Returns the message about a text that
   * cannot be used, "" otherwise.
   */
  type(text) {
    const most = 1000 * this.usual;
    const stays = `${format(this.factor.value)} stays`;
    const noNumber = complaint(text, stays);
    if (noNumber) return noNumber;
    const value = numberIn(text);
    if (value < 0 || value > most)
      return `${text.trim()} is not between 0 and ${format(most)}; ${stays}`;
    this.typed = value;
    return "";
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

/** " \u00d7 200" for a factor of the displacements; nothing for 0. */
export const timesInWords = (factor) => (factor ? ` \u00d7 ${format(factor, 3)}` : "");

export const scaleInWords = (factor) => (factor ? `deformed${timesInWords(factor)}` : "undeformed");

/** 1, 2 or 5 times a power of ten, below the value. */
function roundFactor(value) {
  const power = 10 ** Math.floor(Math.log10(value));
  return ([5, 2, 1].find((step) => step * power <= value) ?? 1) * power;
}
