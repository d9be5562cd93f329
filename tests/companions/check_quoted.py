#!/usr/bin/env python3
"""Runs the examples that the manual and the README quote, and compares the results with the pages.

    check_quoted.py SOURCE_FOLDER MORLEN
"""

import pathlib
import re
import subprocess
import sys
import tempfile


def results(program, text):
    with tempfile.TemporaryDirectory() as folder:
        model = pathlib.Path(folder) / "model.dat"
        model.write_text(text)
        run = subprocess.run([program, model, model.with_suffix(".txt")], text=True, capture_output=True)
        if run.returncode:
            sys.exit(f"{text[:200]}\n{run.stderr}")
        return [line.rstrip() for line in model.with_suffix(".txt").read_text().splitlines()]


def lacking(page, quoted, found):
    return [f"{page}: not in the results: {line}" for line in map(str.rstrip, quoted) if line and line not in found]


def main():
    top, program = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]).resolve()
    manual = re.search(r"(?ms)^## 2\. First run$(.*?)^## 3", (top / "docs" / "manual.md").read_text())[1]
    model, answer = re.findall(r"(?ms)^```\n(.*?)^```$", manual)
    faults = lacking("manual.md", answer.splitlines(), results(program, model))
    # By hand, as the page says: PL³/(3EI) and PL.
    if f"{10 * 3**3 / (3 * 2.1e8 * 8.356e-5) * 1e3:.3f} mm" not in manual:
        faults.append("manual.md: the deflection by hand is not that of the formula")
    readme = re.search(r"(?ms)^    NODAL DISPLACEMENTS.*?\n\n(?=\S)", (top / "README.md").read_text())[0]
    faults += lacking("README.md", re.sub(r"(?m)^    ", "", readme).splitlines(),
                      results(program, (top / "examples" / "space_frame.dat").read_text()))
    if faults:
        sys.exit("\n".join(faults))


main()
