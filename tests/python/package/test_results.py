"""Results against closed forms, and the same files as the program's."""

import json
import pickle
import re
import signal
import subprocess

import numpy as np
import pytest
from conftest import BUILD
from small_models import A, ALL, CANTILEVER, E, G, IY, IZ, J, LENGTH, PLANE, SHELLS, SOLID

import morlen

# Rounding errors of two or three equations.
EXACT = 1e-10


def solve(text, **options):
    return morlen.parse(text).solve(**options)


def test_cantilever_in_space():
    r = solve(CANTILEVER)
    n, vy, vz, t, my, mz = 10, 2, 3, 4, 5, 6
    length = LENGTH
    tip = [
        n * length / (E * A),
        vy * length**3 / (3 * E * IZ) + mz * length**2 / (2 * E * IZ),
        vz * length**3 / (3 * E * IY) - my * length**2 / (2 * E * IY),
        t * length / (G * J),
        -vz * length**2 / (2 * E * IY) + my * length / (E * IY),
        vy * length**2 / (2 * E * IZ) + mz * length / (E * IZ),
    ]
    assert r.displacements.shape == (2, 6)
    np.testing.assert_allclose(r.displacements, [[0] * 6, tip], rtol=EXACT)
    np.testing.assert_allclose(
        r.reactions[0], [-n, -vy, -vz, -t, -my + vz * length, -mz - vy * length], rtol=EXACT
    )
    assert not r.reactions[1].any()
    forces = r.beams.forces(points=5)
    assert forces.shape == (1, 5, 6) and r.beams.components == ("N", "Vy", "Vz", "T", "My", "Mz")
    np.testing.assert_allclose(forces[0, :, 0], n, rtol=EXACT)
    np.testing.assert_allclose(abs(forces[0, :, 3]), t, rtol=EXACT)
    # Bending moments are linear, from that of the support to that of the load.
    np.testing.assert_allclose(np.diff(forces[0], 2, axis=0), 0, atol=1e-9)
    for k, total, end in ((4, -my + vz * length, my), (5, mz + vy * length, mz)):
        assert abs(forces[0, 0, k]) == pytest.approx(abs(total), rel=EXACT)
        assert abs(forces[0, -1, k]) == pytest.approx(abs(end), rel=EXACT)
    np.testing.assert_allclose(r.beams.displacements(points=2)[0], r.displacements[:, :3], atol=1e-15)
    assert r.solver == "SkyLine" and r.residual < 1e-12 and r.error_estimate < 1e-10
    assert r.units == ("kN", "m", "kPa") and r.units.moment == "kN*m"


def test_load_along_a_plane_beam():
    r = solve(PLANE)
    assert r.displacements.shape == (2, 3) and r.reactions.shape == (2, 3)
    q = 12
    np.testing.assert_allclose(
        r.displacements[1], [0, -q * LENGTH**4 / (8 * E * IZ), -q * LENGTH**3 / (6 * E * IZ)], rtol=EXACT
    )
    x = np.linspace(0, LENGTH, 9)
    forces = r.beams.forces(points=9)
    assert (forces[0, :, [0, 2, 3, 4]] == 0).all()
    np.testing.assert_allclose(abs(forces[0, :, 1]), q * (LENGTH - x), atol=1e-9)
    np.testing.assert_allclose(abs(forces[0, :, 5]), q * (LENGTH - x) ** 2 / 2, atol=1e-9)
    # The middle of the points is the same whatever their number.
    np.testing.assert_allclose(r.beams.forces(points=1)[0, 0], forces[0, 4], atol=1e-9)
    sag = -q / (24 * E * IZ) * (x**4 - 4 * LENGTH * x**3 + 6 * LENGTH**2 * x**2)
    moved = r.beams.displacements(points=9)
    assert moved.shape == (1, 9, 2)
    np.testing.assert_allclose(moved[0, :, 1], sag, rtol=1e-9, atol=1e-15)
    assert r.beams.numbers.tolist() == [7] and r.model.beams.nodes.tolist() == [[1, 2]]
    assert r.shells.forces.shape == (0, 0, 8) and r.solids.stress.shape == (0, 6)


def test_pulled_shells():
    r = solve(SHELLS)
    forces = r.shells.forces
    assert forces.shape == (2, 1, 8) and r.shells.components[:3] == ("Nx", "Ny", "Nxy")
    assert r.beams.forces().shape == (0, 21, 6)
    # The local axes of the two triangles differ; the main values do not: N = 10 along x.
    nx, ny, nxy = forces[:, 0, :3].T
    np.testing.assert_allclose(nx + ny, 10, rtol=1e-9)
    np.testing.assert_allclose(nx * ny - nxy**2, 0, atol=1e-8)
    np.testing.assert_allclose(forces[:, 0, 3:], 0, atol=1e-9)
    np.testing.assert_allclose(r.displacements[1, 0], 10 / (1000 * 0.1), rtol=1e-9)
    with pytest.raises(ValueError, match="local results only"):
        r.shells.main_forces
    both = solve(SHELLS + "MainAndLocalStresses\n").shells
    np.testing.assert_allclose(np.sort(both.main_forces[:, 0, :2]), [[0, 10]] * 2, atol=1e-8)
    np.testing.assert_array_equal(both.forces, forces)
    main = solve(SHELLS + "MainStresses\n").shells
    assert main.components[0] == "N11"
    np.testing.assert_array_equal(main.forces, both.main_forces)


def test_pulled_solid():
    r = solve(SOLID)
    # The only strain is εz = w and γ of 0: σz·V = F·h with V = 1/6.
    np.testing.assert_allclose(r.displacements[3], [0, 0, 6 / (1000 / 6)], rtol=EXACT)
    assert r.solids.components == ("Sx", "Sy", "Sz", "Txy", "Tyz", "Txz")
    np.testing.assert_allclose(r.solids.stress, [[0, 0, 36, 0, 0, 0]] * 4, atol=1e-9)


def test_order_of_shear_stresses():
    tip = SOLID.replace("4 0 0 6", "4 3 0 6")  # σ = E·ε gives τxz = 500·u only
    r = solve(tip)
    u = r.displacements[3, 0]
    np.testing.assert_allclose(r.solids.stress[0, 3:], [0, 0, 500 * u], rtol=1e-9, atol=1e-9)


@pytest.mark.parametrize("name", ALL)
def test_files_are_those_of_the_program(name, run_program, tmp_path):
    text, post = run_program(ALL[name])
    solve(ALL[name]).write(text=tmp_path / "a.txt", post=str(tmp_path / "a.res"))
    assert (tmp_path / "a.txt").read_bytes() == text
    assert (tmp_path / "a.res").read_bytes() == post


def blocks_of_beams(post):
    """The forces in the post-process results, as (beams, points, 6)."""
    names = [rb"X'_Shear", rb"Y'_Shear", rb"Z'_Shear", rb"X'_Momentus", rb"Y'_Momentus", rb"Z'_Momentus"]
    columns = []
    for name in names:
        body = re.search(rb"(?m)^" + name + rb" .*\n((?:[-\d ].*\n)+)", post).group(1)
        columns.append([float(line.split()[-1]) for line in body.splitlines()])
    return np.array(columns).T.reshape(-1, 21, 6)


def test_signs_are_those_of_the_result_files(run_program):
    _, post = run_program(CANTILEVER)
    # The file has six digits.
    np.testing.assert_allclose(solve(CANTILEVER).beams.forces(), blocks_of_beams(post), rtol=1e-5, atol=1e-8)


def test_other_files(tmp_path, capfd):
    meshio = pytest.importorskip("meshio")
    r = solve(CANTILEVER)
    r.write(vtu=tmp_path / "a.vtu", report=tmp_path / "a.html", mesh=tmp_path / "m", post=tmp_path / "p")
    assert capfd.readouterr() == ("", "")
    page = (tmp_path / "a.html").read_text()
    assert "A cantilever" in page and "<html" in page
    moved = meshio.read(tmp_path / "a.vtu").point_data
    assert any("isplacement" in name for name in moved)
    assert (tmp_path / "m").stat().st_size > 0
    assert not [p for p in tmp_path.iterdir() if p.name not in ("a.vtu", "a.html", "m", "p")]


def run_of_page(file):
    """How the solution was made, as a page has it."""
    return json.JSONDecoder().raw_decode(file.read_text().split('"run":', 1)[1])[0]


@pytest.mark.parametrize("setting", ["", "Solver Sparse 1e-9 1e-9 500\n"])
def test_pages_tell_how_the_model_was_solved(setting, tmp_path):
    program = BUILD / "companions" / "morlen-run"
    if not program.exists():
        pytest.skip("morlen-run is not built")
    for name in ("cantilever", "solid"):
        file = tmp_path / f"{name}.dat"
        file.write_text(ALL[name] + setting)
        subprocess.run([program, file.name], cwd=tmp_path, check=True, capture_output=True)
        r = morlen.read(file).solve()
        r.write(report=tmp_path / "a.html")
        pickle.loads(pickle.dumps(r)).write(report=tmp_path / "b.html")
        run = run_of_page(tmp_path / "a.html")
        assert run == run_of_page(tmp_path / f"{name}.html") == run_of_page(tmp_path / "b.html")
        assert (run["state"], run["solver"], run["residual"]) == ("matches", r.solver, r.residual)
        assert (run["estimatedError"], run["equations"]) == (r.error_estimate, 12)  # supports included
        assert bool(run["iterations"]) == bool(setting)
        r.model.solve(solver="Sparse").write(report=tmp_path / "c.html")
        assert run_of_page(tmp_path / "c.html")["why"] == "the call of solve asks for it"


def test_refused_files(tmp_path):
    r = solve(CANTILEVER)
    model = tmp_path / "model.dat"
    model.write_text(CANTILEVER)
    for names in (
        {"text": model},
        {"report": model},
        {"text": tmp_path / "same", "post": tmp_path / "same"},
        {"text": tmp_path / "no" / "folder"},
        {"mesh": tmp_path / "alone"},
    ):
        with pytest.raises(morlen.Error):
            r.write(**names)
    assert model.read_text() == CANTILEVER
    with pytest.raises(TypeError):
        r.write(pdf="a.pdf")


def test_the_model_is_never_written_over(tmp_path, monkeypatch):
    # Not recognised as a problem file by its first megabyte: only its name protects it.
    (tmp_path / "model.dat").write_text("# x\n" * 300000 + CANTILEVER)
    (tmp_path / "link").symlink_to("model.dat")
    monkeypatch.chdir(tmp_path)
    model = morlen.read("link")
    monkeypatch.chdir("/")
    before = (tmp_path / "model.dat").read_bytes()
    for r in (
        model.solve(),
        pickle.loads(pickle.dumps(model)).solve(),
        pickle.loads(pickle.dumps(model.solve())),
        model.solve().model.solve(),
    ):
        for name in ("model.dat", "link"):
            for kind in ("text", "post", "vtu", "report"):
                with pytest.raises(morlen.Error, match="is read and can't be written"):
                    r.write(**{kind: tmp_path / name})
    assert (tmp_path / "model.dat").read_bytes() == before


@pytest.mark.parametrize("last", ["nodir/x", "folder", "model.dat", "hall.cases"])
def test_all_files_are_written_or_none(last, tmp_path):
    r = solve(CANTILEVER)
    (tmp_path / "folder").mkdir()
    (tmp_path / "model.dat").write_text(CANTILEVER)
    (tmp_path / "hall.cases").write_text("x")
    (tmp_path / "old").write_text("old")
    for kinds in (["text", "post", "vtu", "report"], ["report", "vtu", "post", "text"], ["post", "mesh"]):
        names = {kind: tmp_path / ("old" if k == 0 else f"new{k}") for k, kind in enumerate(kinds)}
        names[kinds[-1]] = tmp_path / last
        with pytest.raises(morlen.Error):
            r.write(**names)
        assert (tmp_path / "old").read_text() == "old"
        assert sorted(path.name for path in tmp_path.iterdir()) == [
            "folder",
            "hall.cases",
            "model.dat",
            "old",
        ]


def test_an_interruption_leaves_all_files_as_they_were(tmp_path, large_model):
    """Whenever the signal comes, all files have their names, or none."""
    r = morlen.read(large_model("block", "24")).solve()

    def stop(number, frame):
        raise KeyboardInterrupt

    before = signal.signal(signal.SIGALRM, stop)
    stopped = 0
    try:
        for delay in (0.05, 0.1, 0.2, 0.3):
            for file in tmp_path.iterdir():
                file.unlink()
            try:
                signal.setitimer(signal.ITIMER_REAL, delay)
                r.write(text=tmp_path / "a", post=tmp_path / "b", vtu=tmp_path / "c", report=tmp_path / "d")
            except KeyboardInterrupt:
                left = sorted(file.name for file in tmp_path.iterdir())
                assert left in ([], ["a", "b", "c", "d"])
                stopped += not left
            finally:
                signal.setitimer(signal.ITIMER_REAL, 0)
    finally:
        signal.signal(signal.SIGALRM, before)
    assert stopped > 0


@pytest.mark.parametrize("name", ALL)
def test_pickled_results_are_the_same(name, tmp_path):
    r = solve(ALL[name])
    other = pickle.loads(pickle.dumps(r))
    del_before = (r.displacements, r.reactions, r.beams.forces(7), r.shells.forces, r.solids.stress)
    after = (
        other.displacements,
        other.reactions,
        other.beams.forces(7),
        other.shells.forces,
        other.solids.stress,
    )
    for a, b in zip(del_before, after):
        np.testing.assert_array_equal(a, b)
    assert (r.solver, r.residual, r.units) == (other.solver, other.residual, other.units)
    for k, one in enumerate((r, other)):
        one.write(text=tmp_path / f"{k}.txt", post=tmp_path / f"{k}.res", vtu=tmp_path / f"{k}.vtu")
    for ending in ("txt", "res", "vtu"):
        assert (tmp_path / f"0.{ending}").read_bytes() == (tmp_path / f"1.{ending}").read_bytes()


def test_converted_shells_survive_pickling(tmp_path):
    r = solve(SHELLS + "ConvertTo6Nodes\nShellFormulation Refined\n")
    assert r.shells.forces.shape == (2, 3, 8) and r.displacements.shape == (4, 6)
    other = pickle.loads(pickle.dumps(r))
    np.testing.assert_array_equal(other.shells.forces, r.shells.forces)
    r.write(post=tmp_path / "a", report=tmp_path / "a.html")
    other.write(post=tmp_path / "b", report=tmp_path / "b.html")
    assert (tmp_path / "a").read_bytes() == (tmp_path / "b").read_bytes()


def test_tables():
    pytest.importorskip("pandas")
    tables = solve(CANTILEVER).to_pandas()
    assert sorted(tables) == ["beams", "displacements", "reactions"]
    assert tables["displacements"].loc[2, "uy"] == solve(CANTILEVER).displacements[1, 1]
    assert tables["beams"].loc[(1, 20), "N"] == pytest.approx(10)
    assert list(solve(PLANE).to_pandas()["displacements"].columns) == ["ux", "uy", "rz"]
    assert solve(SHELLS).to_pandas()["shells"].shape == (2, 8)
    assert solve(SOLID).to_pandas()["stress"].loc[1, "Sz"] == pytest.approx(36)


@pytest.mark.parametrize("name", ALL)
def test_meshes(name, tmp_path):
    meshio = pytest.importorskip("meshio")
    r = solve(ALL[name])
    mesh = r.to_meshio()
    n = r.displacements.shape[1]
    np.testing.assert_array_equal(mesh.point_data["displacements"][:, :2], r.displacements[:, :2])
    assert (mesh.point_data["displacements"][:, 2] != 0).any() == (
        n == 6 and name == "cantilever" or name == "solid"
    )
    meshio.write(tmp_path / "a.vtu", mesh)
    assert len(meshio.read(tmp_path / "a.vtu").points) == len(r.model.nodes)


@pytest.mark.parametrize("name", ALL)
def test_plots(name, tmp_path):
    pytest.importorskip("matplotlib")
    ax = solve(ALL[name]).plot(color="red")
    ax.figure.savefig(tmp_path / "a.png")
    assert (tmp_path / "a.png").stat().st_size > 5000
    assert solve(ALL[name]).plot(ax, scale=2) is ax and "2" in ax.get_title()
