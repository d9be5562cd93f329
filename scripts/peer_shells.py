#!/usr/bin/env python3
"""Solves the benchmarks of shell_problems.py with CalculiX, on the same meshes and loads.

    scripts/peer_shells.py 8 16 [--ccx path/to/ccx] [--only name ...] [--elements S3 S6 US3 S8R]

Prints the displacement divided by the reference. S8R has the quadrilaterals of the grid in place of the
triangles. Not for daily use: CalculiX expands S3, S6 and S8R to solids, which do not take the supports of
symmetry planes in curved shells, so that some rows cannot be computed. Standard library only.
"""

import argparse
import math
import re
import subprocess
import tempfile
from pathlib import Path

from shell_problems import BENCHMARKS


def cross(a, b):
    return [a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]]


class Model:
    """The nodes, elements and nodal loads that CalculiX gets from a shell."""

    def __init__(self, shell, element):
        self.shell, self.element = shell, element
        self.nodes, self.middles = list(shell.nodes), {}
        self.material = {key: float(value) for key, value in
                         (item.split("=") for item in shell.material.split())}
        self.elements = [self.with_middles(corners) for corners in self.corners()]
        self.forces = {}
        for node, *values in shell.loads:
            self.add_force(node, values)
        if "Weight" in self.material:
            self.add_area_load([0.0, 0.0, -self.material["Weight"] * self.material["t"]])
        for block in shell.rest:
            self.add_block(block)

    def corners(self):
        if self.element != "S8R":
            return self.shell.triangles
        return [self.quadrilateral(*self.shell.triangles[k:k + 2]) for k in range(0, len(self.shell.triangles), 2)]

    @staticmethod
    def quadrilateral(t, s):
        """The two triangles of a grid are (a, b, c), (a, c, d) or (a, b, d), (b, c, d)."""
        return (*t, s[2]) if s[1] == t[2] and s[0] == t[0] else (t[0], t[1], s[1], s[2])

    def middle(self, a, b):
        key = (min(a, b), max(a, b))
        if key not in self.middles:
            self.nodes.append(tuple((x + y) / 2 for x, y in zip(self.nodes[a - 1], self.nodes[b - 1])))
            self.middles[key] = len(self.nodes)
        return self.middles[key]

    def with_middles(self, corners):
        if self.element in ("S3", "US3"):
            return corners
        return (*corners, *(self.middle(a, b) for a, b in zip(corners, corners[1:] + corners[:1])))

    def add_force(self, node, values):
        old = self.forces.setdefault(node, [0.0] * 6)
        for k, value in enumerate(values):
            old[k] += value

    def area(self, corners):
        normal = [0.0] * 3
        a = self.nodes[corners[0] - 1]
        for p, q in zip(corners[1:], corners[2:]):
            c = cross([x - y for x, y in zip(self.nodes[p - 1], a)], [x - y for x, y in zip(self.nodes[q - 1], a)])
            normal = [x + y / 2 for x, y in zip(normal, c)]
        return math.hypot(*normal)

    def add_area_load(self, force):
        """Consistent loads: a third to the corners, or to the middles with six nodes."""
        for element in self.elements:
            if len(element) == 8:
                shares = dict(zip(element, [-1 / 12] * 4 + [1 / 3] * 4))
                area = self.area(element[:4])
            else:
                shares = {node: 1 / 3 for node in element[-3:]}
                area = self.area(element[:3])
            for node, share in shares.items():
                self.add_force(node, [share * area * f for f in force])

    def add_block(self, block):
        name, *records, _ = block.split("\n")
        if name == "global_pressure_loads":
            self.add_area_load([float(x) for x in records[0].split()[1:]])
            return
        for record in records:
            number, edge, *force = record.split()
            t = self.shell.triangles[int(number) - 1]
            a, b = t[int(edge)], t[(int(edge) + 1) % 3]
            length = math.dist(self.nodes[a - 1], self.nodes[b - 1])
            middle = self.middles.get((min(a, b), max(a, b)))
            shares = {a: 1 / 6, b: 1 / 6, middle: 2 / 3} if middle else {a: 1 / 2, b: 1 / 2}
            for node, share in shares.items():
                self.add_force(node, [share * length * float(f) for f in force])

    def supports(self):
        """The supports of the nodes of the file; a middle between two on the border has what both have."""
        edges = {}
        for corners in self.corners():
            for a, b in zip(corners, corners[1:] + corners[:1]):
                key = (min(a, b), max(a, b))
                edges[key] = edges.get(key, 0) + 1
        supports = dict(self.shell.supports)
        everywhere = set.intersection(*({k for k in range(6) if supports.get(n, "000000")[k] == "1"}
                                        for n in range(1, len(self.shell.nodes) + 1)))
        for (a, b), node in self.middles.items():
            held = [x == y == "1" and (edges[a, b] == 1 or k in everywhere) for k, (x, y) in
                    enumerate(zip(supports.get(a, "000000"), supports.get(b, "000000")))]
            if any(held):
                supports[node] = "".join("01"[h] for h in held)
        return supports

    def text(self, node):
        user = self.element == "US3"
        lines = ["*USER ELEMENT,TYPE=US3,NODES=3,INTEGRATION POINTS=3,MAXDOF=6"] if user else []
        lines += ["*NODE,NSET=NALL"]
        # Fields have at most 20 characters.
        lines += [f"{n}," + ",".join(f"{c:.13g}" for c in x) for n, x in enumerate(self.nodes, 1)]
        lines += [f"*ELEMENT,TYPE={self.element},ELSET=EALL"]
        lines += [f"{n}," + ",".join(map(str, e)) for n, e in enumerate(self.elements, 1)]
        E, nu, t = (self.material[key] for key in ("E", "nu", "t"))
        lines += ["*MATERIAL,NAME=M", "*ELASTIC", f"{E!r},{nu!r}"]
        lines += ["*USER SECTION,ELSET=EALL,MATERIAL=M,CONSTANTS=1" if user else "*SHELL SECTION,ELSET=EALL,MATERIAL=M",
                  repr(t), "*BOUNDARY"]
        lines += [f"{n},{k},{k}" for n, flags in sorted(self.supports().items())
                  for k in range(1, 7) if flags[k - 1] == "1"]
        lines += ["*STEP", "*STATIC", "*CLOAD"]
        lines += [f"{n},{k},{value!r}" for n, values in sorted(self.forces.items())
                  for k, value in enumerate(values, 1) if value]
        lines += [f"*NSET,NSET=OUT\n{node}", "*NODE PRINT,NSET=OUT", "U", "*END STEP"]
        return "\n".join(lines) + "\n"


def displacement(ccx, model, node, component):
    with tempfile.TemporaryDirectory() as folder:
        (Path(folder) / "m.inp").write_text(model.text(node))
        run = subprocess.run([ccx, "m"], cwd=folder, text=True, capture_output=True)
        printed = Path(folder) / "m.dat"
        for line in printed.read_text().splitlines() if printed.exists() else []:
            if re.match(rf"\s*{node}\s", line):
                return float(line.split()[1 + component])
        raise RuntimeError((re.findall(r"\*ERROR.*", run.stdout) or ["no result"])[0])


def ratio(ccx, name, n, element):
    shell, node, component, reference = BENCHMARKS[name](n)
    try:
        return f"{displacement(ccx, Model(shell, element), node, component) / reference:.3f}"
    except RuntimeError as error:
        return str(error).replace("|", "/")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("sizes", type=int, nargs="+", metavar="N")
    parser.add_argument("--ccx", default="ccx")
    parser.add_argument("--only", nargs="+", choices=BENCHMARKS, metavar="name", default=list(BENCHMARKS))
    parser.add_argument("--elements", nargs="+", choices=("S3", "S6", "US3", "S8R"), default=["S3", "S6", "US3"])
    options = parser.parse_args()
    print("| problem | N | " + " | ".join(options.elements) + " |")
    print("|---" * (len(options.elements) + 2) + "|")
    for name in options.only:
        for n in options.sizes:
            row = [ratio(options.ccx, name, n, element) for element in options.elements]
            print(f"| {name} | {n} | " + " | ".join(row) + " |", flush=True)


if __name__ == "__main__":
    main()
