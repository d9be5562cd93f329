"""Tests of morlen-import. MORLEN_BUILD is the build folder with the programs."""

import os
import signal
import sys
from pathlib import Path

import pytest

TOP = Path(__file__).resolve().parents[3]
sys.path.insert(0, str(TOP / "python"))
sys.path.insert(0, str(Path(__file__).resolve().parent))


@pytest.fixture(scope="session")
def build():
    """The folder of the built programs."""
    folder = Path(os.environ.get("MORLEN_BUILD", TOP / "build")).resolve()
    if not (folder / "morlen").exists():
        pytest.skip(f"no programs in {folder}: set MORLEN_BUILD")
    return folder


@pytest.fixture
def imported(build, tmp_path, monkeypatch, capsys):
    """Runs morlen-import in a folder of the test; gives status, output and messages."""
    from morlen_import.command_line import main

    monkeypatch.chdir(tmp_path)

    def run(*arguments, programs=(build / "companions",)):
        capsys.readouterr()
        status = main([str(a) for a in arguments], programs=programs)
        signal.signal(signal.SIGINT, signal.default_int_handler)  # the end of an import ignores it
        out, err = capsys.readouterr()
        return status, out, err

    return run
