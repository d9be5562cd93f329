"""A sample of damaged files; damage.py makes any number of them."""

import shutil

import damage
import pytest


@pytest.mark.skipif(not shutil.which("gmsh"), reason="gmsh is not installed")
def test_damaged_files(build, tmp_path):
    (tmp_path / "sources").mkdir()
    (tmp_path / "work").mkdir()
    sources = damage.make_sources(tmp_path / "sources")
    faults, counts = damage.run(build, tmp_path / "work", range(1, 201), sources)
    assert not faults, "\n".join(faults)
    # Most damages are found; some change nothing but a value.
    assert counts[2] > 120 and counts[0] > 10
