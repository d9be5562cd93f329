#!/usr/bin/env python3
"""Compares the Python package with the program on a large model.

    python_arrays.py BUILD [--family block] [--size 58] [--runs 3]

Both read the problem file and solve it. The program writes its results, the package makes arrays of
displacements, reactions and stresses or forces. Prints the least processor times in seconds and
their ratio, and what the arrays alone take. The usual model has 205,379 nodes.
"""

import argparse
import os
import resource
import subprocess
import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).resolve().parent


def program(build, model):
    """The processor time of a run of the program, which writes its results."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run([build / "morlen", model, model.with_suffix(".txt")], check=True)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


PACKAGE = """
import sys, time
sys.path.insert(0, sys.argv[2])
begin = 0.0  # of the process
import morlen
imported = time.process_time()
model = morlen.read(sys.argv[1])
read = time.process_time()
results = model.solve()
solved = time.process_time()
arrays = [model.nodes.numbers, model.nodes.coordinates, results.displacements, results.reactions]
if len(results.beams): arrays += [results.beams.forces(), results.beams.displacements()]
if len(results.shells): arrays.append(results.shells.forces)
if len(results.solids): arrays.append(results.solids.stress)
end = time.process_time()
print(end - begin, imported - begin, read - imported, solved - read, end - solved, sum(map(len, arrays)))
"""


def package(build, model):
    """Times: all, import, reading, analysis, arrays."""
    done = subprocess.run(
        [sys.executable, "-c", PACKAGE, model, build / "python"],
        check=True,
        capture_output=True,
        text=True,
    )
    return [float(word) for word in done.stdout.split()]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawTextHelpFormatter)
    parser.add_argument("build", type=Path)
    parser.add_argument("--family", default="block")
    parser.add_argument("--size", nargs="+", default=["58"])
    parser.add_argument("--runs", type=int, default=3)
    options = parser.parse_args()
    build = options.build.resolve()
    os.environ["PYTHONDONTWRITEBYTECODE"] = "1"
    with tempfile.TemporaryDirectory() as folder:
        model = Path(folder) / "model.dat"
        with model.open("w") as file:
            generate = [sys.executable, HERE / "generate_models.py", options.family, *options.size]
            subprocess.run(generate, check=True, stdout=file)
        programs, packages = [], []
        for _ in range(options.runs):  # by turns, so that both see the same machine
            programs.append(program(build, model))
            packages.append(package(build, model))
    best = min(packages)
    print(f"program {min(programs):.2f} s, package {best[0]:.2f} s: ratio {best[0] / min(programs):.3f}")
    parts = zip(("import", "reading", "analysis", "arrays"), best[1:5])
    print(", ".join(f"{name} {seconds:.3f} s" for name, seconds in parts))


if __name__ == "__main__":
    main()
