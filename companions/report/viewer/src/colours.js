// Colour maps with even steps of perceived lightness, made in the colour space OKLab
// (Ottosson, "A perceptual color space for image processing", 2020).

import * as THREE from "three";
import { theme } from "./theme.js";
import { roundStep, ticksBetween } from "./ticks.js";

function toSrgb(linear) {
  const value = linear <= 0.0031308 ? 12.92 * linear : 1.055 * linear ** (1 / 2.4) - 0.055;
  return Math.min(1, Math.max(0, value));
}

/** sRGB (0..1) of lightness, chroma and hue in degrees. */
function oklch(lightness, chroma, hue) {
  const a = chroma * Math.cos((hue * Math.PI) / 180);
  const b = chroma * Math.sin((hue * Math.PI) / 180);
  const l = (lightness + 0.3963377774 * a + 0.2158037573 * b) ** 3;
  const m = (lightness - 0.1055613458 * a - 0.0638541728 * b) ** 3;
  const s = (lightness - 0.0894841775 * a - 1.291485548 * b) ** 3;
  return [
    toSrgb(4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s),
    toSrgb(-1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s),
    toSrgb(-0.0041960863 * l - 0.7034186147 * m + 1.707614701 * s),
  ];
}

const mix = (a, b, t) => a + (b - a) * t;

/** From dark blue over green to light yellow, for values of one sign; lighter on a dark ground. */
function sequential(t) {
  return oklch(mix(theme.isDark ? 0.46 : 0.32, 0.93, t), 0.1 + 0.04 * t, mix(285, 102, t));
}

/** Blue below, red above, light in the middle, for values of both signs. */
function diverging(t) {
  const away = Math.abs(2 * t - 1);
  return oklch(mix(0.95, 0.46, away), 0.165 * Math.min(1, 1.25 * away), t < 0.5 ? 255 : 28);
}

const BANDS = 15; // at most, and at least two fifths of them

/**
 * Colours of a range of values in bands, whose limits are multiples of a round step. Without limits
 * the scale goes outward to the next multiples; given limits [low, high] are its ends, and values
 * beyond them have the colours of the end bands. 0 lies in the middle of the map when it lies inside.
 */
export class ColourScale {
  constructor(min, max, limits = null) {
    const [low, high] = limits ?? [min, max];
    this.step = roundStep(high > low ? (high - low) / BANDS : Math.abs(low) || 1);
    const first = Math.floor(low / this.step + 1e-9);
    this.base = first * this.step;
    this.bands = Math.max(1, Math.ceil(high / this.step - 1e-9) - first);
    const end = this.base + this.bands * this.step;
    /** The ends of the scale. */
    [this.low, this.high] = limits ?? [this.base, end];
    this.signed = this.low < 0 && this.high > 0;
    this.largest = Math.max(Math.abs(this.low), Math.abs(this.high)) || 1;
    this.cutsBelow = min < this.low;
    this.cutsAbove = max > this.high;
  }

  /** Place of a value in the bands, 0..1. */
  place(value) {
    return Math.min(1, Math.max(0, (value - this.base) / (this.bands * this.step)));
  }

  /** The lower limit of a band, 0..bands; the upper one of the band before. */
  limit(index) {
    return this.base + index * this.step;
  }

  /** The colour of a band, 0..bands-1. */
  band(index) {
    const place = (index + 0.5) / this.bands;
    if (!this.signed) return sequential(this.high <= 0 ? 1 - place : place);
    return diverging(0.5 + (0.5 * this.limit(index + 0.5)) / this.largest);
  }

  colour(value) {
    return this.band(Math.min(this.bands - 1, Math.floor(this.place(value) * this.bands)));
  }

  /** Where the colour changes between two values: parts of the way, with 0 and 1. */
  crossings(from, to) {
    const end = this.base + this.bands * this.step;
    const low = Math.max(this.base, Math.min(from, to)),
      high = Math.min(end, Math.max(from, to));
    const inside = ticksBetween(low, high, this.step).filter(
      (value) => value > low && value < high,
    );
    const stops = inside.map((value) => (value - from) / (to - from)).sort((a, b) => a - b);
    return [0, ...stops, 1];
  }

  /** Bands as RGBA bytes, for a texture. */
  texels() {
    const bytes = new Uint8Array(4 * this.bands);
    for (let i = 0; i < this.bands; ++i) {
      bytes.set([...this.band(i).map((part) => Math.round(255 * part)), 255], 4 * i);
    }
    return bytes;
  }
}

export function bandTexture(scale) {
  const texture = new THREE.DataTexture(scale.texels(), scale.bands, 1);
  texture.colorSpace = THREE.SRGBColorSpace;
  texture.needsUpdate = true;
  return texture;
}

export const cssColour = (rgb) => `rgb(${rgb.map((part) => Math.round(255 * part)).join(" ")})`;
