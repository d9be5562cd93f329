#!/usr/bin/env python3
"""Draws python_study.svg by the code of docs/python.md.

    PYTHONPATH=build/python draw_python_study.py
"""

import os
import re
import shutil
import tempfile
from pathlib import Path

import matplotlib

matplotlib.use("Agg")
matplotlib.rcParams["svg.hashsalt"] = "morlen"  # the same drawing, the same file
HERE = Path(__file__).resolve().parent


def main():
    page = (HERE.parent / "python.md").read_text(encoding="utf-8")
    code = "".join(re.findall(r"(?ms)^```python\n(.*?)^```$", page))
    end = 'figure.savefig("study.png")'
    code = code[: code.index(end)] + "figure.tight_layout()\n"
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        shutil.copytree(HERE.parents[1] / "examples", folder, dirs_exist_ok=True)
        shutil.copy("portal_frame.dat", "frame.dat")
        names = {}
        exec(code, names)
        names["figure"].savefig(HERE / "python_study.svg", metadata={"Date": None})
        os.chdir("/")


if __name__ == "__main__":
    main()
