"""A sample of damaged files; damage.py makes any number of them."""

import damage
from gmsh_runs import NEEDS_GMSH


@NEEDS_GMSH
def test_damaged_files(build, tmp_path):
    (tmp_path / "sources").mkdir()
    (tmp_path / "work").mkdir()
    sources = damage.make_sources(tmp_path / "sources")
    faults, counts = damage.run(build, tmp_path / "work", range(1, 201), sources)
    assert not faults, "\n".join(faults)
    # Most damages are found; some change nothing but a value.
    assert counts[2] > 120 and counts[0] > 10
