#!/usr/bin/env python3
"""Compares solids with closed forms and a published value, on finer and finer meshes.

    scripts/verify_solids.py build/release/morlen [CASE ...]

Cases: cantilever, cylinder, le10 (all of them when none is named). Prints the tables of
docs/verification.md; exit status 1 when the finest mesh of ten-node elements is farther
from the reference than the tolerance of its table. Needs the standard library only.
"""

import math
import pathlib
import subprocess
import sys
import tempfile

from solid_mesh import SolidMesh, write_problem


class Results:
    """Displacements of the text results and stresses of the post-process results, by node."""

    def __init__(self, text, kiv):
        self.displacements = self.table(text.split("NODAL DISPLACEMENTS")[1].split("REACTIONS")[0])
        self.stresses = self.table(kiv.split("Txz\n")[1].split("Von Misses")[0])

    @staticmethod
    def table(block):
        rows = (line.split() for line in block.splitlines())
        return {int(row[0]): [float(x) for x in row[1:]] for row in rows
                if len(row) > 3 and row[0].isdigit()}


def run(program, mesh, title, material, supports, side_loads, settings=()):
    with tempfile.TemporaryDirectory() as folder:
        model = pathlib.Path(folder) / "model.dat"
        with model.open("w") as out:
            write_problem(out, mesh, [title], material, supports, side_loads, settings)
        done = subprocess.run([program, str(model), str(model.with_suffix(".txt"))],
                              capture_output=True, text=True, check=False)
        if done.returncode:
            sys.exit(f"{title}: {done.stderr}")
        return Results(model.with_suffix(".txt").read_text(),
                       model.with_suffix(".morlen.res").read_text())


def near(a, b):
    return abs(a - b) < 1e-6


FREE = (0.0, 0.0, 0.0)


class Supports(dict):
    """Rigid supports; several may hold different components of a node."""

    def hold(self, nodes, flags):
        for node in nodes:
            old = self.get(node, ("000", FREE, ""))[0]
            self[node] = ("".join(max(a, b) for a, b in zip(old, flags)), FREE, "")
        return self


# ---------------------------------------------------------------- cases
# Each yields (mesh, equations, [values]) and has the headings and references of its values.

def cantilever(program, ten_nodes, n):
    """Length 10, section 1 x 2, E = 1000, nu = 0; clamped, a shear load of 1 on the end face."""
    length, width, depth = 10.0, 1.0, 2.0
    mesh = SolidMesh(ten_nodes)
    mesh.add_block((5 * n, n, 2 * n), lambda u, v, w: (length * u, width * v, depth * w))
    mesh.sort_nodes(lambda p: p)
    supports = Supports().hold(mesh.nodes_where(lambda x, y, z: near(x, 0.0)), "111")
    records = [(e, f, (0.0, 0.0, -1.0 / (width * depth)))
               for e, f, _ in mesh.sides_where(lambda x, y, z: near(x, length))]
    results = run(program, mesh, "Cantilever", "E = 1000 nu = 0", supports,
                  [("face_loads", records)])
    tip = mesh.node((length, 0.0, depth / 2))
    top = mesh.node((2 * length / 5, 0.0, depth))
    return mesh, [-results.displacements[tip][2], results.stresses[top][0]]


def cantilever_references():
    """Timoshenko's beam, PL³/(3EI) + 6PL/(5GA), and its stress M/W at x = 4."""
    inertia = 1.0 * 2.0 ** 3 / 12.0
    return [10.0 ** 3 / (3.0 * 1000.0 * inertia) + 6.0 * 10.0 / (5.0 * 500.0 * 2.0),
            6.0 / inertia]


CYLINDER = {"a": 1.0, "b": 2.0, "E": 1000.0, "nu": 0.3, "p": 10.0}


def cylinder(program, ten_nodes, n):
    """A quarter of a thick cylinder in plane strain, with a pressure inside."""
    a, b, p = CYLINDER["a"], CYLINDER["b"], CYLINDER["p"]
    thick = 0.5

    def place(u, v, w):
        r, angle = a + (b - a) * u, math.pi / 2 * v
        return r * math.cos(angle), r * math.sin(angle), thick * w

    mesh = SolidMesh(ten_nodes)
    mesh.add_block((n, 2 * n, max(1, n // 2)), place)
    mesh.sort_nodes(lambda q: (q[1], q[0], q[2]))
    supports = Supports().hold(mesh.nodes_where(lambda x, y, z: near(y, 0.0)), "010")
    supports.hold(mesh.nodes_where(lambda x, y, z: near(x, 0.0)), "100")
    supports.hold(mesh.nodes_where(lambda x, y, z: near(z, 0.0) or near(z, thick)), "001")
    inside = mesh.sides_where(lambda x, y, z: near(math.hypot(x, y), a))
    records = [(e, f, (0.0, 0.0, -p)) for e, f, _ in inside]
    results = run(program, mesh, "Cylinder", f"E = {CYLINDER['E']} nu = {CYLINDER['nu']}",
                  supports, [("local_pressure_loads", records)])
    inner = mesh.node((a, 0.0, 0.0))
    stress = results.stresses[inner]
    return mesh, [results.displacements[inner][0], stress[1], stress[0]]


def cylinder_references():
    a, b, E, nu, p = CYLINDER.values()
    k = p * a * a / (b * b - a * a)
    return [(1 + nu) / E * k * ((1 - 2 * nu) * a + b * b / a), k * (1 + b * b / (a * a)), -p]


def le10(program, ten_nodes, n):
    """Thick elliptic plate under a pressure of 1 MPa on top; m and MPa."""
    thick = 0.6

    def place(u, v, w):
        angle = math.pi / 2 * v
        inner = (2.0 * math.cos(angle), 1.0 * math.sin(angle))
        outer = (3.25 * math.cos(angle), 2.75 * math.sin(angle))
        return ((1 - u) * inner[0] + u * outer[0], (1 - u) * inner[1] + u * outer[1], thick * w)

    def rim(x, y, z):
        return near((x / 3.25) ** 2 + (y / 2.75) ** 2, 1.0)

    mesh = SolidMesh(ten_nodes)
    mesh.add_block((2 * n, 3 * n, 2 * max(1, n // 2)), place)
    mesh.sort_nodes(lambda q: (q[1], q[0], q[2]))
    supports = Supports().hold(mesh.nodes_where(lambda x, y, z: near(y, 0.0)), "010")
    supports.hold(mesh.nodes_where(lambda x, y, z: near(x, 0.0)), "100")
    supports.hold(mesh.nodes_where(rim), "110")
    supports.hold(mesh.nodes_where(lambda x, y, z: rim(x, y, z) and near(z, thick / 2)), "001")
    top = mesh.sides_where(lambda x, y, z: near(z, thick))
    records = [(e, f, (0.0, 0.0, -1.0)) for e, f, _ in top]
    results = run(program, mesh, "LE10", "E = 210000 nu = 0.3", supports,
                  [("local_pressure_loads", records)])
    return mesh, [results.stresses[mesh.node((2.0, 0.0, thick))][1]]


# case: function, headings, references, refinements of four and ten nodes, tolerances
CASES = {
    "cantilever": (cantilever, ("deflection of the end", "stress on top at x = 4"),
                   cantilever_references(), ((1, 2, 4, 8), (1, 2, 4)), (0.005, 0.01)),
    "cylinder": (cylinder, ("u_r at r = a", "hoop stress at r = a", "radial stress at r = a"),
                 cylinder_references(), ((2, 4, 8), (2, 4, 8)), (0.001, 0.01, 0.02)),
    "le10": (le10, ("sigma_yy at D, MPa",), [-5.38], ((2, 4, 8), (2, 4, 6, 8)), (0.02,)),
}


def show(program, name):
    make, headings, references, refinements, tolerances = CASES[name]
    print(f"\n{name}: {make.__doc__}\n")
    print("| nodes of an element | elements | equations | "
          + " | ".join(f"{h} | error" for h in headings) + " |")
    print("|" + "---|" * (3 + 2 * len(headings)))
    good = True
    for ten_nodes, sizes in zip((False, True), refinements):
        for n in sizes:
            mesh, values = make(program, ten_nodes, n)
            errors = [value / reference - 1.0 for value, reference in zip(values, references)]
            print(f"| {10 if ten_nodes else 4} | {len(mesh.elements)} | {3 * len(mesh.nodes)} | "
                  + " | ".join(f"{v:.5g} | {100 * e:+.2f} %" for v, e in zip(values, errors)) + " |")
        if ten_nodes:
            good = all(abs(e) <= t for e, t in zip(errors, tolerances))
    print("| reference | | | " + " | ".join(f"{r:.5g} |" for r in references) + " |")
    if not good:
        print("the finest mesh is too far from the reference")
    return good


def main():
    if len(sys.argv) < 2 or any(name not in CASES for name in sys.argv[2:]):
        sys.exit(__doc__)
    good = [show(sys.argv[1], name) for name in sys.argv[2:] or CASES]
    sys.exit(0 if all(good) else 1)


if __name__ == "__main__":
    main()
