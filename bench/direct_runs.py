#!/usr/bin/env python3
"""Measures the processor time and the peak memory of whole runs by `Solver SkyLine`, by `Solver
Direct` and by CalculiX (`ccx`) with its faster solver, and prints a line of JSON for each model.

    direct_runs.py [-n REPETITIONS] [--folder FOLDER] PROGRAM MODEL...

A MODEL is a family and its numbers, as in "frame3d 5 5 68". The runs take turns; each figure is the
median, or one run where it takes long. From a million equations on only `Solver Direct` runs. Models
and results go to a new folder below FOLDER.
"""

import json

from whole_runs import (Run, count_equations, generate, measure_models, peer_commands, peer_solvers,
                        run_in_turn)

SETTINGS = {"skyline": "Solver SkyLine", "direct": "Solver Direct"}
# The number of equations from which the others need far more memory than their limit.
ALONE = 1000000


def measure(program, model, folder, repetitions):
    words = model.split()
    equations = count_equations(words)
    alone = equations >= ALONE
    commands = {}
    for key, setting in SETTINGS.items():
        if key == "direct" or not alone:
            generate(words, folder / f"{key}.dat", "--setting", setting)
            commands[key] = [program, f"{key}.dat"]
    if not alone:
        usual, _ = peer_solvers(words[0], equations)
        commands.update(peer_commands(words, usual, folder))
    runs = run_in_turn(commands, folder, repetitions)
    print(json.dumps({"model": "_".join(words), "equations": equations,
                      **{name: {key: getattr(run, name) for key, run in runs.items()}
                         for name in Run._fields}}), flush=True)


if __name__ == "__main__":
    measure_models(measure, __doc__)
