"""Tests of the Python package. MORLEN_BUILD is the build folder with the package and the program."""

import os
import subprocess
import sys
from pathlib import Path

import pytest

TOP = Path(__file__).resolve().parents[3]
BUILD = Path(os.environ.get("MORLEN_BUILD", TOP / "build")).resolve()
sys.path.insert(0, str(BUILD / "python"))
sys.path.insert(0, str(Path(__file__).resolve().parent))
os.environ.setdefault("MPLBACKEND", "Agg")


@pytest.fixture
def run_program(tmp_path):
    """Runs the program on a text; gives its text results and its post-process results."""

    def run(text):
        (tmp_path / "program.dat").write_text(text)
        subprocess.run([BUILD / "morlen", "program.dat", "program.txt"], cwd=tmp_path, check=True)
        return (tmp_path / "program.txt").read_bytes(), (tmp_path / "program.morlen.res").read_bytes()

    return run


@pytest.fixture(scope="session")
def large_model(tmp_path_factory):
    """A generated model as a file: family, numbers and settings of bench/generate_models.py."""
    folder = tmp_path_factory.mktemp("large")

    def make(*arguments):
        name = folder / ("_".join(arguments).replace(" ", "_") + ".dat")
        if not name.exists():
            script = TOP / "bench" / "generate_models.py"
            with name.open("w") as file:
                subprocess.run([sys.executable, script, *arguments], stdout=file, check=True)
        return name

    return make
