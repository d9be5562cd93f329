// Values that are not linear in the loads: from the combined values of a point, by the formulas of
// the program.

/** The larger (sign 1) or the smaller (-1) principal value of a symmetric tensor of the plane. */
const principal = (sign) => (a, b, c) => (a + b) / 2 + sign * Math.hypot((a - b) / 2, c);

/** Moments of one side of a slab, where positive values give tension: along x' and y'. */
function momentsOfSide(mx, my, mxy) {
  const twist = Math.abs(mxy);
  let x = mx + twist,
    y = my + twist;
  if (x < 0) {
    x = 0;
    y = my + twist * (twist / Math.abs(mx));
  } else if (y < 0) {
    y = 0;
    x = mx + twist * (twist / Math.abs(my));
  }
  return [Math.max(x, 0), Math.max(y, 0)];
}

const upper = (k) => (mx, my, mxy) => momentsOfSide(mx, my, mxy)[k];
const lower = (k) => (mx, my, mxy) => 0 - momentsOfSide(-mx, -my, mxy)[k];

function vonMises(x, y, z, xy, yz, xz) {
  const shears = xy * xy + yz * yz + xz * xz;
  return Math.sqrt(((x - y) ** 2 + (y - z) ** 2 + (z - x) ** 2) / 2 + 3 * shears);
}

/**
 * Principal stresses in descending order with their directions, {value, axis}, by Jacobi rotations
 * (Golub and Van Loan, "Matrix Computations", 1996, section 8.4).
 */
export function principalAxes(x, y, z, xy, yz, xz) {
  const a = [
    [x, xy, xz],
    [xy, y, yz],
    [xz, yz, z],
  ];
  const axes = [
    [1, 0, 0],
    [0, 1, 0],
    [0, 0, 1],
  ];
  for (let sweep = 0, changed = true; changed && sweep < 30; ++sweep) {
    changed = false;
    for (const [p, q] of [
      [0, 1],
      [0, 2],
      [1, 2],
    ]) {
      const size = Math.abs(a[p][p]) + Math.abs(a[q][q]);
      if (a[p][q] === 0 || size + Math.abs(a[p][q]) === size) continue;
      changed = true;
      rotate(a, axes, p, q);
    }
  }
  return axes
    .map((axis, k) => ({ value: a[k][k], axis }))
    .sort((one, two) => two.value - one.value);
}

const principalStresses = (...stresses) => principalAxes(...stresses).map(({ value }) => value);

/** Makes a[p][q] zero; the rows of `axes` turn with it. */
function rotate(a, axes, p, q) {
  const theta = (a[q][q] - a[p][p]) / (2 * a[p][q]);
  const t = (theta < 0 ? -1 : 1) / (Math.abs(theta) + Math.hypot(theta, 1));
  const cosine = 1 / Math.hypot(t, 1),
    sine = t * cosine;
  const turned = (one, two) => [cosine * one - sine * two, sine * one + cosine * two];
  a[p][p] -= t * a[p][q];
  a[q][q] += t * a[p][q];
  a[p][q] = a[q][p] = 0;
  const r = 3 - p - q;
  const [rp, rq] = turned(a[r][p], a[r][q]);
  a[r][p] = a[p][r] = rp;
  a[r][q] = a[q][r] = rq;
  for (let k = 0; k < 3; ++k) [axes[p][k], axes[q][k]] = turned(axes[p][k], axes[q][k]);
}

const MEMBRANE = ["Nx'", "Ny'", "Nxy'"],
  MOMENTS = ["Mx'", "My'", "Mxy'"],
  STRESSES = ["Sx", "Sy", "Sz", "Txy", "Tyz", "Txz"];

export const TRANSLATIONS = ["ux", "uy", "uz"];

/** Columns and what they are computed from. A column of `from` that the table lacks counts as 0. */
export const DERIVED = {
  u: { from: TRANSLATIONS, of: (x, y, z) => Math.hypot(x, y, z) },
  N1: { from: MEMBRANE, of: principal(1) },
  N2: { from: MEMBRANE, of: principal(-1) },
  M1: { from: MOMENTS, of: principal(1) },
  M2: { from: MOMENTS, of: principal(-1) },
  "mx+": { from: MOMENTS, of: upper(0) },
  "my+": { from: MOMENTS, of: upper(1) },
  "mx-": { from: MOMENTS, of: lower(0) },
  "my-": { from: MOMENTS, of: lower(1) },
  von_Mises: { from: STRESSES, of: vonMises },
  S1: { from: STRESSES, of: (...s) => principalStresses(...s)[0] },
  S2: { from: STRESSES, of: (...s) => principalStresses(...s)[1] },
  S3: { from: STRESSES, of: (...s) => principalStresses(...s)[2] },
};
