"""Runs morlen on a problem file and reads its text results."""

import re
import subprocess

import numpy as np


class Results:
    """Displacements by node (rows in the order of the numbers) and reactions by node."""

    def __init__(self, text):
        sections = re.split(r"(?m)^(NODAL DISPLACEMENTS|ELEMENT STRENGTH|REACTIONS).*$", text)
        found = {name: body for name, body in zip(sections[1::2], sections[2::2])}
        table = self._rows(found["NODAL DISPLACEMENTS"])
        self.displacements = np.array([table[number] for number in sorted(table)])
        self.reactions = self._rows(found["REACTIONS"])

    @staticmethod
    def _rows(text):
        rows = [line.split() for line in text.splitlines() if re.match(r"\d", line)]
        return {int(row[0]): np.array([float(word) for word in row[1:]]) for row in rows}

    def reaction_sum(self):
        """The sum of the reaction forces."""
        return sum(row[:3] for row in self.reactions.values())


def solve(build, path):
    """The results of a problem file."""
    output = str(path) + ".txt"
    run = subprocess.run([build / "morlen", path, output], capture_output=True, text=True, check=False)
    assert run.returncode == 0, run.stderr
    with open(output, encoding="utf-8") as file:
        return Results(file.read())


def coordinates(text):
    """The nodes of a problem file, in the order of their numbers."""
    block = re.search(r"(?ms)^coordinates\n(.*?)^end coordinates", text).group(1)
    rows = [line.split("#")[0].split() for line in block.splitlines() if not line.startswith("#")]
    return np.array([[float(word) for word in row[1:4]] for row in rows])


def block_rows(text, keyword):
    """The records of all blocks of a keyword, as lists of words without comments."""
    rows = []
    for block in re.findall(rf"(?ms)^{keyword}\n(.*?)^end {keyword}", text):
        lines = [line.split("#")[0].split() for line in block.splitlines()]
        rows += [row for row in lines if row]
    return rows
