#!/usr/bin/env python3
"""Measures whole runs against those of CalculiX (`ccx`, Debian package calculix-ccx) on the
same model, in processor time of one thread, and prints a line of JSON for each.

    whole_runs.py [-n REPETITIONS] [--folder FOLDER] PROGRAM MODEL...

A MODEL is a family and its numbers, as in "frame3d 5 5 68". Without `ccx` the peer's part is
empty. Models and results go to a new folder below FOLDER.
"""

import argparse
import collections
import json
import os
import pathlib
import re
import resource
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile

GENERATOR = pathlib.Path(__file__).resolve().with_name("generate_models.py")
# The number of equations of each family.
EQUATIONS = {
    "frame3d": lambda nx, ny, storeys: 6 * (nx + 1) * (ny + 1) * (storeys + 1),
    "portal2d": lambda bays, storeys: 3 * (bays + 1) * (storeys + 1),
    "block": lambda n: 3 * (n + 1) ** 3,
    "block10": lambda n: 3 * (2 * n + 1) ** 3,
    **dict.fromkeys(("plate", "sheet", "roof"), lambda n: 6 * (n + 1) ** 2),
    **dict.fromkeys(("plate6", "roof6"), lambda n: 6 * (2 * n + 1) ** 2)}
# Above this number of equations the peer runs only its faster solver for the family.
SMALL = 15000
DIRECT, ITERATIVE = "SPOOLES", "ITERATIVE CHOLESKY"
ONE_THREAD = {"OMP_NUM_THREADS": "1", "OPENBLAS_NUM_THREADS": "1"}
# Limits of every run: bytes, processor seconds.
MEMORY_LIMIT = 10 * 10**9
TIME_LIMIT = 15 * 60
# Processor seconds from which one run is enough.
LONG_RUN = 20.0

# What a run took. failure: "" when it has succeeded; then only are the others numbers.
Run = collections.namedtuple("Run", "seconds megabytes failure")


def limit_resources():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY_LIMIT, MEMORY_LIMIT))
    resource.setrlimit(resource.RLIMIT_CPU, (TIME_LIMIT, TIME_LIMIT + 5))


def failure_of(code, log):
    """A word for a run that has ended with this code after printing `log`."""
    if code == 0:
        return ""
    if code == -signal.SIGXCPU:
        return f"more than {TIME_LIMIT // 60} min"
    if re.search(r"alloc|memory|on heap", log[-2000:], re.IGNORECASE):
        return f"more than {MEMORY_LIMIT // 10**9} GB"
    return "fails"


def run_once(command, folder):
    with tempfile.TemporaryFile("w+", encoding="utf-8", errors="replace") as log:
        # pylint: disable=consider-using-with,subprocess-popen-preexec-fn
        child = subprocess.Popen(command, cwd=folder, stdout=log, stderr=log,
                                 env={**os.environ, **ONE_THREAD}, preexec_fn=limit_resources)
        _, status, usage = os.wait4(child.pid, 0)
        child.returncode = os.waitstatus_to_exitcode(status)
        log.seek(0)
        failure = failure_of(child.returncode, log.read())
    if failure:
        return Run(None, None, failure)
    return Run(usage.ru_utime + usage.ru_stime, 1024 * usage.ru_maxrss / 1e6, "")


def processor_seconds(command, folder):
    """None when the command fails."""
    return run_once(command, folder).seconds


def median_of(runs):
    failed = [run for run in runs if run.failure]
    return failed[0] if failed else Run(statistics.median(run.seconds for run in runs),
                                        statistics.median(run.megabytes for run in runs), "")


def run_in_turn(commands, folder, repetitions):
    """The medians of each command, by its key. One that fails or takes long runs once."""
    runs = {key: [run_once(command, folder)] for key, command in commands.items()}
    again = [key for key, (first,) in runs.items() if not first.failure and first.seconds < LONG_RUN]
    for _ in range(1, repetitions):
        for key in again:
            runs[key].append(run_once(commands[key], folder))
    return {key: median_of(of) for key, of in runs.items()}


def generate(words, path, *options):
    with open(path, "w", encoding="ascii") as out:
        subprocess.run([sys.executable, GENERATOR, *options, *words], stdout=out, check=True)


def count_equations(words):
    return EQUATIONS[words[0]](*map(int, words[1:]))


def peer_solvers(kind, equations):
    """Those of which the faster one counts, then the ones that run only when these fail."""
    if not shutil.which("ccx"):
        return [], []
    if equations <= SMALL:
        return [DIRECT, ITERATIVE], []
    return ([ITERATIVE], [DIRECT]) if kind.startswith("block") else ([DIRECT], [ITERATIVE])


def peer_commands(words, solvers, folder):
    """By the solvers' names; writes the input files."""
    for solver in solvers:
        generate(words, folder / f"{solver[:7]}.inp", "--peer", solver)
    return {solver.lower(): ["ccx", solver[:7]] for solver in solvers}


def measure(program, model, folder, repetitions):
    words = model.split()
    name = "_".join(words)
    problem = folder / f"{name}.dat"
    generate(words, problem)
    equations = count_equations(words)
    repetitions = repetitions if equations <= 60000 else min(repetitions, 3)
    usual, others = peer_solvers(words[0], equations)
    runs = run_in_turn({"ours": [program, problem.name], **peer_commands(words, usual, folder)},
                       folder, repetitions)
    if usual and all(runs[solver.lower()].failure for solver in usual):
        runs.update(run_in_turn(peer_commands(words, others, folder), folder, repetitions))
    run = {"model": name, "equations": equations,
           **{key: {solver: getattr(one, key) for solver, one in runs.items()} for key in Run._fields}}
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
