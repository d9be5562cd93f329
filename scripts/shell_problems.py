"""Shells of triangles with known solutions: grids, supports, loads and references.

A problem is a function of the division n and of the kind of grid. It returns the shell, the number of a
node, a component from 0 and the reference. The displacement in question is that of the node, or the mean
over a list of nodes. Standard library only.
"""

import math
import random
from fractions import Fraction


def in_turn(i, j):
    return (i + j) % 2 == 0


def one_way(i, j):
    return True


class Grid:
    """How a grid is cut into triangles and distorted.

    rising(i, j) chooses the diagonal of a quadrilateral: the one from its first corner, or the other.
    Inner nodes are moved along both directions by up to `shift` of the distance to their neighbours.
    """

    def __init__(self, rising=in_turn, shift=0.0):
        self.rising, self.shift = rising, shift


ALTERNATING, ONE_WAY, DISTORTED = Grid(), Grid(one_way), Grid(in_turn, 0.25)


class Shell:
    """A grid of quadrilaterals cut into triangles, with its supports and loads.

    place(u, v), u and v from 0 to 1, gives its points. The columns of `folds` are edges of the surface,
    whose nodes no distortion moves.
    """

    def __init__(self, nx, ny, place, material, grid=ALTERNATING, folds=()):
        self.nx, self.ny, self.material = nx, ny, material
        self.nodes = []
        chance = random.Random(1)
        for j in range(ny + 1):
            for i in range(nx + 1):
                du, dv = (grid.shift * chance.uniform(-1, 1) for _ in range(2))
                inside = 0 < i < nx and 0 < j < ny and i not in folds
                self.nodes.append(place((i + inside * du) / nx, (j + inside * dv) / ny))
        self.triangles = []
        for j in range(ny):
            for i in range(nx):
                a = self.node(i, j)
                b, c, d = a + 1, a + nx + 2, a + nx + 1
                self.triangles += [(a, b, c), (a, c, d)] if grid.rising(i, j) else [(a, b, d), (b, c, d)]
        self.supports, self.loads, self.rest, self.settings = {}, [], [], []

    def add(self, other):
        """Takes the nodes and triangles of another grid in."""
        first = len(self.nodes)
        self.nodes += other.nodes
        self.triangles += [tuple(first + node for node in t) for t in other.triangles]

    def weld(self):
        """Makes nodes at one place one node. Nodes get other numbers: find them by their places."""
        number, kept, new = {}, [], []
        for x in self.nodes:
            key = tuple(round(c, 9) + 0.0 for c in x)
            if key not in number:
                kept.append(x)
                number[key] = len(kept)
            new.append(number[key])
        self.nodes = kept
        self.triangles = [tuple(new[node - 1] for node in t) for t in self.triangles]

    def where(self, condition):
        return [n for n, x in enumerate(self.nodes, 1) if condition(*x)]

    def at(self, *place):
        """The number of the node at this place."""
        return min(range(len(self.nodes)), key=lambda n: math.dist(self.nodes[n], place)) + 1

    def node(self, i, j):
        return 1 + i % (self.nx + 1) + (j % (self.ny + 1)) * (self.nx + 1)

    def hold(self, nodes, flags):
        for node in nodes:
            before = self.supports.get(node, "000000")
            self.supports[node] = "".join(max(a, b) for a, b in zip(before, flags))

    def row(self, j):
        return [self.node(i, j) for i in range(self.nx + 1)]

    def column(self, i):
        return [self.node(i, j) for j in range(self.ny + 1)]

    def load(self, node, *values):
        self.loads.append((node, *values))

    def pressure(self, *values):
        records = [f"{i} " + " ".join(map(repr, values)) for i in range(1, len(self.triangles) + 1)]
        self.rest.append("\n".join(["global_pressure_loads", *records, "end"]))

    def edge_load(self, nodes, *values):
        """A force per length along the edges between these nodes."""
        ends = set(nodes)
        records = []
        for number, t in enumerate(self.triangles, 1):
            for k in range(3):
                if t[k] in ends and t[(k + 1) % 3] in ends:
                    records.append(f"{number} {k} " + " ".join(map(repr, values)))
        self.rest.append("\n".join(["face_loads", *records, "end"]))

    def text(self, six, formulation="Standard"):
        lines = ["problem type: 3d", "Solver SkyLine", f"ShellFormulation {formulation}", *self.settings]
        lines += ["ConvertTo6Nodes"] if six else []
        lines += ["mesh dimension 3 elemtype Triangle nnode 3", "coordinates"]
        lines += [f"{n} " + " ".join(map(repr, x)) for n, x in enumerate(self.nodes, 1)]
        lines += ["end coordinates", "elements"]
        lines += [f"{n} {a} {b} {c} 1" for n, (a, b, c) in enumerate(self.triangles, 1)]
        lines += ["end elements", "materials", "1 " + self.material, "end materials", "constraints"]
        lines += [f"{n} {flags} 0 0 0 0 0 0" for n, flags in sorted(self.supports.items())]
        lines += ["end constraints", "nodal_point_loads"]
        lines += [" ".join(map(repr, load)) for load in self.loads]
        lines += ["end nodal_point_loads", *self.rest]
        return "\n".join(lines) + "\n"


def isotropic(E, nu, t):
    return f"E={E!r} nu={nu!r} G={E / 2 / (1 + nu)!r} t={t!r}"


def cantilever(t):
    """10 × 2, clamped at x = 0, a line load on the tip; no Poisson ratio: a beam with shear."""
    E, L, b, P = 1e6, 10.0, 2.0, 1.0

    def problem(n, grid=ALTERNATING):
        shell = Shell(n, max(n // 4, 1), lambda u, v: (L * u, b * v, 0.0), f"E={E} nu=0 G={E / 2} t={t}", grid)
        shell.hold(shell.column(0), "111111")
        shell.edge_load(shell.column(-1), 0.0, 0.0, P / b)
        A, I = b * t, b * t ** 3 / 12
        return shell, shell.node(-1, 0), 2, P * L ** 3 / (3 * E * I) + P * L / (E / 2 * A * 5 / 6)
    return problem


NU = 0.3


def navier(t, a=10.0, E=1e6, q=1.0):
    """Deflection of the middle of a simply supported Mindlin plate (tangential rotations held)."""
    D, shear = E * t ** 3 / (12 * (1 - NU ** 2)), E / (2 * (1 + NU)) * t * 5 / 6
    w = 0.0
    for m in range(1, 400, 2):
        for n in range(1, 400, 2):
            k = (m * m + n * n) * (math.pi / a) ** 2
            sign = (-1) ** ((m + n) // 2 - 1)
            w += sign * 16 * q / (math.pi ** 2 * m * n) * (1 / (D * k * k) + 1 / (shear * k))
    return w


def ritz_clamped(t, a=10.0, E=1e6, q=1.0, terms=4):
    """The same of a clamped one, by polynomials that vanish on the edges; exact arithmetic."""
    D = Fraction(E) * Fraction(t).limit_denominator() ** 3 / (12 * (1 - Fraction(9, 100)))
    nu = Fraction(3, 10)
    h = Fraction(a) / 2
    S = Fraction(E) / (2 * (1 + nu)) * Fraction(t).limit_denominator() * Fraction(5, 6)

    def mul(p, r):
        out = {}
        for i, x in p.items():
            for j, y in r.items():
                out[i + j] = out.get(i + j, 0) + x * y
        return out

    def der(p):
        return {i - 1: x * i for i, x in p.items() if i}

    def integral(p):
        return sum((2 * x / Fraction(i + 1) for i, x in p.items() if i % 2 == 0), Fraction(0))

    edge = {0: Fraction(1), 2: Fraction(-1)}
    even = [mul(edge, {2 * i: Fraction(1)}) for i in range(terms)]
    odd = [mul(edge, {2 * i + 1: Fraction(1)}) for i in range(terms)]
    functions = [("w", x, y) for x in even for y in even]
    functions += [("a", x, y) for x in odd for y in even] + [("b", x, y) for x in even for y in odd]

    cache = {}

    def inner(p, r):
        key = (tuple(sorted(p.items())), tuple(sorted(r.items())))
        if key not in cache:
            cache[key] = integral(mul(p, r))
        return cache[key]

    def strains(f):
        kind, x, y = f
        if kind == "w":  # γx = w,x - θa, γy = w,y - θb, by the half side
            return {"gx": [(der(x), y, 1 / h)], "gy": [(x, der(y), 1 / h)]}
        if kind == "a":
            return {"kx": [(der(x), y, 1 / h)], "kxy": [(x, der(y), 1 / h)], "gx": [(x, y, -1)]}
        return {"ky": [(x, der(y), 1 / h)], "kxy": [(der(x), y, 1 / h)], "gy": [(x, y, -1)]}

    stiffness = {("kx", "kx"): D, ("ky", "ky"): D, ("kx", "ky"): nu * D, ("ky", "kx"): nu * D,
                 ("kxy", "kxy"): D * (1 - nu) / 2, ("gx", "gx"): S, ("gy", "gy"): S}
    all_strains = [strains(f) for f in functions]
    size = len(functions)
    K = [[Fraction(0)] * (size + 1) for _ in range(size)]
    for i in range(size):
        for j in range(size):
            total = Fraction(0)
            for (s, r), c in stiffness.items():
                for x1, y1, f1 in all_strains[i].get(s, []):
                    for x2, y2, f2 in all_strains[j].get(r, []):
                        total += c * f1 * f2 * inner(x1, x2) * inner(y1, y2)
            K[i][j] = total * h * h
        kind, x, y = functions[i]
        K[i][size] = Fraction(q) * integral(x) * integral(y) * h * h if kind == "w" else Fraction(0)
    for k in range(size):
        for i in range(k + 1, size):
            factor = K[i][k] / K[k][k]
            if factor:
                K[i] = [p - factor * r for p, r in zip(K[i], K[k])]
    solution = [Fraction(0)] * size
    for k in reversed(range(size)):
        rest = K[k][size] - sum(K[k][j] * solution[j] for j in range(k + 1, size))
        solution[k] = rest / K[k][k]
    # In the middle only x^0 y^0 is not 0.
    return float(solution[0])


def square(t, clamped, reference):
    """A quarter of a square plate, 10 × 10 in all; its middle at the origin."""
    E, a = 1e6, 10.0

    def problem(n, grid=ALTERNATING):
        shell = Shell(n, n, lambda u, v: (a / 2 * u, a / 2 * v, 0.0),
                      isotropic(E, NU, t), grid)
        shell.hold(shell.column(0), "100011")
        shell.hold(shell.row(0), "010101")
        # Simply supported: tangential rotations held, as in the series.
        shell.hold(shell.column(-1), "111111" if clamped else "111100")
        shell.hold(shell.row(-1), "111111" if clamped else "111010")
        shell.pressure(0.0, 0.0, 1.0)
        return shell, 1, 2, reference
    return problem


def roof(n, grid=ALTERNATING):
    R, L, angle = 25.0, 50.0, math.radians(40)
    shell = Shell(n, n, lambda u, v: (R * math.sin(angle * u), L / 2 * v, R * math.cos(angle * u)),
                  "E=4.32e8 nu=0 G=2.16e8 t=0.25 Weight=360", grid)
    shell.settings = ["GravityDirection 0 0 -1"]
    shell.hold(shell.column(0), "100011")
    shell.hold(shell.row(0), "010101")   # the middle of the span
    shell.hold(shell.row(-1), "101000")  # the diaphragm
    return shell, shell.node(-1, 0), 2, -0.3024


def pinched_cylinder(n, grid=ALTERNATING):
    R, L = 300.0, 600.0
    E = 3e6
    shell = Shell(n, n, lambda u, v: (R * math.sin(math.pi / 2 * u), L / 2 * v, R * math.cos(math.pi / 2 * u)),
                  isotropic(E, 0.3, 3), grid)
    shell.hold(shell.column(0), "100011")
    shell.hold(shell.column(-1), "001110")
    shell.hold(shell.row(0), "010101")
    shell.hold(shell.row(-1), "101000")
    shell.load(1, 0.0, 0.0, -0.25, 0.0, 0.0, 0.0)
    return shell, 1, 2, -1.8248e-5


HEMISPHERE_MATERIAL = isotropic(6.825e7, 0.3, 0.04)


def on_hemisphere(sector):
    def place(u, v):
        a, b = sector * u, math.radians(72) * v
        return 10 * math.cos(a) * math.cos(b), 10 * math.sin(a) * math.cos(b), 10 * math.sin(b)
    return place


def hemisphere(rotations):
    """A quarter; its symmetry planes hold their rotations or not."""
    def problem(n, grid=ALTERNATING):
        shell = Shell(n, n, on_hemisphere(math.pi / 2), HEMISPHERE_MATERIAL, grid)
        shell.hold(shell.column(0), "010101" if rotations else "010000")   # the plane y = 0
        shell.hold(shell.column(-1), "100011" if rotations else "100000")  # the plane x = 0
        shell.hold([1], "001000")
        shell.load(1, 1.0, 0.0, 0.0, 0.0, 0.0, 0.0)
        shell.load(shell.node(-1, 0), 0.0, -1.0, 0.0, 0.0, 0.0, 0.0)
        return shell, 1, 0, 0.0924
    return problem


def whole_hemisphere(n, grid=ALTERNATING):
    """Four times as many elements around."""
    shell = Shell(4 * n, n, on_hemisphere(2 * math.pi), HEMISPHERE_MATERIAL, grid)
    shell.weld()
    # Symmetry leaves the loaded points the held components.
    for x, y, flags in ((10, 0, "011000"), (0, 10, "101000"), (-10, 0, "011000"), (0, -10, "000000")):
        point = shell.at(x, y, 0)
        shell.hold([point], flags)
        shell.load(point, x / 5, -y / 5, 0.0, 0.0, 0.0, 0.0)
    return shell, shell.at(10, 0, 0), 0, 0.0924


def twisted(direction, t, reference):
    """A force of 1 at the tip, along the width (2) or across it (1)."""
    E, L, b = 29e6, 12.0, 1.1

    def place(u, v):
        a, y = math.pi / 2 * u, b * (v - 0.5)
        return L * u, y * math.cos(a), y * math.sin(a)

    def problem(n, grid=ALTERNATING):
        shell = Shell(6 * n, n, place, isotropic(E, 0.22, t), grid)
        shell.hold(shell.column(0), "111111")
        node = shell.node(-1, n // 2)
        force = [0.0] * 6
        force[direction] = 1.0
        shell.load(node, *force)
        return shell, node, direction, reference
    return problem


def membrane(n, grid=ALTERNATING):
    """A tapered panel in its plane."""
    shell = Shell(n, n, lambda u, v: (48 * u, 44 * u + v * (44 - 28 * u), 0.0), isotropic(1.0, 1 / 3, 1), grid)
    shell.hold(shell.where(lambda x, y, z: True), "001110")
    shell.hold(shell.column(0), "111111")
    shell.edge_load(shell.column(-1), 0.0, 1 / 16, 0.0)
    return shell, shell.node(-1, n // 2), 1, 23.965


def wall(n, grid=ALTERNATING):
    """A beam of 10 by 1 in its plane, n/4 elements deep. Its clamped end is free to get narrower.

    Reference: a beam with shear.
    """
    E, L, h, t, nu = 1e6, 10.0, 1.0, 0.1, 0.3
    m = n // 4
    shell = Shell(10 * m, m, lambda u, v: (L * u, h * v, 0.0), isotropic(E, nu, t), grid)
    shell.hold(shell.where(lambda x, y, z: True), "001110")
    shell.hold(shell.column(0), "101111")
    shell.hold([1], "010000")
    shell.edge_load(shell.column(-1), 0.0, 1 / h, 0.0)
    G, I = E / 2 / (1 + nu), t * h ** 3 / 12
    return shell, shell.node(-1, 0), 1, L ** 3 / (3 * E * I) + 1.2 * L / (G * t * h)


def hook(n, grid=ALTERNATING):
    """Two arcs, of radius 14 over 60 degrees and of radius 46 over 150 degrees, 20 wide, t = 2.

    The first is clamped and has n elements along it, the second 5n. A force of 1 along z is spread over
    the end.
    """
    first, second = math.radians(60), math.radians(150)

    def place(u, v):
        if u <= 1 / 6:
            a = 6 * u * first
            return 14 * math.sin(a), 14 - 14 * math.cos(a), 20 * v
        a = first - (u - 1 / 6) * 1.2 * second
        x, y = 60 * math.sin(first), 14 - 60 * math.cos(first)  # the centre of the second arc
        return x - 46 * math.sin(a), y + 46 * math.cos(a), 20 * v

    shell = Shell(6 * n, n, place, isotropic(3300.0, 0.35, 2), grid, folds=[n])
    shell.hold(shell.column(0), "111111")
    shell.edge_load(shell.column(-1), 0.0, 0.0, 1 / 20)
    return shell, shell.node(-1, n // 2), 2, 4.9352


def z_section(n, grid=ALTERNATING):
    """A cantilever of Z section, length 10, web 2, flanges 1, t = 0.1 (MN, m).

    The load is a torque of 1.2: a shear of 0.6 along each flange of the end. n/4 elements to a flange.
    """
    m = n // 4

    def place(u, v):
        s = 4 * u
        if s <= 1:
            return 10 * v, s - 1, 1.0
        return (10 * v, 0.0, 2 - s) if s <= 3 else (10 * v, s - 3, -1.0)

    shell = Shell(n, 2 * n, place, isotropic(210e3, 0.3, 0.1), grid, folds=[m, 3 * m])
    shell.hold(shell.row(0), "111111")
    end = shell.row(-1)
    shell.edge_load(end[:m + 1], 0.0, 0.6, 0.0)
    shell.edge_load(end[3 * m:], 0.0, -0.6, 0.0)
    return shell, end[0], 1, Z_SECTION


def tee(n, grid=ALTERNATING):
    """A cantilever of T section, length 10, flange 2, web 1, t = 0.1, under a force at a corner of the
    flange; n/2 elements to half a flange."""
    flange = Shell(n, 5 * n, lambda u, v: (10 * v, 2 * u - 1, 1.0), isotropic(1e6, 0.3, 0.1), grid, folds=[n // 2])
    flange.add(Shell(n // 2, 5 * n, lambda u, v: (10 * v, 0.0, u), flange.material, grid))
    flange.weld()
    flange.hold(flange.where(lambda x, y, z: x == 0), "111111")
    corner = flange.at(10, 1, 1)
    flange.load(corner, 0.0, 0.0, -1.0, 0.0, 0.0, 0.0)
    return flange, corner, 2, TEE


def tube(n, grid=ALTERNATING):
    """A square tube with sides of 1, length 10, t = 0.05, in torsion; n/4 elements to a side.

    Reference: G J with J of the closed section and of its four sides.
    """
    E, nu, t, L, m = 1e6, 0.3, 0.05, 10.0, n // 4
    corners = ((-0.5, -0.5), (0.5, -0.5), (0.5, 0.5), (-0.5, 0.5), (-0.5, -0.5))

    def place(u, v):
        side = min(int(4 * u + 1e-9), 3)
        s = 4 * u - side
        return (L * v, *((1 - s) * a + s * b for a, b in zip(corners[side], corners[side + 1])))

    shell = Shell(n, 10 * m, place, isotropic(E, nu, t), grid, folds=[m, 2 * m, 3 * m])
    shell.weld()
    shell.hold(shell.where(lambda x, y, z: x == 0), "111111")
    for side in (-0.5, 0.5):
        # The shear flow of a torque of 1 is a half.
        shell.edge_load(shell.where(lambda x, y, z: x == L and z == side), 0.0, -side, 0.0)
        shell.edge_load(shell.where(lambda x, y, z: x == L and y == side), 0.0, 0.0, side)
    J = t + 4 / 3 * t ** 3
    return shell, shell.at(L, 0.0, -0.5), 1, 0.5 * L / (E / 2 / (1 + nu) * J)


def cut_corners(t, corners):
    """A whole square plate, simply supported; the diagonals cut off none, two or four corners."""
    E, a = 1e6, 10.0

    def rising(n):
        return {0: lambda i, j: (2 * i < n) == (2 * j < n), 2: one_way,
                4: lambda i, j: (2 * i < n) != (2 * j < n)}[corners]

    def problem(n, grid=ALTERNATING):
        shell = Shell(n, n, lambda u, v: (a * u, a * v, 0.0), isotropic(E, NU, t),
                      Grid(rising(n)))
        for k in (0, -1):
            shell.hold(shell.column(k), "111100")
            shell.hold(shell.row(k), "111010")
        shell.pressure(0.0, 0.0, 1.0)
        return shell, shell.node(n // 2, n // 2), 2, navier(t)
    return problem


# The axes of an oblique plane.
OBLIQUE_X, OBLIQUE_Y, OBLIQUE_Z = ([x / math.hypot(*axis) for x in axis]
                                   for axis in ((3, 2, 1), (-1, 3, -3), (-9, 8, 11)))


def oblique_slab(n, decimals):
    """A slab of 10 × 10 in an oblique plane, 0.2 thick, its coordinates with so many decimals."""
    def place(u, v):
        point = [10 * (u * x + v * y) for x, y in zip(OBLIQUE_X, OBLIQUE_Y)]
        return tuple(round(p, decimals) for p in point) if decimals else tuple(point)
    shell = Shell(n, n, place, isotropic(1e6, NU, 0.2))
    for k in (0, -1):
        shell.hold(shell.column(k), "111000")
        shell.hold(shell.row(k), "111000")
    shell.pressure(*OBLIQUE_Z)
    return shell


def sprung_plate(n, stiffness):
    """A rigid plate on equal springs at all nodes: it sinks by the load over their sum."""
    shell = Shell(n, n, lambda u, v: (10 * u, 10 * v, 0.0), "E=1e9 nu=0.3 G=3.846e8 t=1")
    shell.pressure(0.0, 0.0, 1.0)
    records = [f"{i} 112000 0 0 {stiffness} 0 0 0" for i in range(1, len(shell.nodes) + 1)]
    shell.rest.append("\n".join(["constraints", *records, "end constraints"]))
    return shell


def clamped_reference(t):
    return ritz_clamped(t, terms=5)


# Displacements of fine meshes of quadrilaterals of eight nodes.
Z_SECTION, TEE = 0.03246, -0.04257

# Problem by name. Lengths of sides are 10 times, 100 times and 1000 times the thickness of the plates.
BENCHMARKS = {
    "roof": roof,
    "pinched": pinched_cylinder,
    "hemisphere": hemisphere(True),
    "twist in plane, 0.32": twisted(2, 0.32, 5.424e-3),
    "twist out of plane, 0.32": twisted(1, 0.32, 1.754e-3),
    "twist in plane, 0.0032": twisted(2, 0.0032, 5256.0),
    "twist out of plane, 0.0032": twisted(1, 0.0032, 1294.0),
    **{f"supported plate, {round(10 / t)}": square(t, False, navier(t)) for t in (1.0, 0.1, 0.01)},
    **{f"clamped plate, {round(10 / t)}": square(t, True, clamped_reference(t)) for t in (1.0, 0.1, 0.01)},
    "membrane": membrane,
    "hook": hook,
    "tee": tee,
    "tube": tube,
    "z section": z_section,
    "wall": wall,
}
