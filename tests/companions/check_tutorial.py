#!/usr/bin/env python3
"""Runs every block and command of a page and compares the answers.

    check_tutorial.py [--tolerance 0.01] [--needs PROGRAM] [--keep FOLDER] PAGE FOLDER_OF_PROGRAMS...

Indented blocks are appended to the file that the line before them names ("... `portal.dat`:"), or are commands
after "$ " with their output below; "..." is any output, or any text in a line. Lines of progress, which a terminal
removes, are not part of the output. The folder examples/ is there for the commands. A program that is not built is left
out. With a tolerance, numbers may differ by that share of them. The test is skipped (status 77) when a program of
--needs is missing. --keep leaves the files of the page in a new folder.
"""

import argparse

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile


def blocks(text):
    """Pairs of the line of text before an indented block, and the block's lines."""
    before, block = "", []
    for line in text.split("\n") + ["end"]:
        if line.startswith("    "):
            block.append(line[4:])
        elif line:
            if block:
                yield before, block
            before, block = line, []


def commands(block):
    """Pairs of a command and the lines that it answers."""
    found = []
    for line in block:
        if line.startswith("$ "):
            found.append((line[2:], []))
        else:
            found[-1][1].append(line)
    return found


def without_last_digits(line):
    """The line with nine digits of numbers that have more than ten decimals: the last ones depend on the processor."""
    return re.sub(r"-?\d+\.\d{11,}(?!\d*e)", lambda number: f"{float(number.group()):.9g}", line)


def is_same(found, expected, tolerance):
    """Whether two lines are equal, apart from numbers that differ by at most the tolerance; "..." is any text."""
    if "..." in expected:
        return re.fullmatch(re.escape(expected).replace(r"\.\.\.", ".*"), found)
    if not tolerance:
        return without_last_digits(found) == without_last_digits(expected)
    number = r"[-+]?\d+(?:\.\d+)?(?:e[-+]?\d+)?"
    pairs = zip(map(float, re.findall(number, found)), map(float, re.findall(number, expected)))
    return re.sub(number, "#", found) == re.sub(number, "#", expected) and all(
        abs(a - b) <= tolerance * max(abs(a), abs(b)) for a, b in pairs)


def agree(found, expected, tolerance):
    found = [line for line in found if not re.match(r"\S+: (checking|solving|writing)\b", line)]
    return len(found) == len(expected) and all(is_same(a, b, tolerance) for a, b in zip(found, expected))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tolerance", type=float, default=0)
    parser.add_argument("--needs", action="append", default=[])
    parser.add_argument("--keep", type=pathlib.Path)
    parser.add_argument("page", type=pathlib.Path)
    parser.add_argument("folders", nargs="+")
    options = parser.parse_args()
    tutorial = options.page.read_text()
    path = os.pathsep.join([str(pathlib.Path(p).resolve()) for p in options.folders] + [os.environ["PATH"]])
    for program in options.needs:
        if not shutil.which(program, path=path):
            print("missing:", program)
            sys.exit(77)
    count = 0
    with tempfile.TemporaryDirectory() as folder:
        shutil.copytree(options.page.resolve().parents[1] / "examples", pathlib.Path(folder) / "examples")
        for before, block in blocks(tutorial):
            target = re.search(r"`([\w.]+)`:$", before)
            if target:
                with open(pathlib.Path(folder) / target[1], "a") as file:
                    file.write("\n".join(block) + "\n")
            elif block[0].startswith("$ "):
                for command, answer in commands(block):
                    if not shutil.which(command.split()[0], path=path):
                        print("not built:", command)
                        continue
                    run = subprocess.run(["bash", "-c", command], cwd=folder, text=True, env=os.environ | {"PATH": path},
                                         stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
                    if answer != ["..."] and not agree(run.stdout.splitlines(), answer, options.tolerance):
                        sys.exit(f"{command}\nexpected:\n" + "\n".join(answer) + "\nfound:\n" + run.stdout)
                    if answer == ["..."] and run.returncode != 0:
                        sys.exit(f"{command}\nstatus {run.returncode}:\n{run.stdout}")
                    count += 1
        if options.keep:
            shutil.copytree(folder, options.keep)
    print(count, "commands")
    if count < 3:
        sys.exit("too few commands found")


main()
