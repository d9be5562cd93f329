"""The examples of docs/import.md."""

import re

import numpy as np
from conftest import TOP
from gmsh_runs import NEEDS_GMSH, run_gmsh
from solved import coordinates, solve

PAGE = (TOP / "docs" / "import.md").read_text(encoding="utf-8")


def blocks(language):
    """The blocks of the page in a language."""
    return [text for name, text in re.findall(r"(?ms)^```(\w*)\n(.*?)^```$", PAGE) if name == language]


@NEEDS_GMSH
def test_console(imported, build, tmp_path):
    (tmp_path / "console.geo").write_text(blocks("geo")[0])
    (tmp_path / "console.map").write_text(blocks("toml")[0])
    mesh, own, _ = blocks("sh")[0].splitlines()
    run_gmsh(tmp_path, *mesh.split()[1:])
    assert imported(*own.split()[1:])[0] == 0
    text = (tmp_path / "console.dat").read_text()
    assert "local_pressure_loads\n# loads.floor: element, side, three values\n" in text
    results = solve(build, tmp_path / "console.dat")
    end = results.displacements[coordinates(text)[:, 0] > 119.9, 2].mean()
    stated = float(re.search(r"sinks by (\d\.\d+) mm", PAGE).group(1))
    # Meshes of other versions of gmsh differ by less than this.
    np.testing.assert_allclose(-end, stated, rtol=5e-3)
    load, inertia, shear = 5 * 20, 20 * 30**3 / 12, 2.1e5 / 2.6
    bending = load * 120**4 / (8 * 2.1e5 * inertia)
    by_shear = load * 120**2 / (2 * 5 / 6 * shear * 20 * 30)
    np.testing.assert_allclose([bending, by_shear], [0.274, 0.018], atol=5e-4)
    np.testing.assert_allclose(-end, bending + by_shear, rtol=0.03)  # the hole
    np.testing.assert_allclose(results.reaction_sum(), [0, 0, 5 * 20 * 120], atol=0.5)


def test_crane(imported, build, tmp_path):
    deck = next(block for block in blocks("") if block.startswith("*NODE"))
    (tmp_path / "crane.inp").write_text(deck)
    assert (
        imported("crane.inp", "--units", "mm,N", "-o", "crane.dat")[1]
        == "wrote crane.dat\nwrote crane.cases\n"
    )
    cases = (tmp_path / "crane.cases").read_text()
    assert 'title = "crane on the left"' in cases and "2 0 0 -8000 0 0 0\n" in cases
    (tmp_path / "case.dat").write_text((tmp_path / "crane.dat").read_text() + cases.split("'''")[3])
    sunk = solve(build, tmp_path / "case.dat").displacements[1, 2]
    np.testing.assert_allclose(
        sunk, -8000 * 2000**3 / (3 * 2.1e5 * 100 * 200**3 / 12), rtol=1e-5
    )  # six digits


def test_keys_of_the_page_exist():
    from morlen_import import group_map, inp_mesh, inp_model, units

    for word in [*units.LENGTHS, *units.FORCES, *group_map.LOAD_KINDS, *group_map.SECTIONS]:
        assert re.search(rf"\b{word}\b", PAGE), word
    for keyword in (*inp_model.KEYWORDS, *inp_mesh.MESH_KEYWORDS):
        assert f"*{keyword}`" in PAGE, keyword
    for name in inp_mesh.TYPES:
        assert name in PAGE, name
