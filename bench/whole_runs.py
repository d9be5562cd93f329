#!/usr/bin/env python3
"""Measures whole runs against those of CalculiX (`ccx`, Debian package calculix-ccx) on the
same model, in processor time of one thread, and prints a line of JSON for each.

    whole_runs.py [-n REPETITIONS] [--folder FOLDER] PROGRAM MODEL...

A MODEL is a family and its numbers, as in "frame3d 5 5 68". Without `ccx` the peer's part is
empty. Models and results go to a new folder below FOLDER.
"""

import argparse
import json
import os
import pathlib
import resource
import shutil
import statistics
import subprocess
import sys
import tempfile

GENERATOR = pathlib.Path(__file__).resolve().with_name("generate_models.py")
UNKNOWNS_A_NODE = {"frame3d": 6, "portal2d": 3, "plate": 6, "roof": 6, "block": 3, "block10": 3}
# Above this number of equations the peer runs only its faster solver for the family.
SMALL = 15000
DIRECT, ITERATIVE = "SPOOLES", "ITERATIVE CHOLESKY"
ONE_THREAD = {"OMP_NUM_THREADS": "1", "OPENBLAS_NUM_THREADS": "1"}
TIME_LIMIT = 1800


def of_children():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def processor_seconds(command, folder):
    """None when the command fails."""
    before = of_children()
    with open(os.devnull, "w", encoding="ascii") as nowhere:
        try:
            result = subprocess.run(command, cwd=folder, stdout=nowhere, stderr=nowhere, check=False,
                                    env={**os.environ, **ONE_THREAD}, timeout=TIME_LIMIT)
        except subprocess.TimeoutExpired:
            return None
    return of_children() - before if result.returncode == 0 else None


def median_seconds(command, folder, repetitions):
    times = [processor_seconds(command, folder) for _ in range(repetitions)]
    return None if None in times else statistics.median(times)


def generate(words, path, *options):
    with open(path, "w", encoding="ascii") as out:
        subprocess.run([sys.executable, GENERATOR, *options, *words], stdout=out, check=True)


def count_equations(words, path):
    with open(path, encoding="ascii") as lines:
        for line in lines:
            if line.startswith("coordinates"):
                break
        nodes = sum(1 for _ in iter(lambda: next(lines), "end coordinates\n"))
    return nodes * UNKNOWNS_A_NODE[words[0]]


def peer_solvers(kind, equations):
    if not shutil.which("ccx"):
        return []
    if equations <= SMALL:
        return [DIRECT, ITERATIVE]
    return [ITERATIVE] if kind.startswith("block") else [DIRECT]


def measure(program, model, folder, repetitions):
    words = model.split()
    name = "_".join(words)
    problem = folder / f"{name}.dat"
    generate(words, problem)
    equations = count_equations(words, problem)
    repetitions = repetitions if equations <= 60000 else max(1, repetitions // 2)
    run = {"model": name, "equations": equations,
           "seconds": median_seconds([program, problem.name], folder, repetitions), "peer": {}}
    for solver in peer_solvers(words[0], equations):
        generate(words, folder / "peer.inp", "--peer", solver)
        run["peer"][solver.lower()] = median_seconds(["ccx", "peer"], folder, repetitions)
    print(json.dumps(run), flush=True)


def measure_models(measure_one, description):
    """The command line of a script that measures models: calls measure_one(program, model, folder,
    repetitions) for each, with a folder that is removed afterwards."""
    parser = argparse.ArgumentParser(description=description,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("-n", type=int, default=5)
    parser.add_argument("--folder")
    parser.add_argument("program")
    parser.add_argument("models", nargs="+")
    options = parser.parse_args()
    program = str(pathlib.Path(options.program).resolve())
    for model in options.models:
        with tempfile.TemporaryDirectory(dir=options.folder) as folder:
            measure_one(program, model, pathlib.Path(folder), options.n)


if __name__ == "__main__":
    measure_models(measure, __doc__)
