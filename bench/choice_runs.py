#!/usr/bin/env python3
"""Measures the processor time of whole runs by `Solver Automatic` and by each solver, and prints a
line of JSON for each model.

    choice_runs.py [-n REPETITIONS] [--folder FOLDER] PROGRAM MODEL...

A MODEL is a family and its numbers, as in "frame3d 5 5 68". The runs take turns; each figure is the
median, or one run where it is far from the best. The skyline is left out where it would take long, since it is then the slower one. A run that fails has no figure. Models and results go to a
new folder below FOLDER.
"""

import json
import re
import statistics

from whole_runs import generate, measure_models, processor_seconds

SETTINGS = {"automatic": "Solver Automatic", "skyline": "Solver SkyLine",
            "direct": "Solver Direct", "sparse": "Solver Sparse 1e-5 0.1 3000"}
# Seconds that the program estimates for the skyline.
LONG = 60.0
# Processor seconds from which three runs are enough.
LONG_RUN = 5.0
# A solver this many times slower than the fastest runs once.
FAR = 2.0


def find(pattern, text, default=""):
    found = re.search(pattern, text)
    return found.group(1) if found else default


def measure(program, model, folder, repetitions):
    words = model.split()
    for key, setting in SETTINGS.items():
        generate(words, folder / f"{key}.dat", "--setting", setting)

    def seconds(key):
        return processor_seconds([program, "-i", f"{key}.info", f"{key}.dat"], folder)

    first = seconds("automatic")  # warms up, and reports the choice
    info = (folder / "automatic.info").read_text(encoding="utf-8")
    skyline = find(r"Solver SkyLine with (\S+) s and", info) or find(r"estimated (\S+) s and", info, "0")
    keys = [key for key in SETTINGS if key != "skyline" or float(skyline) <= LONG]
    times = {key: [seconds(key)] for key in keys}
    ran = {key: of[0] for key, of in times.items() if of[0] is not None}
    near = [key for key, one in ran.items() if one <= FAR * min(ran.values())]
    repetitions = repetitions if (first or 0.0) < LONG_RUN else min(repetitions, 3)
    # Each begins in its turn: the first run that needs much memory may wait for the system.
    for turn in range(1, repetitions):
        start = turn % max(len(near), 1)
        for key in near[start:] + near[:start]:
            times[key].append(seconds(key))
    run = {"model": "_".join(words), "equations": int(find(r"Degrees of freedom= *(\d+)", info, "0")),
           "chosen": " then ".join(re.findall(r"Solver (\S+) taken", info)),
           "reason": find(r"taken: (.*)", info),
           "seconds": {key: None for key in SETTINGS}}
    for key in keys:
        run["seconds"][key] = None if None in times[key] else statistics.median(times[key])
    print(json.dumps(run), flush=True)


if __name__ == "__main__":
    measure_models(measure, __doc__)
