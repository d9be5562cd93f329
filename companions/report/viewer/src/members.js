// Members: chains of beams that act as one girder or column.
//
// Two beams belong to one member when end 2 of the first and end 1 of the second share a node, and
// - no third beam has that node, whatever its direction: beams that frame in end a member, and of
//   several beams in one line (overlapping, doubled) none can be chosen;
// - the node has no support, and neither beam a hinge there;
// - both have one material; that of a single element counts as any other with the same values;
// - the angle between their axes x', and that between their axes y', is at most 0.1 degrees. A beam
//   that runs the other way has the opposite axes: it ends the member.
// Nodes of shells, loads and the borders of meshes do not end a member. One pass over the ends of all
// beams pairs them at their nodes; a second one walks along the chains, and around closed ones.

import { cross, dot, minus } from "./model.js";

const ANGLE = (0.1 * Math.PI) / 180;

/** Slightly more than the angle: the axes have seven digits. */
const SINE = Math.sin(ANGLE) + 1e-6;

const isParallel = (a, b) =>
  dot(a, b) > 0 && Math.hypot(...cross(a, b)) <= SINE * Math.hypot(...a) * Math.hypot(...b);

const opposite = (a) => a.map((value) => -value);

export class Members {
  /**
   * model: as Model, of which it needs nodeCount, nodeNumbers, xyz, beams, node(), axes, elements.numbers.
   * hinges(e): the code of beam e; section(e): equal for beams of one material; isHeld(node).
   */
  constructor(model, { hinges, section, isHeld }) {
    Object.assign(this, { model, hinges, section, isHeld });
    const count = model.beams.length;
    this.next = new Int32Array(count).fill(-1);
    this.previous = new Int32Array(count).fill(-1);
    this.collectEnds();
    this.pair();
    this.walk();
  }

  static of(report, model) {
    const codes = report.table("elements").column("hinge_code");
    const supports = report.table("supports");
    return new Members(model, {
      hinges: (element) => codes.cell(element) ?? 11,
      section: sectionsOf(report),
      isHeld: heldNodes(supports, model),
    });
  }

  get count() {
    return this.lengths.length;
  }

  /** The ends at every node: end i of beam b is 2b + i; those of node n are ends[first[n]..first[n+1]). */
  collectEnds() {
    const { model } = this;
    this.first = new Int32Array(model.nodeCount + 1);
    const visit = (use) =>
      model.beams.forEach((element, b) => {
        for (const end of [0, 1]) use(model.node(element, end), 2 * b + end);
      });
    visit((node) => ++this.first[node + 1]);
    for (let i = 0; i < model.nodeCount; ++i) this.first[i + 1] += this.first[i];
    const place = this.first.slice();
    this.ends = new Int32Array(2 * model.beams.length);
    visit((node, end) => {
      this.ends[place[node]++] = end;
    });
  }

  pair() {
    const { model, first, ends } = this;
    for (let node = 0; node < model.nodeCount; ++node) {
      if (first[node + 1] - first[node] !== 2) continue;
      const [one, other] = [ends[first[node]], ends[first[node] + 1]];
      if (this.whyApart(node, one, other)) continue;
      const [before, after] = one & 1 ? [one >> 1, other >> 1] : [other >> 1, one >> 1];
      this.next[before] = after;
      this.previous[after] = before;
    }
  }

  /** Why two ends at a node, which has no others, are no inner joint of a member; empty when they are. */
  whyApart(node, one, other) {
    const [a, b] = [one, other].map((end) => this.model.beams[end >> 1]);
    if (this.isHeld(node)) return "support";
    if (this.isHinged(one) || this.isHinged(other)) return "hinge";
    const [p, q] = [this.outward(one), this.outward(other)];
    const name = `beam ${this.model.elements.numbers[b]}`;
    if (isParallel(p, q)) return `${name} lies on the same line`;
    if (!isParallel(p, opposite(q))) return `${name} has another direction`;
    if (this.section(a) !== this.section(b)) return `${name} has another material`;
    if ((one & 1) === (other & 1)) return `${name} runs the other way`;
    return isParallel(this.yAxis(a), this.yAxis(b)) ? "" : `${name} has other local axes`;
  }

  isHinged(end) {
    const code = this.hinges(this.model.beams[end >> 1]);
    return (end & 1 ? code % 10 : Math.floor(code / 10)) === 0;
  }

  /** From the node of an end towards the other end of its beam. */
  outward(end) {
    const element = this.model.beams[end >> 1];
    const place = (i) => this.placeOf(this.model.node(element, i));
    return minus(place(1 - (end & 1)), place(end & 1));
  }

  placeOf(node) {
    return [0, 1, 2].map((k) => this.model.xyz[3 * node + k]);
  }

  yAxis(element) {
    return Array.from(this.model.axes.subarray(3 * element, 3 * element + 3));
  }

  lengthOf(b) {
    return Math.hypot(...this.outward(2 * b));
  }

  /**
   * The members: beams list[start[m]..start[m+1]) of member m, in order; of beam b the member of[b] and
   * the distance offset[b] of its end 1 from the member's beginning.
   */
  walk() {
    const count = this.next.length;
    this.of = new Int32Array(count).fill(-1);
    this.offset = new Float64Array(count);
    this.list = new Int32Array(count);
    const starts = [],
      lengths = [];
    let place = 0;
    const follow = (begin) => {
      starts.push(place);
      let length = 0;
      for (let b = begin; b >= 0 && this.of[b] < 0; b = this.next[b]) {
        this.of[b] = starts.length - 1;
        this.offset[b] = length;
        this.list[place++] = b;
        length += this.lengthOf(b);
      }
      lengths.push(length);
    };
    // The beam of the lowest place in the list begins a ring; members are in the order of their first beams.
    for (let b = 0; b < count; ++b) if (this.of[b] < 0) follow(this.beginOf(b));
    this.start = Int32Array.from([...starts, place]);
    this.lengths = Float64Array.from(lengths);
  }

  /** The first beam of the chain of a beam; the beam itself in a ring. */
  beginOf(b) {
    let begin = b;
    while (this.previous[begin] >= 0) {
      begin = this.previous[begin];
      if (begin === b) break;
    }
    return begin;
  }

  /** The beams of a member in order, as places in the list of beams. */
  beamsOf(member) {
    return this.list.subarray(this.start[member], this.start[member + 1]);
  }

  /** The first (0) or the last node (1) of a member, as a place in the list of nodes. */
  endNode(member, i) {
    const beams = this.beamsOf(member);
    return this.model.node(this.model.beams[beams[i ? beams.length - 1 : 0]], i);
  }

  isRing(member) {
    return this.previous[this.list[this.start[member]]] >= 0;
  }

  /** Why a member ends at its first (0) or last node (1): "support", "hinge"; empty for the end of a line. */
  whyEnds(member, i) {
    if (this.isRing(member)) return "";
    const node = this.endNode(member, i);
    const beams = this.beamsOf(member);
    const own = 2 * beams[i ? beams.length - 1 : 0] + i;
    const others = this.ends
      .subarray(this.first[node], this.first[node + 1])
      .filter((end) => end !== own);
    if (this.isHeld(node)) return "support";
    if (this.isHinged(own)) return "hinge";
    if (others.length > 1) return `${others.length} other beams`;
    return others.length === 1 ? this.whyApart(node, own, others[0]) : "";
  }

  /** Names by the first and the last node, "3 to 8"; the second of one name is "3 to 8 (2)". */
  get names() {
    if (this.named) return this.named;
    const seen = new Map();
    this.named = Array.from(this.lengths, (_, member) => {
      const [from, to] = [0, 1].map((i) => this.model.nodeNumbers[this.endNode(member, i)]);
      const name = `${from} to ${to}`;
      const times = (seen.get(name) ?? 0) + 1;
      seen.set(name, times);
      return times > 1 ? `${name} (${times})` : name;
    });
    return this.named;
  }

  /** The numbers of the beams of a member: "11 to 16", or all of them. */
  elementsText(member) {
    const numbers = Array.from(
      this.beamsOf(member),
      (b) => this.model.elements.numbers[this.model.beams[b]],
    );
    const [low, high] = [numbers[0], numbers[numbers.length - 1]];
    const isRun = numbers.length > 2 && numbers.every((number, i) => number === low + i);
    return isRun ? `${low} to ${high}` : numbers.join(" ");
  }
}

/** Whether a node has a support or a spring. */
function heldNodes(supports, model) {
  const held = new Uint8Array(model.nodeCount);
  const flags = supports?.columns.filter(({ name }) => /^flag\d$/.test(name)) ?? [];
  const nodes = supports?.column("node").values ?? [];
  for (let row = 0; row < nodes.length; ++row) {
    if (flags.some(({ values }) => values[row] !== 0)) held[model.nodeAt.get(nodes[row])] = 1;
  }
  return (node) => held[node] === 1;
}

/**
 * A key for the material of a beam: its number, or of a material that belongs to one element, which
 * has the number 0, that of a numbered material with the same values, or else its values. Materials
 * of elements are at the end of their table, in the order of their elements.
 */
function sectionsOf(report) {
  const ofElements = report.table("elements").column("material").values;
  const table = report.table("materials");
  const numbers = table?.column("material").values ?? [];
  const valuesOf = (row) =>
    table.columns
      .slice(1)
      .map((column) => column.values[row].toPrecision(6))
      .join(" ");
  const rows = Array.from(numbers.keys());
  const own = rows.filter((row) => numbers[row] === 0);
  if (own.length === 0) return (element) => ofElements[element];
  const numbered = new Map(
    rows.filter((row) => numbers[row] !== 0).map((row) => [valuesOf(row), numbers[row]]),
  );
  const owners = Array.from(ofElements.keys()).filter((e) => ofElements[e] === 0);
  const isWhole = owners.length === own.length; // elements without any material have the number 0 too
  const keys = new Map(
    owners.map((e, i) => {
      const values = isWhole ? valuesOf(own[i]) : `element ${e}`;
      return [e, numbered.get(values) ?? values];
    }),
  );
  return (element) => keys.get(element) ?? ofElements[element];
}
