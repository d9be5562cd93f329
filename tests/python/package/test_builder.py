"""Models from arrays."""

import re

import numpy as np
import pytest
from small_models import A, E, G, IY, IZ, J, LENGTH, PLANE, SHELLS, SOLID

import morlen

EXACT = 1e-10


def cantilever():
    b = morlen.Builder("3d", comment="A cantilever\nof one beam")
    b.units(force="kN", length="m", pressure="kPa")
    nodes = b.nodes([[0, 0, 0], [LENGTH, 0, 0]])
    (steel,) = b.materials(E=E, G=G, A=A, Iy=IY, Iz=IZ, J=J)
    beams = b.beams(nodes, steel)
    b.supports(nodes[0], "111111")
    b.loads(nodes[1], [10, 2, 3, 4, 5, 6])
    return b, nodes, beams


def test_cantilever():
    b, nodes, beams = cantilever()
    assert nodes.tolist() == [1, 2] and beams.tolist() == [1]
    r = b.model().solve()
    assert r.units.force == "kN" and r.units.pressure == "kPa"
    np.testing.assert_allclose(r.displacements[1, 0], 10 * LENGTH / (E * A), rtol=EXACT)
    assert morlen.check_text(b.text()) == []


def test_the_text_is_readable():
    text = cantilever()[0].text()
    assert text.startswith("problem type: 3d\n# A cantilever\n# of one beam\n")
    assert "# node, x, y, z\n1 0 0 0\n2 4 0 0\nend coordinates\n" in text
    assert "elements\n# element, 2 nodes, material\n1 1 2 1\nend elements\n" in text
    assert f"  1  E = 210000000  G = 81000000  A = {A}" in text
    assert "constraints\n1 111111 0 0 0 0 0 0\nend constraints\n" in text
    assert "nodal_point_loads\n2 10 2 3 4 5 6\nend nodal_point_loads\n" in text


def test_numbers_are_kept_exactly():
    random = np.random.default_rng(1)
    places = random.normal(size=(500, 3)) * 10.0 ** random.integers(-12, 12, (500, 1))
    b = morlen.Builder()
    b.nodes(places[:200])
    b.nodes(places[200:])
    b.beams(np.column_stack([np.arange(1, 500), np.arange(2, 501)]), b.materials(E=1, A=1))
    model = b.model()
    np.testing.assert_array_equal(model.nodes.coordinates, places)
    assert model.beams.nodes[-1].tolist() == [499, 500]


def test_plane_frame_as_from_its_file():
    b = morlen.Builder("2d")
    nodes = b.nodes([[0, 0], [LENGTH, 0]])
    beams = b.beams([nodes], b.materials(E=E, A=A, Iz=IZ))
    b.supports(nodes[:1], [1, 1, 1])
    b.element_loads(beams, [0, -12])
    np.testing.assert_array_equal(b.model().solve().displacements, morlen.parse(PLANE).solve().displacements)


def test_shells_and_solids_as_from_their_files():
    b = morlen.Builder()
    nodes = b.nodes([[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0]])
    b.shells([[1, 2, 3], [1, 3, 4]], b.materials(E=1000, G=500, nu=0, t=0.1))
    b.supports([1], "111111")
    b.supports([4, 2, 3], [[1, 0, 1, 1, 1, 1], [0, 0, 1, 1, 1, 1], [0, 0, 1, 1, 1, 1]])
    b.loads(nodes[1:3], [5, 0, 0, 0, 0, 0])
    np.testing.assert_array_equal(b.model().solve().displacements, morlen.parse(SHELLS).solve().displacements)
    b = morlen.Builder()
    b.nodes(np.vstack([np.zeros(3), np.eye(3)]))
    b.tetrahedra([1, 2, 3, 4], b.materials(E=1000, nu=0))
    b.supports([1, 2, 3], "111")
    b.loads(4, [0, 0, 6])
    np.testing.assert_array_equal(b.model().solve().displacements, morlen.parse(SOLID).solve().displacements)


def test_values_settlements_springs_and_axes():
    b, nodes, _ = cantilever()
    b.supports(nodes[1], "002000", [0, 0, 50, 0, 0, 0])
    b.supports(nodes[0], "010000", [0, 0.01, 0, 0, 0, 0])
    r = b.model().solve()
    assert r.displacements[0, 1] == 0.01
    w = r.displacements[1, 2]
    k = 3 * E * IY / LENGTH**3
    by_moment = -5 * LENGTH**2 / (2 * E * IY)
    np.testing.assert_allclose(w, (k * by_moment + 3) / (k + 50), rtol=1e-9)
    np.testing.assert_allclose(r.reactions[1, 2], -50 * w, rtol=1e-9)
    b = morlen.Builder("2d")
    b.nodes([[0, 0], [1, 0]])
    b.beams([1, 2], b.materials(E=E, A=A, Iz=IZ))
    b.supports([1], "110")
    b.supports([2], "010", euler=[-np.pi / 6, 0, 0])  # a roller on a slope of 30 degrees
    b.temperature_loads(1, 1e-5, 30)
    u = b.model().solve().displacements[1]
    # The end may move along the slope only.
    np.testing.assert_allclose(u[1], u[0] * np.tan(np.pi / 6), rtol=1e-9)
    assert u[0] > 0


def test_hinges():
    b = morlen.Builder("2d")
    b.nodes([[0, 0], [1, 1], [2, 0]])
    bars = b.beams([[1, 2], [2, 3]], b.materials(E=E, A=A, Iz=IZ))
    b.hinges(bars)
    b.supports([1, 3], "110")
    b.loads(2, [0, -10, 0])
    r = b.model().solve()
    np.testing.assert_allclose(r.beams.forces(3)[:, :, 0], -10 / np.sqrt(2), rtol=1e-9)
    np.testing.assert_allclose(r.beams.forces(3)[:, :, 5], 0, atol=1e-9)
    other = morlen.Builder("2d")
    other.nodes([[0, 0], [1, 1], [2, 0]])
    other.beams([[1, 2], [2, 3]], other.materials(E=E, A=A, Iz=IZ))
    other.hinges(nodes=[1, 2, 3])
    other.supports([1, 3], "110")
    other.loads(2, [0, -10, 0])
    np.testing.assert_allclose(other.model().solve().displacements, r.displacements, rtol=1e-12)


def test_loads_on_elements():
    b = morlen.Builder()
    b.nodes(np.vstack([np.zeros(3), np.eye(3)]))
    solid = b.tetrahedra([1, 2, 3, 4], b.materials(E=1000, nu=0.2))
    b.supports([1, 2, 3], "111")
    b.element_loads(solid, [0, 0, 1], kind="face", faces=[1])
    total = b.model().solve().reactions.sum(axis=0)
    # Face 1 has the corners 2, 3 and 4, and the area sqrt(3)/2.
    np.testing.assert_allclose(total, [0, 0, -np.sqrt(3) / 2 * 2 / 3 - np.sqrt(3) / 6], rtol=1e-9)
    b = morlen.Builder()
    b.nodes([[0, 0, 0], [2, 0, 0]])
    beams = b.beams([1, 2], b.materials(E=E, G=G, A=A, Iy=IY, Iz=IZ, J=J))
    b.supports(1, "111111")
    b.element_loads(beams, [0, 0, 0, 7], kind="local")
    np.testing.assert_allclose(b.model().solve().displacements[1, 3], 7 * 2**2 / (2 * G * J), rtol=1e-9)


def test_settings():
    b = morlen.Builder()
    b.nodes([[0, 0, 0], [1, 0, 0], [1, 1, 0]])
    b.shells([1, 2, 3], b.materials(E=1000, G=400, nu=0.2, t=0.1, Weight=3))
    b.supports([1, 2, 3], "111111")
    b.settings(GravityDirection=(0, 0, -1), ConvertTo6Nodes=True, ShellFormulation="Refined", DoSmoothing=0.1)
    r = b.model().solve()
    assert r.shells.forces.shape == (1, 3, 8)
    np.testing.assert_allclose(r.reactions[:, 2].sum(), 3 * 0.1 * 0.5, rtol=1e-9)
    b.settings(ConvertTo6Nodes=False, NumOfDivisions=4)
    assert "ConvertTo6Nodes off\n" in b.text() and "NumOfDivisions 4\n" in b.text()


def test_several_kinds_of_elements_are_several_meshes():
    b, nodes, beams = cantilever()
    more = b.nodes([[LENGTH, 1, 0], [LENGTH, 0, 1]])
    shells = b.shells([nodes[1], *more], b.materials(E=E, G=G, nu=0.3, t=0.1))
    last = b.beams([nodes[1], more[0]], 1)
    assert (shells.tolist(), last.tolist()) == ([2], [3])
    model = b.model()
    assert model.beams.numbers.tolist() == [1, 3] and model.shells.numbers.tolist() == [2]
    assert np.isfinite(model.solve().displacements).all()


@pytest.mark.parametrize(
    "mistake",
    [
        lambda b: b.nodes([[0, 0]]),
        lambda b: b.nodes([0, 0, np.nan]),
        lambda b: b.beams([[1, 2, 3]], 1),
        lambda b: b.beams([[1.0, 2.0]], 1),
        lambda b: b.beams([[1, 2]], [1, 1]),
        lambda b: b.shells([[1, 2]], 1),
        lambda b: b.materials(Area=1),
        lambda b: b.materials(),
        lambda b: b.materials(E=np.inf),
        lambda b: b.materials(E=[1, 2], A=[1, 2, 3]),
        lambda b: b.supports(1, "1113"),
        lambda b: b.supports(1, "111112"[:4]),
        lambda b: b.supports(1, "113333"),
        lambda b: b.supports([1, 2], "111111", [[0] * 6] * 3),
        lambda b: b.hinges(1, "02"),
        lambda b: b.hinges(),
        lambda b: b.loads(1, [1, 2]),
        lambda b: b.element_loads(1, [1, 2, 3], kind="sideways"),
        lambda b: b.element_loads(1.5, [1, 2, 3]),
        lambda b: b.temperature_loads(1, 1e-5, np.nan),
        lambda b: b.settings(Gravity=(0, 0, -1)),
        lambda b: b.settings(Solver="SkyLine\nend"),
        lambda b: b.units("k N", "m"),
        lambda b: morlen.Builder("1d"),
    ],
)
def test_mistakes_raise(mistake):
    b, _, _ = cantilever()
    before = b.text()
    with pytest.raises(ValueError):
        mistake(b)
    assert b.text() == before


# Each error says the argument, the shape that it has to have and the one that it has.
@pytest.mark.parametrize(
    "mistake, text",
    [
        (lambda b: b.nodes([[0, 0]]), "coordinates: expected numbers of the shape (n, 3), got (1, 2)"),
        (lambda b: b.nodes("x"), "coordinates: expected numbers of the shape (n, 3), got 'x'"),
        (
            lambda b: b.nodes([[0, 0, 0], [1, 2]]),
            "coordinates: expected numbers of the shape (n, 3), got rows of different",
        ),
        (lambda b: b.nodes([0, 0, np.nan]), "coordinates: expected finite numbers"),
        (
            lambda b: b.nodes([["x", 0, 0]]),
            "coordinates: expected numbers of the shape (n, 3), got [['x', 0, 0]]",
        ),
        (lambda b: morlen.Builder(comment=3), "comment: expected a text, got 3"),
        (lambda b: b.beams([[1, 2, 3]], 1), "nodes: expected whole numbers of the shape (n, 2), got (1, 3)"),
        (
            lambda b: b.shells([[1, 2]], 1),
            "nodes: expected whole numbers of the shape (n, 3) or (n, 6), got (1, 2)",
        ),
        (lambda b: b.beams([[1.0, 2.0]], 1), "nodes: expected whole numbers, got float64"),
        (
            lambda b: b.beams([[1, 2]], [1, 1]),
            "materials: expected whole numbers of the shape (1,), got (2,)",
        ),
        (
            lambda b: b.supports([1, 2], "111111", [[0] * 6] * 3),
            "values: expected numbers of the shape (2, 6), got (3, 6)",
        ),
        (lambda b: b.supports(1, "11x"), "flags: expected 0, 1 or 2, got '11x'"),
        (lambda b: b.supports(1, "1113"), "flags: expected numbers of the shape (1, 3) or (1, 6), got (4,)"),
        (
            lambda b: b.supports([[1, 2]], "111111"),
            "nodes: expected whole numbers of the shape (n,), got (1, 2)",
        ),
        (
            lambda b: b.supports(1, "222222"),
            "values: expected the stiffnesses of the springs (flags 2), got None",
        ),
        (lambda b: b.supports(1, "112000"), "values: expected the stiffnesses"),
        (lambda b: b.loads(1, [1, 2]), "values: expected numbers of the shape (1, 3) or (1, 6), got (2,)"),
        (lambda b: b.hinges(nodes=[1], code="11"), "code: expected with elements only"),
        (lambda b: b.hinges(1, 3), "code: expected '00', '01', '10' or '11', got 3"),
        (
            lambda b: b.element_loads([1, 1, 1], [1, 2, 3], "face", faces=[1, 2]),
            "faces: expected whole numbers of the shape (3,), got (2,)",
        ),
        (
            lambda b: b.temperature_loads([1, 1], [1e-5] * 3, 20),
            "expansion: expected numbers of the shape (2,), got (3,)",
        ),
        (
            lambda b: b.temperature_loads(1, 1e-5, "hot"),
            "change: expected numbers of the shape (1,), got 'hot'",
        ),
        (lambda b: b.materials(E=[1, 2], A=[1, 2, 3]), "A: expected numbers of the shape (2,), got (3,)"),
        (lambda b: b.materials(E="steel"), "E: expected numbers of the shape (n,), got 'steel'"),
        (lambda b: b.materials(E=np.inf), "E: expected finite numbers"),
        (lambda b: b.units(3, "m"), "3 is no name of a unit"),
        (lambda b: morlen.Builder("1d"), "kind: expected '2d' or '3d', got '1d'"),
    ],
)
def test_errors_name_argument_and_shapes(mistake, text):
    b, _, _ = cantilever()
    before = b.text()
    with pytest.raises(ValueError, match="^" + re.escape(text)):
        mistake(b)
    assert b.text() == before


def test_misspelt_names_raise():
    b, _, _ = cantilever()
    with pytest.raises(AttributeError, match="Builder has no attribute 'coment'"):
        b.coment = "A mast"


def test_what_the_program_refuses_is_an_error():
    b, _, _ = cantilever()
    b.beams([1, 9], 1)
    with pytest.raises(morlen.Error, match="unknown node"):
        b.model().solve()
    with pytest.raises(morlen.Error):
        morlen.Builder().model()


def test_a_large_model_is_built_fast(benchmark=None):
    import time

    n = 100000
    b = morlen.Builder()
    begin = time.process_time()
    nodes = b.nodes(np.random.default_rng(2).normal(size=(n, 3)))
    b.beams(np.column_stack([nodes[:-1], nodes[1:]]), b.materials(E=1, G=1, A=1, Iy=1, Iz=1, J=1))
    model = b.model()
    assert len(model.nodes) == n
    # Loops in Python would take several seconds.
    assert time.process_time() - begin < 1.5
