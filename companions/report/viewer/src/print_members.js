// The members with the largest forces, in the order in which they are printed.

import { DIAGRAMS } from "./diagrams.js";

/** The largest size of a quantity in every member, and the beam (place in the list of beams) that has it. */
function largestIn({ model, members }, { curves }) {
  const sizes = new Float64Array(members.count),
    beams = new Int32Array(members.count).fill(-1);
  for (const { values } of curves) {
    for (let i = 0; i < values.length; ++i) {
      const b = Math.floor(i / model.points),
        member = members.of[b];
      if (!(Math.abs(values[i]) > sizes[member])) continue;
      sizes[member] = Math.abs(values[i]);
      beams[member] = b;
    }
  }
  return { sizes, beams };
}

/**
 * The `count` members whose forces are the largest: of each the beam, as a place in the list of
 * elements, that has its largest force. A member is judged by the largest of its ratios |force| /
 * largest |force| of the same kind in the model, so that each kind has its member at the
 * beginning; ties go to the member with the larger sum of its ratios. results: MemberResults.
 */
export function largestMembers(results, count) {
  const { model, members } = results;
  const scores = Array.from({ length: members.count }, (_, member) => ({
    member,
    beam: -1,
    largest: 0,
    sum: 0,
  }));
  for (const quantity of results.quantities.filter(({ name }) => name in DIAGRAMS)) {
    const { sizes, beams } = largestIn(results, quantity);
    const most = sizes.reduce((a, b) => Math.max(a, b), 0);
    if (!(most > 0)) continue;
    for (const score of scores) {
      const ratio = sizes[score.member] / most;
      if (ratio > score.largest)
        Object.assign(score, { largest: ratio, beam: beams[score.member] });
      score.sum += ratio;
    }
  }
  const isEqual = (a, b) => Math.abs(a - b) < 1e-9;
  return scores
    .filter(({ largest }) => largest > 0)
    .sort((a, b) =>
      isEqual(a.largest, b.largest) ? b.sum - a.sum || a.member - b.member : b.largest - a.largest,
    )
    .slice(0, count)
    .map(({ beam }) => model.beams[beam]);
}
