#!/usr/bin/env python3
"""Runs every block and command of docs/tutorial.md and compares the answers.

    check_tutorial.py TUTORIAL FOLDER_OF_PROGRAMS...

Indented blocks are appended to the file that the line before them names ("... `portal.dat`:"), or are commands
after "$ " with their output below; "..." is any output. A program that is not built is left out.
"""

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


def main():
    tutorial = pathlib.Path(sys.argv[1]).read_text()
    path = os.pathsep.join([str(pathlib.Path(p).resolve()) for p in sys.argv[2:]] + [os.environ["PATH"]])
    count = 0
    with tempfile.TemporaryDirectory() as folder:
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
                    if answer != ["..."] and run.stdout.splitlines() != answer:
                        sys.exit(f"{command}\nexpected:\n" + "\n".join(answer) + "\nfound:\n" + run.stdout)
                    if answer == ["..."] and run.returncode != 0:
                        sys.exit(f"{command}\nstatus {run.returncode}:\n{run.stdout}")
                    count += 1
    print(count, "commands")
    if count < 10:
        sys.exit("too few commands found")


main()
