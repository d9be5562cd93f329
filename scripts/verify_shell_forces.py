#!/usr/bin/env python3
"""Compares forces and moments of refined shells with published ones and with series.

    scripts/verify_shell_forces.py path/to/morlen 8 16 [--only plates roof cylinder hook spans]

The program gives forces at the centroid of a triangle of three nodes and at the middles of the edges with six
nodes. "Fitted" are the values at a point of the quadratic functions that fit, by least squares, those of all
triangles nearer than three elements; "nearest" are the values nearest to the point.
Standard library only.
"""

import argparse
import math
from pathlib import Path

from shell_problems import Shell, hook, isotropic, pinched_cylinder, roof, square
from shell_series import Cylinder, PinchedCylinder, Roof, solve
from verify_shells import Runner

BLOCKS = {"Axial": 0, "Momentus": 1, "Shear": 2}


def dot(a, b):
    return sum(x * y for x, y in zip(a, b))


def cross(a, b):
    return [a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]]


def unit(a):
    return [x / math.hypot(*a) for x in a]


def local_axes(a, b, c):
    """The local axes of a triangle without Euler angles, and its area."""
    normal = cross([q - p for p, q in zip(a, b)], [q - p for p, q in zip(a, c)])
    z = unit(normal)
    x = unit(cross([0, 1, 0] if abs(z[0]) < 1 / 64 and abs(z[1]) < 1 / 64 else [0, 0, 1], z))
    return x, cross(z, x), z, math.hypot(*normal) / 2


def turned(tensor, c, s):
    """Components xx, yy, xy in axes turned by the angle of this cosine and sine."""
    xx, yy, xy = tensor
    return [xx * c * c + yy * s * s + 2 * xy * c * s, xx * s * s + yy * c * c - 2 * xy * c * s,
            (yy - xx) * c * s + xy * (c * c - s * s)]


class Forces:
    """All points of a shell: place, forces, area, number of the triangle.

    The forces are N along, N across, N shear, M along, M across, M twist, Q along, Q across; along(x, y, z) is
    the direction "along", projected onto the triangle.
    """

    def __init__(self, run, shell, six, along):
        values = self.read(run.results(shell, six, ".morlen.res", "Refined"))
        self.points = []
        for number, t in enumerate(shell.triangles, 1):
            corners = [shell.nodes[n - 1] for n in t]
            x, y, _, area = local_axes(*corners)
            direction = along(*[sum(c) / 3 for c in zip(*corners)])
            c, s = unit([dot(direction, x), dot(direction, y)])
            rows = zip(*(values[block][number] for block in range(3)))
            weights = ((0.5, 0.5, 0), (0, 0.5, 0.5), (0.5, 0, 0.5)) if six else ((1 / 3,) * 3,)
            for weight, (N, M, Q) in zip(weights, rows):
                place = [dot(weight, component) for component in zip(*corners)]
                shear = [Q[0] * c + Q[1] * s, Q[1] * c - Q[0] * s]
                self.points.append((place, turned(N, c, s) + turned(M, c, s) + shear, area / len(weights), number))

    @staticmethod
    def read(lines):
        values, block, number = ({}, {}, {}), None, 0
        for line in lines:
            words = line.split()
            if words[0][0].isalpha():
                block = BLOCKS.get(words[0], block)
            elif block is not None and len(words) >= 3:
                if len(words) == 4:
                    number = int(words[0])
                values[block].setdefault(number, []).append([float(w) for w in words[-3:]])
        return values

    def fitted(self, place, first, second, radius, k, one_sided=False):
        """The component k at the place, whose tangents are first and second; one-sided: by points before it."""
        rows = []
        for point, forces, _, _ in self.points:
            d = [p - q for p, q in zip(point, place)]
            if math.hypot(*d) < radius and not (one_sided and dot(d, first) > 0):
                a, b = dot(d, first) / radius, dot(d, second) / radius
                rows.append(((1.0, a, b, a * a, a * b, b * b), forces[k]))
        size = range(len(rows[0][0]))
        normal = [[sum(r[i] * r[j] for r, _ in rows) for j in size] for i in size]
        return solve(normal, [sum(r[i] * f for r, f in rows) for i in size])[0]

    def nearest(self, place, first, k, one_sided):
        """One-sided: at a line of supports across `first`, where points on the line are the nearest."""

        def distance(point):
            d = [p - q for p, q in zip(point[0], place)]
            return round(abs(dot(d, first)), 6) if one_sided else 0, math.hypot(*d)

        return min(self.points, key=distance)[1][k]


def compare(run, title, sizes, model, along, readings, one_sided=False):
    """model(n) -> (shell, length of an element); readings: (name, place, tangents, component, reference)."""
    print(f"\n{title}\n")
    print("| N | value | reference | 3 nodes, fitted | nearest | 6 nodes, fitted | nearest |")
    print("|---" * 7 + "|")
    for n in sizes:
        shell, h = model(n)
        both = [Forces(run, shell, six, along) for six in (False, True)]
        for name, place, tangents, k, reference in readings:
            row = []
            for forces in both:
                row += [forces.fitted(place, *tangents, 3 * h, k, one_sided), forces.nearest(place, tangents[0], k, one_sided)]
            print(f"| {n} | {name} | {reference:.5g} | " + " | ".join(f"{x / reference:.3f}" for x in row) + " |",
                  flush=True)


FLAT = ((1, 0, 0), (0, 1, 0))


def plates(run, sizes):
    """Side 10, load 1: Timoshenko and Woinowsky-Krieger, table 8; R. L. Taylor, S. Govindjee, Solution of clamped
    rectangular plate problems, Commun. Numer. Methods Engrg. 20 (2004). Moments of clamped thick plates are
    others."""
    for t in (1.0, 0.1, 0.01):
        for clamped in (False, True) if t < 1 else (False,):
            problem = square(t, clamped, 1.0)
            readings = [("moment, middle", (0, 0, 0), FLAT, 3, 2.2905 if clamped else 4.79)]
            readings += [("moment, edge", (5, 0, 0), FLAT, 3, -5.1334)] if clamped else \
                [("shear, edge", (5, 0, 0), FLAT, 6, -3.38)]
            compare(run, f"{'Clamped' if clamped else 'Supported'} plate, side by thickness {round(10 / t)}", sizes,
                    lambda n: (problem(n)[0], 5 / n), lambda *_: (1, 0, 0), readings)


def on_cylinder(R, y, phi):
    place = (R * math.sin(phi), y, R * math.cos(phi))
    return place, ((0, 1, 0), (math.cos(phi), 0, -math.sin(phi)))


def cylinder_readings(series, R, L, points):
    """points: (name, x from the diaphragm, phi, component)."""
    readings = []
    for name, x, phi, k in points:
        # The model's y is L/2 - x, and its axis across the cylinder is -phi: shears keep their sign.
        readings.append((name, *on_cylinder(R, L / 2 - x, phi), k, series.at(x, phi)[1][k]))
    return readings


def roofs(run, sizes):
    alpha = math.radians(40)
    series = Roof(Cylinder(25.0, 50.0, 4.32e8, 0.0, 0.25), alpha, 90.0)
    compare(run, "Roof", sizes, lambda n: (roof(n)[0], 25.0 / n), lambda *_: (0, 1, 0), cylinder_readings(
        series, 25.0, 50.0, [("N along, free edge, middle", 25, alpha, 0), ("N along, crown, middle", 25, 0, 0),
                             ("N across, crown, middle", 25, 0, 1), ("M across, crown, middle", 25, 0, 4),
                             ("M along, free edge, middle", 25, alpha, 3),
                             ("N shear, 20°, diaphragm", 0, alpha / 2, 2),
                             ("M twist, 20°, diaphragm", 0, alpha / 2, 5)]))


def cylinders(run, sizes):
    series = PinchedCylinder(Cylinder(300.0, 600.0, 3e6, 0.3, 3.0), 1.0)
    compare(run, "Pinched cylinder", sizes, lambda n: (pinched_cylinder(n)[0], 471.0 / n), lambda *_: (0, 1, 0),
            cylinder_readings(series, 300.0, 600.0, [
                ("N along, loaded line, L/4", 150, 0, 0), ("N across, loaded line, L/4", 150, 0, 1),
                ("M along, loaded line, L/4", 150, 0, 3), ("M across, loaded line, L/4", 150, 0, 4),
                ("N shear, 45°, diaphragm", 0, math.pi / 4, 2), ("M twist, 45°, diaphragm", 0, math.pi / 4, 5)]))


def hooks(run, sizes):
    """Shear, moment and torque of cross sections of the second arc by integration, by those of statics."""
    centre = (60 * math.sin(math.pi / 3), 14 - 60 * math.cos(math.pi / 3))

    def along(x, y, z):
        angle = math.atan2(x - centre[0], y - centre[1])
        return math.cos(angle), -math.sin(angle), 0

    print("\nHook: forces of sections by statics\n")
    print("| N | section | 3 nodes: shear | moment | torque | 6 nodes: shear | moment | torque |")
    print("|---" * 8 + "|")
    for n in sizes:
        shell = hook(n)[0]
        both = [Forces(run, shell, six, along) for six in (False, True)]
        for degrees in (60, 105, 135):
            row = []
            for forces in both:
                row += section(forces, shell, n + round(5 * n * degrees / 150) - 1)
            print(f"| {n} | {degrees}° | " + " | ".join(f"{x:.3f}" for x in row) + " |", flush=True)


def section(forces, shell, column):
    """Integrals over a column of elements, by the values of a force of 1 along z at the end.

    The printed shear is the mean of the shears of both directions. The shear of the section has half the
    twisting moment by the radius besides.
    """
    triangles = {2 * (column + j * shell.nx) + k + 1 for j in range(shell.ny) for k in (0, 1)}
    a, b, end = (shell.nodes[shell.node(i, 0) - 1] for i in (column, column + 1, -1))
    length = math.dist(a, b)
    tangent = [(q - p) / length for p, q in zip(a, b)]
    normal = cross(tangent, [0, 0, 1])
    shear = moment = torque = moment_arm = torque_arm = 0.0
    for place, f, area, number in forces.points:
        if number in triangles:
            width, arm = area / length, [q - p for p, q in zip(place, end)]
            shear += (f[2] + f[5] / 2 / 46) * width
            moment += f[0] * (place[2] - 10) * width
            torque += (f[6] * (place[2] - 10) - f[5]) * width
            moment_arm += dot(arm, tangent) * width / 20
            torque_arm += dot(arm, normal) * width / 20
    return abs(shear), abs(moment / moment_arm), abs(torque / torque_arm)


def continuous_slab(n):
    """Two spans of 6, 4 wide, t = 0.2, nu = 0, on three lines of supports, the ends of a line free."""
    shell = Shell(2 * n, max(2 * n // 3, 2), lambda u, v: (12 * u, 4 * v, 0.0), isotropic(3e7, 0.0, 0.2))
    for column in (0, n, 2 * n):
        shell.hold(shell.column(column), "001000")
    shell.hold([1], "110001")
    shell.hold([shell.node(-1, 0)], "010000")
    shell.pressure(0.0, 0.0, -10.0)
    return shell


def spans(run, sizes):
    """The slab over an interior line of supports is a beam with shear over two spans."""
    l, b, q, EI, GA = 6.0, 4.0, 10.0, 3e7 * 0.2 ** 3 / 12, 1.5e7 * 0.2 * 5 / 6
    M = q * l * l / 8 / (1 + 3 * EI / GA / l ** 2)  # over the support
    end = q * l / 2 - M / l
    compare(run, "Slab over an interior line of supports", sizes, lambda n: (continuous_slab(n), l / n),
            lambda *_: (1, 0, 0), [("moment, support", (l, b / 2, 0), FLAT, 3, M),
                                   ("moment, span", (end / q, b / 2, 0), FLAT, 3, -end ** 2 / 2 / q)], one_sided=True)
    deflection = 5 * q * l ** 4 / 384 / EI + q * l * l / 8 / GA - M * l * l / 16 / EI
    kinds = [(six, formulation) for six in (False, True) for formulation in ("Standard", "Refined")]
    print("\nDeflection in the middle of a span; sum of the reactions of the interior line\n")
    print("| N | " + " | ".join(f"{6 if six else 3} nodes, {f}" for six, f in kinds) + " |")
    print("|---" * 5 + "|")
    for n in sizes:
        shell, row = continuous_slab(n), []
        line = set(shell.column(n))
        for six, formulation in kinds:
            lines = run.results(shell, six, ".txt", formulation)
            words = [line.split() for line in lines[lines.index(next(x for x in lines if x.startswith("REACTIONS"))):]]
            reaction = sum(float(w[3]) for w in words if w and w[0].isdigit() and int(w[0]) in line)
            w = run.displacement(shell, six, shell.node(n // 2, shell.ny // 2), formulation)[2]
            row.append(f"{-w / deflection:.4f}; {reaction / 2 / b / (q * l - end):.4f}")
        print(f"| {n} | " + " | ".join(row) + " |", flush=True)


GROUPS = {"plates": plates, "roof": roofs, "cylinder": cylinders, "hook": hooks, "spans": spans}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program")
    parser.add_argument("sizes", type=int, nargs="+", metavar="N")
    parser.add_argument("--only", nargs="+", choices=GROUPS, default=list(GROUPS))
    options = parser.parse_args()
    run = Runner(str(Path(options.program).resolve()))
    for name in options.only:
        GROUPS[name](run, options.sizes)


if __name__ == "__main__":
    main()
