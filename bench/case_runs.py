#!/usr/bin/env python3
"""Measures morlen-cases against its targets and prints a table.

    case_runs.py [--folder FOLDER] MORLEN MORLEN_CASES

- 50 cases of frame3d 5 5 68, without writing, against 50 runs of morlen;
- 100 combinations of 10 cases of about 1000 members, with their envelopes as CSV.

All times are processor time, medians of five.
"""

import argparse
import pathlib
import random
import re
import tempfile

from whole_runs import generate, median_seconds

REPETITIONS = 5


def records(text, block):
    lines = re.search(rf"^{block}\n(.*?)^end {block}", text, re.S | re.M)[1].splitlines()
    return [line.split()[0] for line in lines if line.strip()[:1].isdigit()]


def write_cases(folder, model, count, beam_loads):
    """A file with this many cases: forces at 200 nodes, every third with weight."""
    text = (folder / f"{model}.dat").read_text()
    nodes, beams = records(text, "coordinates"), records(text, "elements")
    lines = [f'model = "{model}.dat"']
    for k in range(count):
        lines += [f"[cases.c{k}]", f"gravity = {'true' if k % 3 == 0 else 'false'}", "text = '''", "nodal_point_loads"]
        lines += [f"{node} {random.random()} {random.random()} {-random.random()} 0 0 0"
                  for node in random.sample(nodes, 200)]
        lines += ["end nodal_point_loads"]
        if beam_loads:
            lines += ["global_pressure_loads"]
            lines += [f"{beam} 0 0 {-random.random()}" for beam in random.sample(beams, 300)]
            lines += ["end global_pressure_loads"]
        lines += ["'''"]
    return lines


def combine(cases, count):
    lines = ["[combinations]"]
    for k in range(count):
        terms = ", ".join(f"c{c} = {random.uniform(-1, 2):.3f}" for c in random.sample(range(cases), 5))
        lines.append(f"k{k} = {{ {terms} }}")
    return lines + ["[envelopes]", 'all = ["k*"]']


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--folder", default=None)
    parser.add_argument("morlen")
    parser.add_argument("cases")
    options = parser.parse_args()
    morlen, cases = (str(pathlib.Path(name).resolve()) for name in (options.morlen, options.cases))
    random.seed(1)
    with tempfile.TemporaryDirectory(dir=options.folder) as name:
        folder = pathlib.Path(name)
        generate(["frame3d", "5", "5", "68"], folder / "tower.dat", "--setting", "Solver SkyLine")
        generate(["frame3d", "5", "5", "11"], folder / "house.dat")
        (folder / "tower.cases").write_text("\n".join(write_cases(folder, "tower", 50, False)) + "\n")
        (folder / "house.cases").write_text(
            "\n".join(write_cases(folder, "house", 10, True) + combine(10, 100)) + "\n")
        run = median_seconds([morlen, "tower.dat"], folder, REPETITIONS)
        many = median_seconds([cases, "tower.cases"], folder, REPETITIONS)
        envelopes = median_seconds([cases, "house.cases"], folder, REPETITIONS)
    print("| what | time | target |\n|---|---|---|")
    print(f"| one run of frame3d 5 5 68 | {run:.3f} s | |")
    print(f"| its 50 cases, nothing written | {many:.2f} s, {many / (50 * run):.2f} of 50 runs | 0.20 |")
    print(f"| 100 combinations of 10 cases of 1056 members, envelopes as CSV | {envelopes:.2f} s | 1 s |")


main()
