#!/usr/bin/env python3
"""Runs the shell problems of docs/verification.md and prints their tables.

    scripts/verify_shells.py path/to/morlen [--fine]
    scripts/verify_shells.py path/to/morlen --benchmarks 8 16 32 [--only name ...]

Every table has the computed value divided by the reference, for three-node triangles and for
the same mesh with ConvertTo6Nodes. The first form prints the tables of standard shells; the last three of
them have faults of meshes, and --fine adds one more division. The second form runs all benchmarks with
these divisions, with standard and refined shells, and refined shells on other grids; exit status 1 when refined
shells of 32 divisions or more are not within 2 % of the reference (the hook 3.5 %). Standard library only.
"""

import argparse
import subprocess
import sys
import tempfile
from pathlib import Path

from shell_problems import (ALTERNATING, BENCHMARKS, DISTORTED, OBLIQUE_Z, ONE_WAY, cantilever, clamped_reference,
                            cut_corners, hemisphere, navier, oblique_slab, pinched_cylinder, roof, sprung_plate, square,
                            twisted, whole_hemisphere)


class Runner:
    def __init__(self, program):
        self.program = program

    def results(self, shell, six, suffix, formulation="Standard"):
        """The lines of a result file."""
        with tempfile.TemporaryDirectory() as folder:
            (Path(folder) / "model.dat").write_text(shell.text(six, formulation))
            run = subprocess.run([self.program, "model.dat", "model.txt"], cwd=folder, text=True,
                                 capture_output=True)
            if run.returncode:
                raise SystemExit(f"{self.program}: {run.stderr}")
            return (Path(folder) / f"model{suffix}").read_text().splitlines()

    def displacement(self, shell, six, node, formulation="Standard"):
        """The six displacements of a node."""
        for line in self.results(shell, six, ".txt", formulation):
            words = line.split()
            if words and words[0] == str(node):
                return [float(word) for word in words[1:]]
        raise SystemExit(f"no node {node}")

    def ratio(self, problem, n, grid, six, formulation):
        shell, node, component, reference = problem(n, grid)
        return self.displacement(shell, six, node, formulation)[component] / reference

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


def springs(run, sizes):
    print("\nPlate on springs of all nodes: stiffness of the springs by that given\n")
    print("| mesh | 3 nodes | 6 nodes |\n|---|---|---|")
    for n in sizes:
        shell = sprung_plate(n, 2.0)
        given = 100.0 / (2.0 * len(shell.nodes))
        row = [f"{given / run.displacement(shell, six, shell.node(n // 2, n // 2))[2]:.3f}" for six in (False, True)]
        print(f"| {n} × {n} | " + " | ".join(row) + " |", flush=True)


# Heading, grid, six nodes, formulation.
COMPARED = (("3 nodes, standard", ALTERNATING, False, "Standard"), ("3 nodes", ALTERNATING, False, "Refined"),
            ("3 nodes, one way", ONE_WAY, False, "Refined"), ("3 nodes, distorted", DISTORTED, False, "Refined"),
            ("6 nodes, standard", ALTERNATING, True, "Standard"), ("6 nodes", ALTERNATING, True, "Refined"),
            ("6 nodes, one way", ONE_WAY, True, "Refined"), ("6 nodes, distorted", DISTORTED, True, "Refined"))


def tolerance(name):
    """The largest error of refined shells on a fine mesh. The reference of the hook is without shear."""
    return 0.035 if name == "hook" else 0.02


def benchmarks(run, names, sizes):
    """Prints the table. Returns what is wrong on meshes of 32 elements and more."""
    print("| problem | N | " + " | ".join(heading for heading, *_ in COMPARED) + " |")
    print("|---" * (len(COMPARED) + 2) + "|")
    wrong = []
    for name in names:
        for n in sizes:
            row = [run.ratio(BENCHMARKS[name], n, *kind) for _, *kind in COMPARED]
            print(f"| {name} | {n} | " + " | ".join(f"{value:.3f}" for value in row) + " |", flush=True)
            wrong += [f"{name}, {n}, {heading}: {value:.3f}"
                      for value, (heading, _, _, formulation) in zip(row, COMPARED)
                      if n >= 32 and formulation == "Refined" and abs(value - 1) > tolerance(name)]
    return wrong


def standard_tables(run, more):
    run.table("Cantilever plate 10 × 2", [4, 8, 16, 32] + more,
              [(f"t = {t}", cantilever(t)) for t in (2.0, 0.5, 0.1)])
    run.table("Square plate, simply supported", [2, 4, 8, 16, 32] + more,
              [(f"a/t = {round(10 / t)}", square(t, False, navier(t))) for t in (2.0, 1.0, 0.1)])
    clamped = {t: clamped_reference(t) for t in (2.0, 1.0, 0.1)}
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
    run.table("Twisted strip", [2, 4, 8, 16],
              [("in plane", twisted(2, 0.32, 5.424e-3)), ("out of plane", twisted(1, 0.32, 1.754e-3))])
    run.table("Square plate with cut corners", [8, 16, 32] + more,
              [(f"a/t = {round(10 / t)}, {corners} cut", cut_corners(t, corners))
               for t in (1.0, 0.1) for corners in (0, 2, 4)], ["6 nodes"])
    rounded_slabs(run, [8, 16, 32] + more)
    springs(run, [4, 8, 16])


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program")
    parser.add_argument("--fine", action="store_true")
    parser.add_argument("--benchmarks", type=int, nargs="+", metavar="N")
    parser.add_argument("--only", nargs="+", choices=BENCHMARKS, metavar="name")
    options = parser.parse_args()
    run = Runner(str(Path(options.program).resolve()))
    if options.benchmarks:
        wrong = benchmarks(run, options.only or BENCHMARKS, options.benchmarks)
        if wrong:
            sys.exit("too far from the reference:\n" + "\n".join(wrong))
    else:
        standard_tables(run, [64] if options.fine else [])


if __name__ == "__main__":
    main()
