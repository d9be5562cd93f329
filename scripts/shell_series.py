"""Forces and moments of cylindrical shells and plates by series, to compare shells of triangles with.

Cylindrical shells have the strains of J. L. Sanders, An improved first-approximation theory for thin shells,
NASA TR R-24 (1959), with the displacements u along the axis, v around it and w outwards. Diaphragms at x = 0
and x = L let sines and cosines of k pi x/L solve the axial direction exactly. Forces are the list N_x, N_phi,
N_x_phi, M_x, M_phi, M_x_phi; moments are positive when they stretch the outer side. Standard library only.
"""

import math


def solve(matrix, right):
    """Gaussian elimination with pivots."""
    n = len(right)
    rows = [list(row) + [r] for row, r in zip(matrix, right)]
    for k in range(n):
        pivot = max(range(k, n), key=lambda i: abs(rows[i][k]))
        rows[k], rows[pivot] = rows[pivot], rows[k]
        for i in range(k + 1, n):
            factor = rows[i][k] / rows[k][k]
            if factor:
                rows[i] = [a - factor * b for a, b in zip(rows[i], rows[k])]
    x = [0.0] * n
    for k in reversed(range(n)):
        x[k] = (rows[k][n] - sum(rows[k][j] * x[j] for j in range(k + 1, n))) / rows[k][k]
    return x


class Cylinder:
    def __init__(self, R, L, E, nu, t):
        self.R, self.L = R, L
        self.C, self.D, self.nu = E * t / (1 - nu ** 2), E * t ** 3 / 12 / (1 - nu ** 2), nu

    def strains(self, wave, u, v, w):
        """Amplitudes of the six strains, membrane and bending. u, v, w: (value, first, second derivative
        by phi) of the displacements' amplitudes; `wave` is k pi/L. The third and the sixth go with the
        cosine of wave x, the others with the sine."""
        R = self.R
        return (-wave * u[0], (v[1] + w[0]) / R, u[1] / R + wave * v[0],
                wave ** 2 * w[0], (v[1] - w[2]) / R ** 2,
                (1.5 * wave * v[0] - 2 * wave * w[1]) / R - u[1] / 2 / R ** 2)

    def forces(self, e):
        C, D, nu = self.C, self.D, self.nu
        return (C * (e[0] + nu * e[1]), C * (e[1] + nu * e[0]), C * (1 - nu) / 2 * e[2],
                D * (e[3] + nu * e[4]), D * (e[4] + nu * e[3]), D * (1 - nu) / 2 * e[5])


def add_wave(total, amplitudes, angle):
    s, c = math.sin(angle), math.cos(angle)
    for i, value in enumerate(amplitudes):
        total[i] += value * (c if i in (2, 5) else s)


def legendre(n, x):
    """Value, first and second derivative of the polynomial of degree n."""
    p, q = [1.0, 0.0, 0.0], [x, 1.0, 0.0]
    if n == 0:
        return p
    for k in range(1, n):
        a, b = (2 * k + 1) / (k + 1), k / (k + 1)
        p, q = q, [a * x * q[0] - b * p[0], a * (q[0] + x * q[1]) - b * p[1], a * (2 * q[1] + x * q[2]) - b * p[2]]
    return q


def gauss(n):
    """Points and weights from -1 to 1."""
    rule = []
    for i in range(n):
        x = math.cos(math.pi * (i + 0.75) / (n + 0.5))
        for _ in range(50):
            value, slope, _ = legendre(n, x)
            x -= value / slope
        rule.append((x, 2 / (1 - x * x) / legendre(n, x)[1] ** 2))
    return rule


class Roof:
    """A cylindrical roof with free edges at +-alpha under q per area, downwards. Around the axis: Ritz's
    method with Legendre polynomials, u and w even, v odd."""

    def __init__(self, shell, alpha, q, waves=12, terms=12):
        self.shell, self.alpha, self.terms = shell, alpha, terms
        self.amplitudes = {k: self.solve_wave(k, q) for k in range(1, 2 * waves, 2)}

    def basis(self, phi):
        """For every unknown the triples u, v, w."""
        none, out = (0.0, 0.0, 0.0), []
        for i in range(self.terms):
            even, odd = ([d / self.alpha ** k for k, d in enumerate(legendre(n, phi / self.alpha))]
                         for n in (2 * i, 2 * i + 1))
            out += [(even, none, none), (none, odd, none), (none, none, even)]
        return out

    def solve_wave(self, k, q):
        wave, n = k * math.pi / self.shell.L, 3 * self.terms
        K, f = [[0.0] * n for _ in range(n)], [0.0] * n
        for x, weight in gauss(3 * self.terms):
            phi = self.alpha * x
            basis = self.basis(phi)
            strains = [self.shell.strains(wave, *b) for b in basis]
            forces = [self.shell.forces(e) for e in strains]
            load = 4 * q / math.pi / k
            for i in range(n):
                f[i] += weight * load * (math.sin(phi) * basis[i][1][0] - math.cos(phi) * basis[i][2][0])
                for j in range(n):
                    K[i][j] += weight * sum(a * b for a, b in zip(strains[i], forces[j]))
        return solve(K, f)

    def at(self, x, phi):
        """The downward displacement and the forces."""
        total, down, basis = [0.0] * 6, 0.0, self.basis(phi)
        for k, a in self.amplitudes.items():
            wave = k * math.pi / self.shell.L
            u, v, w = ([sum(c * b[i][d] for c, b in zip(a, basis)) for d in range(3)] for i in range(3))
            add_wave(total, self.shell.forces(self.shell.strains(wave, u, v, w)), wave * x)
            down += (v[0] * math.sin(phi) - w[0] * math.cos(phi)) * math.sin(wave * x)
        return down, total


class PinchedCylinder:
    """Two opposite forces P inwards at x = L/2: double series."""

    def __init__(self, shell, P, around=200, along=400):
        self.shell, self.amplitudes = shell, []
        for k in range(1, along, 2):
            wave = k * math.pi / shell.L
            for m in range(0, around, 2):
                load = -P / shell.R * (2 if m else 1) / math.pi * 2 / shell.L * math.sin(k * math.pi / 2)
                self.amplitudes.append((wave, m, self.solve_wave(wave, m, load)))

    @staticmethod
    def fields(m, phi):
        c, s = math.cos(m * phi), math.sin(m * phi)
        return (c, -m * s, -m * m * c), (s, m * c, -m * m * s)

    def solve_wave(self, wave, m, load):
        none = (0.0, 0.0, 0.0)

        def at(phi):
            even, odd = self.fields(m, phi)
            return [self.shell.strains(wave, *f) for f in ((even, none, none), (none, odd, none), (none, none, even))]

        # Third and sixth strain go with the sine of m phi, the others with the cosine.
        quarter = math.pi / 2 / m if m else 0.0
        strains = [(*e[:2], o[2], *e[3:5], o[5]) for e, o in zip(at(0.0), at(quarter))]
        free = [0, 1, 2] if m else [0, 2]
        K = [[sum(a * b for a, b in zip(strains[i], self.shell.forces(strains[j]))) for j in free] for i in free]
        result = dict(zip(free, solve(K, [load if i == 2 else 0.0 for i in free])))
        return [result.get(i, 0.0) for i in range(3)]

    def at(self, x, phi):
        """The outward displacement and the forces."""
        total, out = [0.0] * 6, 0.0
        for wave, m, (U, V, W) in self.amplitudes:
            even, odd = self.fields(m, phi)
            u, v, w = ([a * f for f in field] for a, field in ((U, even), (V, odd), (W, even)))
            add_wave(total, self.shell.forces(self.shell.strains(wave, u, v, w)), wave * x)
            out += w[0] * math.sin(wave * x)
        return out, total
