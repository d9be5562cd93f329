#!/usr/bin/env python3
"""Runs the shell problems of docs/verification.md and prints their tables.

    scripts/verify_shells.py path/to/morlen [--fine]

Every table has the computed value divided by the reference, for three-node triangles and for
the same mesh with ConvertTo6Nodes. The last three tables have faults of meshes. --fine adds one more
division. Standard library only.
"""

import argparse
import math
import subprocess
import tempfile
from fractions import Fraction
from pathlib import Path


def in_turn(i, j):
    return (i + j) % 2 == 0


class Shell:
    """A grid of quadrilaterals cut into triangles, with its supports and loads.

    rising(i, j) chooses the diagonal of a quadrilateral: the one from its first corner, or the other.
    """

    def __init__(self, nx, ny, place, material, rising=in_turn):
        self.nx, self.ny, self.material = nx, ny, material
        self.nodes = [place(i / nx, j / ny) for j in range(ny + 1) for i in range(nx + 1)]
        self.triangles = []
        for j in range(ny):
            for i in range(nx):
                a = self.node(i, j)
                b, c, d = a + 1, a + nx + 2, a + nx + 1
                self.triangles += [(a, b, c), (a, c, d)] if rising(i, j) else [(a, b, d), (b, c, d)]
        self.supports, self.loads, self.rest, self.settings = {}, [], [], []

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
        """A force per length along the line of these nodes."""
        edges = set(zip(nodes, nodes[1:])) | set(zip(nodes[1:], nodes))
        records = []
        for number, t in enumerate(self.triangles, 1):
            for k in range(3):
                if (t[k], t[(k + 1) % 3]) in edges:
                    records.append(f"{number} {k} " + " ".join(map(repr, values)))
        self.rest.append("\n".join(["face_loads", *records, "end"]))

    def text(self, six):
        lines = ["problem type: 3d", "Solver SkyLine", *self.settings]
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


class Runner:
    def __init__(self, program):
        self.program = program

    def results(self, shell, six, suffix):
        """The lines of a result file."""
        with tempfile.TemporaryDirectory() as folder:
            (Path(folder) / "model.dat").write_text(shell.text(six))
            run = subprocess.run([self.program, "model.dat", "model.txt"], cwd=folder, text=True,
                                 capture_output=True)
            if run.returncode:
                raise SystemExit(f"{self.program}: {run.stderr}")
            return (Path(folder) / f"model{suffix}").read_text().splitlines()

    def displacement(self, shell, six, node):
        """The six displacements of a node."""
        for line in self.results(shell, six, ".txt"):
            words = line.split()
            if words and words[0] == str(node):
                return [float(word) for word in words[1:]]
        raise SystemExit(f"no node {node}")

    def moments(self, shell):
        """The moments at all points of all triangles, with six nodes."""
        lines = iter(self.results(shell, True, ".morlen.res"))
        while not next(lines).startswith("Momentus"):
            pass
        values = []
        for line in lines:
            words = line.split()
            if words[0][0].isalpha():
                if values:
                    break
                continue  # the names of the components
            values += [float(word) for word in words[-3:]]
        return values

    def table(self, title, sizes, columns, kinds=("3 nodes", "6 nodes")):
        """columns: (heading, problem(n) -> (shell, node, component, reference))."""
        print(f"\n{title}\n")
        heads = [f"{head}, {kind}" for head, _ in columns for kind in kinds]
        print("| mesh | " + " | ".join(heads) + " |")
        print("|---" * (len(heads) + 1) + "|")
        for n in sizes:
            row, size = [], ""
            for _, problem in columns:
                shell, node, component, reference = problem(n)
                size = size or f"{shell.nx} × {shell.ny}"
                for kind in kinds:
                    u = self.displacement(shell, kind == "6 nodes", node)
                    row.append(f"{u[component] / reference:.3f}")
            print(f"| {size} | " + " | ".join(row) + " |", flush=True)


def cantilever(t):
    """10 × 2, clamped at x = 0, a line load on the tip; no Poisson ratio: a beam with shear."""
    E, L, b, P = 1e6, 10.0, 2.0, 1.0

    def problem(n):
        shell = Shell(n, max(n // 4, 1), lambda u, v: (L * u, b * v, 0.0), f"E={E} nu=0 G={E / 2} t={t}")
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

    def problem(n):
        shell = Shell(n, n, lambda u, v: (a / 2 * u, a / 2 * v, 0.0), f"E={E} nu={NU} G={E / 2 / (1 + NU)} t={t}")
        shell.hold(shell.column(0), "100011")
        shell.hold(shell.row(0), "010101")
        # Simply supported: tangential rotations held, as in the series.
        shell.hold(shell.column(-1), "111111" if clamped else "111100")
        shell.hold(shell.row(-1), "111111" if clamped else "111010")
        shell.pressure(0.0, 0.0, 1.0)
        return shell, 1, 2, reference
    return problem


def roof(n):
    R, L, angle = 25.0, 50.0, math.radians(40)
    shell = Shell(n, n, lambda u, v: (R * math.sin(angle * u), L / 2 * v, R * math.cos(angle * u)),
                  "E=4.32e8 nu=0 G=2.16e8 t=0.25 Weight=360")
    shell.settings = ["GravityDirection 0 0 -1"]
    shell.hold(shell.column(0), "100011")
    shell.hold(shell.row(0), "010101")   # the middle of the span
    shell.hold(shell.row(-1), "101000")  # the diaphragm
    return shell, shell.node(-1, 0), 2, -0.3024


def pinched_cylinder(n):
    R, L = 300.0, 600.0
    E = 3e6
    shell = Shell(n, n, lambda u, v: (R * math.sin(math.pi / 2 * u), L / 2 * v, R * math.cos(math.pi / 2 * u)),
                  f"E={E} nu=0.3 G={E / 2.6} t=3")
    shell.hold(shell.column(0), "100011")
    shell.hold(shell.column(-1), "001110")
    shell.hold(shell.row(0), "010101")
    shell.hold(shell.row(-1), "101000")
    shell.load(1, 0.0, 0.0, -0.25, 0.0, 0.0, 0.0)
    return shell, 1, 2, -1.8248e-5


HEMISPHERE_MATERIAL = f"E=6.825e7 nu=0.3 G={6.825e7 / 2.6} t=0.04"


def on_hemisphere(sector):
    def place(u, v):
        a, b = sector * u, math.radians(72) * v
        return 10 * math.cos(a) * math.cos(b), 10 * math.sin(a) * math.cos(b), 10 * math.sin(b)
    return place


def hemisphere(rotations):
    """A quarter; its symmetry planes hold their rotations or not."""
    def problem(n):
        shell = Shell(n, n, on_hemisphere(math.pi / 2), HEMISPHERE_MATERIAL)
        shell.hold(shell.column(0), "010101" if rotations else "010000")   # the plane y = 0
        shell.hold(shell.column(-1), "100011" if rotations else "100000")  # the plane x = 0
        shell.hold([1], "001000")
        shell.load(1, 1.0, 0.0, 0.0, 0.0, 0.0, 0.0)
        shell.load(shell.node(-1, 0), 0.0, -1.0, 0.0, 0.0, 0.0, 0.0)
        return shell, 1, 0, 0.0924
    return problem


def whole_hemisphere(n):
    """Four times as many elements around: the last column of nodes is the first one."""
    shell = Shell(4 * n, n, on_hemisphere(2 * math.pi), HEMISPHERE_MATERIAL)
    last = {shell.node(-1, j): shell.node(0, j) for j in range(n + 1)}
    shell.triangles = [tuple(last.get(node, node) for node in t) for t in shell.triangles]
    left = [node for node in range(1, len(shell.nodes) + 1) if node not in last]
    number = {node: i for i, node in enumerate(left, 1)}
    shell.nodes = [shell.nodes[node - 1] for node in left]
    shell.triangles = [tuple(number[node] for node in t) for t in shell.triangles]
    # The loaded points, in the order of the angle; symmetry leaves them the held components.
    points = [1 + k * n for k in range(4)]
    for point, flags in zip(points, ("011000", "101000", "011000")):
        shell.hold([point], flags)
    for point, force in zip(points, ((2.0, 0.0), (0.0, -2.0), (-2.0, 0.0), (0.0, 2.0))):
        shell.load(point, *force, 0.0, 0.0, 0.0, 0.0)
    return shell, 1, 0, 0.0924


def twisted(direction):
    E, L, b = 29e6, 12.0, 1.1

    def place(u, v):
        a, y = math.pi / 2 * u, b * (v - 0.5)
        return L * u, y * math.cos(a), y * math.sin(a)

    def problem(n):
        shell = Shell(6 * n, n, place, f"E={E} nu=0.22 G={E / 2.44} t=0.32")
        shell.hold(shell.column(0), "111111")
        node = shell.node(-1, n // 2)
        force = [0.0] * 6
        force[direction] = 1.0
        shell.load(node, *force)
        # At the tip the strip's width lies along z.
        return shell, node, direction, {2: 5.424e-3, 1: 1.754e-3}[direction]
    return problem


def cut_corners(t, corners):
    """A whole square plate, simply supported; the diagonals cut off none, two or four corners."""
    E, a = 1e6, 10.0

    def rising(n):
        return {0: lambda i, j: (2 * i < n) == (2 * j < n), 2: lambda i, j: True,
                4: lambda i, j: (2 * i < n) != (2 * j < n)}[corners]

    def problem(n):
        shell = Shell(n, n, lambda u, v: (a * u, a * v, 0.0), f"E={E} nu={NU} G={E / 2 / (1 + NU)} t={t}",
                      rising(n))
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
    shell = Shell(n, n, place, f"E=1e6 nu={NU} G={1e6 / 2 / (1 + NU)} t=0.2")
    for k in (0, -1):
        shell.hold(shell.column(k), "111000")
        shell.hold(shell.row(k), "111000")
    shell.pressure(*OBLIQUE_Z)
    return shell


def rounded_slabs(run, sizes):
    """Deflection of the middle by that of the exact slab, and the largest difference of moments."""
    all_decimals = (2, 3, 4, 5, 6, 7)
    print("\nOblique slab with rounded coordinates: deflection; error of moments\n")
    print("| mesh | " + " | ".join(f"{d} decimals" for d in all_decimals) + " |")
    print("|---" * (len(all_decimals) + 1) + "|")

    def deflection(shell, n):
        u = run.displacement(shell, True, shell.node(n // 2, n // 2))
        return sum(a * b for a, b in zip(u, OBLIQUE_Z))
    for n in sizes:
        exact = oblique_slab(n, None)
        w, moments = deflection(exact, n), run.moments(exact)
        largest = max(map(abs, moments))
        row = []
        for decimals in all_decimals:
            slab = oblique_slab(n, decimals)
            error = max(abs(a - b) for a, b in zip(run.moments(slab), moments)) / largest
            row.append(f"{deflection(slab, n) / w:.3f}; {100 * error:.0f} %")
        print(f"| {n} × {n} | " + " | ".join(row) + " |", flush=True)


def sprung_plate(n, stiffness):
    """A rigid plate on equal springs at all nodes: it sinks by the load over their sum."""
    shell = Shell(n, n, lambda u, v: (10 * u, 10 * v, 0.0), "E=1e9 nu=0.3 G=3.846e8 t=1")
    shell.pressure(0.0, 0.0, 1.0)
    records = [f"{i} 112000 0 0 {stiffness} 0 0 0" for i in range(1, len(shell.nodes) + 1)]
    shell.rest.append("\n".join(["constraints", *records, "end constraints"]))
    return shell


def springs(run, sizes):
    print("\nPlate on springs of all nodes: stiffness of the springs by that given\n")
    print("| mesh | 3 nodes | 6 nodes |\n|---|---|---|")
    for n in sizes:
        shell = sprung_plate(n, 2.0)
        given = 100.0 / (2.0 * len(shell.nodes))
        row = [f"{given / run.displacement(shell, six, shell.node(n // 2, n // 2))[2]:.3f}" for six in (False, True)]
        print(f"| {n} × {n} | " + " | ".join(row) + " |", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program")
    parser.add_argument("--fine", action="store_true")
    options = parser.parse_args()
    run = Runner(str(Path(options.program).resolve()))
    more = [64] if options.fine else []
    run.table("Cantilever plate 10 × 2", [4, 8, 16, 32] + more,
              [(f"t = {t}", cantilever(t)) for t in (2.0, 0.5, 0.1)])
    run.table("Square plate, simply supported", [2, 4, 8, 16, 32] + more,
              [(f"a/t = {round(10 / t)}", square(t, False, navier(t))) for t in (2.0, 1.0, 0.1)])
    clamped = {t: ritz_clamped(t) for t in (2.0, 1.0)}
    clamped[0.1] = 0.00126532 * 1e4 * 12 * 0.91 / (1e6 * 0.1 ** 3)
    run.table("Square plate, clamped", [2, 4, 8, 16, 32] + more,
              [(f"a/t = {round(10 / t)}", square(t, True, w)) for t, w in clamped.items()])
    for t, w in clamped.items():
        print(f"clamped, a/t = {10 / t:g}: w D/(q a⁴) = {w * 1e6 * t ** 3 / (12 * 0.91) / 1e4:.7f}")
    for t in (2.0, 1.0, 0.1):
        print(f"supported, a/t = {10 / t:g}: w D/(q a⁴) = {navier(t) * 1e6 * t ** 3 / (12 * 0.91) / 1e4:.7f}")
    run.table("Cylindrical roof", [4, 8, 16, 32] + more, [("roof", roof)])
    run.table("Pinched cylinder", [4, 8, 16, 32] + more, [("cylinder", pinched_cylinder)])
    run.table("Hemisphere with a hole of 18°", [4, 8, 16, 32] + more,
              [("rotations held", hemisphere(True)), ("only displacements held", hemisphere(False)),
               ("whole hemisphere", whole_hemisphere)])
    run.table("Twisted strip", [2, 4, 8, 16], [("in plane", twisted(2)), ("out of plane", twisted(1))])
    run.table("Square plate with cut corners", [8, 16, 32] + more,
              [(f"a/t = {round(10 / t)}, {corners} cut", cut_corners(t, corners))
               for t in (1.0, 0.1) for corners in (0, 2, 4)], ["6 nodes"])
    rounded_slabs(run, [8, 16, 32] + more)
    springs(run, [4, 8, 16])


if __name__ == "__main__":
    main()
