#!/usr/bin/env python3
"""linear_time.py PROGRAM - whether the time of a run grows in proportion to its input.

Writes problem files that are large in one respect, and ten times as large, runs PROGRAM on both
and compares the processor times, less that of a run on a tiny file. Prints a line for each kind.
The exit status is 1 when the larger file takes more than 15 times as long as the smaller one.
"""
import os
import resource
import subprocess
import sys
import tempfile

FACTOR = 10
MOST = 15.0
REPETITIONS = 5


def problem(elements="", materials="", loads="", settings="", nodes=""):
    """A plane cantilever of one beam with more of some of its records."""
    return ("problem type 2d\n" + settings +
            "mesh dimension 2 elemtype Linear nnode 2\ncoordinates\n1 0 0\n2 1 0\n" + nodes +
            "end\nelements\n1 1 2 1\n" + elements +
            "end\nmaterials\n1 E 1 A 1 Iz 1\n" + materials +
            "end\nconstraints\n1 111 0 0 0\nend\n" + loads + "NumOfDivisions 1\n")


def lines(count, form):
    return "".join(form % (k + 2) if "%d" in form else form for k in range(count))


# For each kind: the smaller count, and the function from a count to the file.
KINDS = {
    "loads on one element": (
        100000, lambda n: problem(loads="local_pressure_loads\n" + lines(n, "1 0 1\n") + "end\n")),
    "loads on one node": (
        100000, lambda n: problem(loads="nodal_point_loads\n" + lines(n, "2 0 1 0\n") + "end\n")),
    "supports of one node": (
        100000, lambda n: problem(loads="constraints\n" + lines(n, "1 111 0 0 0\n") + "end\n")),
    "unit systems": (
        20000, lambda n: problem(settings="units_names\n" + lines(n, "u%d N m Pa 1 1\n") + "end\n")),
    "comments": (
        1000000, lambda n: problem(settings=lines(n, "# comment\n"))),
    "materials": (
        20000, lambda n: problem(materials=lines(n, "%d E 1 A 1 Iz 1\n"))),
    "materials far apart": (
        20000, lambda n: problem(materials=lines(n, "%d00 E 1 A 1 Iz 1\n"))),
    "elements": (
        5000, lambda n: problem(elements=lines(n, "%d 1 2 1\n"))),
    "elements far apart": (
        5000, lambda n: problem(elements=lines(n, "%d00 1 2 1\n"))),
    "hinges": (
        200000, lambda n: problem(loads="elem_rotules\n" + lines(n, "1 11\n") + "end\n")),
}


def seconds(program, text):
    """The least processor time of some runs on a problem file."""
    least = float("inf")
    with tempfile.TemporaryDirectory() as folder:
        file = os.path.join(folder, "model.dat")
        with open(file, "w") as f:
            f.write(text)
        for _ in range(REPETITIONS):
            before = resource.getrusage(resource.RUSAGE_CHILDREN)
            subprocess.run([program, file], check=True, stdout=subprocess.DEVNULL)
            after = resource.getrusage(resource.RUSAGE_CHILDREN)
            least = min(least, after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime)
    return least


def main():
    if len(sys.argv) != 2:
        print(__doc__)
        return 2
    program = os.path.abspath(sys.argv[1])
    empty = seconds(program, problem())
    worst = 0.0
    print("%-22s %9s %9s %9s %7s" % ("", "count", "s", "10x: s", "ratio"))
    for name, (count, text) in KINDS.items():
        small = max(seconds(program, text(count)) - empty, 1e-3)
        large = seconds(program, text(FACTOR * count)) - empty
        worst = max(worst, large / small)
        print("%-22s %9d %9.3f %9.3f %7.1f" % (name, count, small, large, large / small))
    return 1 if worst > MOST else 0


if __name__ == "__main__":
    sys.exit(main())
