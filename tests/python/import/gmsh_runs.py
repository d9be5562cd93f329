"""Runs of gmsh, for the tests that need it."""

import shutil
import subprocess

import pytest

NEEDS_GMSH = pytest.mark.skipif(not shutil.which("gmsh"), reason="gmsh is not installed")


def run_gmsh(folder, *arguments):
    """Runs gmsh in a folder; it must find no error."""
    run = subprocess.run(
        ["gmsh", *arguments, "-v", "1", "-nopopup"], cwd=folder, capture_output=True, text=True, check=False
    )
    assert run.returncode == 0 and "Error" not in run.stdout + run.stderr, run.stdout + run.stderr
