// The members with the largest forces, in the order in which they are printed.

import { DIAGRAMS, curvesOf, hasDiagram } from "./diagrams.js";

/**
 * The `count` members (places in the model's list of elements) whose forces are the largest. A
 * member is judged by the largest of its ratios |force| / largest |force| of the same kind in the
 * model, so that each kind has its member at the beginning; ties go to the member with the larger
 * sum of its ratios.
 */
export function largestMembers(model, count) {
  const scores = model.beams.map((element, b) => ({ element, b, largest: 0, sum: 0 }));
  for (const name of Object.keys(DIAGRAMS).filter((one) => hasDiagram(model.diagrams, one))) {
    const sizes = new Float64Array(scores.length);
    for (const { values } of curvesOf(model.diagrams, name)) {
      for (let i = 0; i < values.length; ++i) {
        const b = Math.floor(i / model.points);
        sizes[b] = Math.max(sizes[b], Math.abs(values[i]));
      }
    }
    const most = sizes.reduce((a, b) => Math.max(a, b), 0);
    if (!(most > 0)) continue;
    for (const score of scores) {
      const ratio = sizes[score.b] / most;
      score.largest = Math.max(score.largest, ratio);
      score.sum += ratio;
    }
  }
  const isEqual = (a, b) => Math.abs(a - b) < 1e-9;
  return scores
    .filter(({ largest }) => largest > 0)
    .sort((a, b) =>
      isEqual(a.largest, b.largest) ? b.sum - a.sum || a.b - b.b : b.largest - a.largest,
    )
    .slice(0, count)
    .map(({ element }) => element);
}
