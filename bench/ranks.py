#!/usr/bin/env python3
"""What two ranks share: matrix values, memory and processor time of each, against one rank.

    ranks.py [--runs N] MORLEN_MPI [FAMILY NUMBER...]     default: roof 181

The information stream of morlen-mpi has the figures. Times are the least of the runs. Limits are for the rank
with the larger figure, but for matrix values, where the limit is for the first rank.
"""
import argparse
import os
import pathlib
import re
import resource
import subprocess
import sys
import tempfile

# Share of one rank's figure that a rank of two may have.
LIMITS = {"values": 0.55, "Mb": 0.62, "s": 0.65}


def run(program, model, ranks):
    environment = dict(os.environ, OMPI_ALLOW_RUN_AS_ROOT="1", OMPI_ALLOW_RUN_AS_ROOT_CONFIRM="1")
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    info = subprocess.run(
        ["mpirun", "-q", "--oversubscribe", "--bind-to", "none", "-n", str(ranks), program, "-i", "-", model],
        check=True, capture_output=True, text=True, env=environment).stdout
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    figures = {"values": [int(v) for v in re.findall(r"^Rank \d+: (\d+) matrix values", info, re.M)]}
    found = re.findall(r"^Rank \d+: (\d+) Mb of memory, ([\d.]+) seconds", info, re.M)
    figures["Mb"] = [float(megabytes) for megabytes, _ in found]
    figures["s"] = [float(seconds) for _, seconds in found]
    figures["all"] = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
    return figures


def best(program, model, ranks, runs):
    all_runs = [run(program, model, ranks) for _ in range(runs)]
    return min(all_runs, key=lambda figures: max(figures["s"] or [figures["all"]]))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--runs", type=int, default=3)
    parser.add_argument("program")
    parser.add_argument("model", nargs="*")
    arguments = parser.parse_args()
    generator = pathlib.Path(__file__).parent / "generate_models.py"
    with tempfile.TemporaryDirectory() as folder:
        model = os.path.join(folder, "model.dat")
        with open(model, "w") as out:
            subprocess.run([sys.executable, generator, *(arguments.model or ["roof", "181"])], check=True, stdout=out)
        one, two = (best(arguments.program, model, ranks, arguments.runs) for ranks in (1, 2))
    print(f"whole runs: {one['all']:.1f} s and {two['all']:.1f} s of processor time")
    good = True
    for name, limit in LIMITS.items():
        if not one[name]:
            continue
        larger = two[name][0] if name == "values" else max(two[name])
        ratio = larger / one[name][0]
        good = good and ratio <= limit
        print(f"{name:>8}: one rank {one[name][0]:g}, two ranks {' and '.join(f'{v:g}' for v in two[name])}, "
              f"ratio {ratio:.2f}, limit {limit}")
    sys.exit(0 if good else 1)


main()
