"""Models: their data, live materials, errors, threads, solvers."""

import pickle
import re
import threading
import time
import warnings
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest
from conftest import TOP
from small_models import ALL, CANTILEVER, PLANE, SHELLS, SOLID

import morlen


def test_data_of_a_model(tmp_path):
    file = tmp_path / "frame.dat"
    file.write_text(CANTILEVER)
    model = morlen.read(file)
    assert model.kind == "3d" and model.solver == "Automatic"
    assert model.nodes.numbers.tolist() == [1, 2]
    assert model.nodes.coordinates.tolist() == [[0, 0, 0], [4, 0, 0]]
    assert model.beams.numbers.tolist() == [1] and model.beams.materials.tolist() == [1]
    assert model.shells.nodes.shape == (0, 0) and len(model.solids) == 0
    assert dict(model.materials).keys() == {1} and model.materials[1].number == 1
    assert repr(model) == "<morlen.Model 3d: 2 nodes, 1 beams>"
    assert morlen.parse(PLANE).kind == "2d" and morlen.parse(PLANE).units == ("", "", "")
    assert morlen.read(str(file)).solve().displacements[1, 0] > 0
    np.testing.assert_array_equal(
        morlen.parse(CANTILEVER.encode()).solve().displacements, model.solve().displacements
    )


def test_materials_are_live():
    model = morlen.parse(CANTILEVER)
    first = model.solve()
    material = model.materials[1]
    material.A = 0.04
    material.Iz = 2 * material.Iz
    assert model.materials[1].A == 0.04
    changed = model.solve()
    text = CANTILEVER.replace("A = 0.02", "A = 0.04").replace("Iz = 8e-05", "Iz = 0.00016")
    assert text != CANTILEVER
    np.testing.assert_array_equal(changed.displacements, morlen.parse(text).solve().displacements)
    np.testing.assert_allclose(changed.displacements[1, 0], first.displacements[1, 0] / 2, rtol=1e-12)
    material.A = 0.02
    material.Iz /= 2
    np.testing.assert_array_equal(model.solve().displacements, first.displacements)


@pytest.mark.parametrize(
    "key, record",
    [
        ("E", "E = 3e8"),
        ("G", "G = 3e8"),
        ("Gxy", "Gxy = 3e8"),
        ("Iy", "Iy = 3e8"),
        ("J", "J = 3e8"),
    ],
)
def test_each_value_is_that_of_its_key(key, record):
    model = morlen.parse(CANTILEVER)
    setattr(model.materials[1], key, 3e8)
    text = re.sub(r"(1 E = .*)", r"\1 " + record, CANTILEVER)
    if key in ("E", "G", "Iy", "J"):
        text = re.sub(rf"\b{key} = \S+ (?=.*{record})", "", text)
    np.testing.assert_array_equal(model.solve().displacements, morlen.parse(text).solve().displacements)


def test_values_of_shells():
    model = morlen.parse(SHELLS)
    model.materials[1].t = 0.2
    model.materials[1].nu = 0.3
    text = SHELLS.replace("nu = 0 t = 0.1", "nu = 0.3 t = 0.2")
    np.testing.assert_array_equal(model.solve().displacements, morlen.parse(text).solve().displacements)
    assert model.materials[1].nuXY == model.materials[1].nuYX == 0.3


def test_rectangles_and_axes():
    model = morlen.parse(CANTILEVER)
    model.materials[1].rectangle(widthY=0.2, widthZ=0.3)
    model.materials[1].Euler = (0.0, 0.0, 0.5)
    text = re.sub(r"A = .*", "widthY = 0.2 widthZ = 0.3 Euler1 = 0 Euler2 = 0 Euler3 = 0.5", CANTILEVER)
    try:
        expected = morlen.parse(text).solve().displacements
    except morlen.Error as refused:
        with pytest.raises(morlen.Error, match=re.escape(refused.message)):
            model.solve()
    else:
        np.testing.assert_array_equal(model.solve().displacements, expected)
    model.materials[1].Euler = None
    assert model.materials[1].Euler is None
    plain = re.sub(r"A = .*", "widthY = 0.2 widthZ = 0.3", CANTILEVER)
    np.testing.assert_array_equal(model.solve().displacements, morlen.parse(plain).solve().displacements)


def test_elements_with_values_of_their_own_follow_their_material():
    own = CANTILEVER.replace("1 1 2 1\n", "1 1 2 1 A = 0.05\n")
    model = morlen.parse(own)
    model.materials[1].E = 1e8
    model.materials[1].A = 99
    expected = morlen.parse(own.replace("E = 210000000.0", "E = 1e8")).solve()
    np.testing.assert_array_equal(model.solve().displacements, expected.displacements)


def test_unknown_names_raise():
    model = morlen.parse(CANTILEVER)
    with pytest.raises(AttributeError):
        model.materials[1].Area = 1
    with pytest.raises(KeyError):
        model.materials[2]
    with pytest.raises(KeyError):
        model.materials[-1]
    with pytest.raises(ValueError, match="unknown solver 'Fast'"):
        model.solve(solver="Fast")
    with pytest.raises(TypeError):
        model.solve(tolerance=1)
    for value in (float("nan"), float("inf")):
        with pytest.raises(ValueError):
            model.materials[1].E = value
    with pytest.raises(TypeError):
        model.materials[1].E = "2e8"
    with pytest.raises(ValueError):
        model.materials[1].rectangle(0, 1)
    with pytest.raises(ValueError):
        model.solve().beams.forces(points=0)
    with pytest.raises(ValueError):
        model.solve().beams.displacements(points=1)


@pytest.mark.parametrize(
    "mistake, error, text",
    [
        (lambda m: m.materials["x"], KeyError, "no material 'x'; the model has the material 1"),
        (lambda m: m.materials[2], KeyError, "no material 2; the model has the material 1"),
        (lambda m: m.materials[10**20], KeyError, "no material 100000000000000000000"),
        (lambda m: m.materials[1.5], KeyError, "no material 1.5"),
        (lambda m: setattr(m.materials[1], "A", "x"), TypeError, "A is a number, not 'x'"),
        (
            lambda m: setattr(m.materials[1], "A", 10**400),
            TypeError,
            "A is a number, not 1000000000",
        ),
        (lambda m: setattr(m.materials[1], "E", None), TypeError, "E is a number, not None"),
        (lambda m: setattr(m.materials[1], "Iz", [1, 2]), TypeError, "Iz is a number, not [1, 2]"),
        (lambda m: setattr(m.materials[1], "Euler", 3), TypeError, "Euler is None or three numbers, not 3"),
        (
            lambda m: setattr(m.materials[1], "Euler", (1, 2)),
            TypeError,
            "Euler is None or three numbers, not (1, 2)",
        ),
        (
            lambda m: setattr(m.materials[1], "Euler", "abc"),
            TypeError,
            "Euler is None or three numbers, not 'abc'",
        ),
        (lambda m: m.materials[1].rectangle("a", 1), TypeError, "widthY is a number, not 'a'"),
        *(
            (wrong, TypeError, "rectangle takes two numbers, widthY and widthZ")
            for wrong in (
                lambda m: m.materials[1].rectangle(),
                lambda m: m.materials[1].rectangle(1),
                lambda m: m.materials[1].rectangle(widthZ=1),
                lambda m: m.materials[1].rectangle(1, None),
                lambda m: m.materials[1].rectangle(1, 2, 3),
                lambda m: m.materials[1].rectangle(1, 2, width=3),
            )
        ),
        (lambda m: m.solve(solver=3), TypeError, "solver is a name or None, not 3"),
        (lambda m: m.solve(progress=3), TypeError, "progress is a function or None, not 3"),
        (lambda m: m.solve().beams.forces(points=2.5), TypeError, "points is a whole number, not 2.5"),
        (lambda m: m.solve().beams.forces(10**9), ValueError, "points is at most 89478485 for 1 beam"),
        (
            lambda m: m.solve().beams.displacements(10**10),
            ValueError,
            "points is at most 178956970 for 1 beam",
        ),
        (lambda m: m.solve().write(text=3), TypeError, "the name of a file is a str or a path, not 3"),
        (lambda m: morlen.read(3), TypeError, "the name of a file is a str or a path, not 3"),
        (lambda m: morlen.read(b"a.dat"), TypeError, "the name of a file is a str or a path, not b'a.dat'"),
        (lambda m: morlen.check(0), TypeError, "the name of a file is a str or a path, not 0"),
        (lambda m: morlen.parse(3), TypeError, "the text of a problem file is str or bytes, not int"),
        (lambda m: setattr(m, "foo", 1), AttributeError, "Model has no attribute 'foo' that can be set"),
        (lambda m: setattr(m, "nodes", 1), AttributeError, "Model has no attribute 'nodes' that can be set"),
        (lambda m: setattr(m.solve(), "foo", 1), AttributeError, "Results has no attribute 'foo'"),
        (lambda m: setattr(m.solve().beams, "numbers", 1), AttributeError, "BeamResults has no attribute"),
        (lambda m: setattr(m.materials, "foo", 1), AttributeError, "Materials has no attribute 'foo'"),
    ],
)
def test_mistakes_are_one_sentence(mistake, error, text):
    with pytest.raises(error) as caught:
        mistake(morlen.parse(CANTILEVER))
    message = str(caught.value.args[0])
    assert message.startswith(text) and "\n" not in message and "incompatible" not in message


def test_numbers_of_numpy_are_numbers():
    model = morlen.parse(CANTILEVER)
    model.materials[np.int64(1)].A = np.float32(0.5)
    assert model.materials[1].A == 0.5
    model.materials[1].Euler = np.array([0.0, 0.25, 1])
    assert model.materials[1].Euler == [0, 0.25, 1]
    assert model.solve().beams.forces(np.int32(3)).shape == (1, 3, 6)
    assert repr(model.materials[1]) == "<morlen.Material 1>"
    assert "x" not in model.materials and 1 in model.materials


def test_version():
    cmake = (TOP / "CMakeLists.txt").read_text()
    assert re.search(r"(?s)project\(.*?VERSION " + re.escape(morlen.__version__) + r"\b", cmake)


def test_errors_without_a_hint():
    error = morlen.Error("text", hint="")
    assert error.hint is None and error.args == ("text", None, None, None)
    assert pickle.loads(pickle.dumps(error)).hint is None
    with pytest.raises(morlen.Error) as caught:
        morlen.parse(PLANE + "nodal_point_loads\n2 a\nend\n").solve()
    assert "" not in caught.value.args


def test_errors_have_their_place():
    with pytest.raises(morlen.Error) as caught:
        morlen.parse(PLANE.replace("materials\n1", "materialz\n1", 1))
    error = caught.value
    assert error.message == "Unknown key name=materialz" and error.line == 10 and error.column == 1
    assert "materials" in error.hint and str(error).startswith("line 10, column 1: Unknown key")
    assert repr(pickle.loads(pickle.dumps(error))) == repr(error)
    with pytest.raises(morlen.Error) as caught:
        morlen.parse(PLANE.replace("1 111 0 0 0", "")).solve()
    assert caught.value.line is None and "boundary conditions" in caught.value.message
    with pytest.raises(FileNotFoundError):
        morlen.read("/nowhere/model.dat")
    with pytest.raises(IsADirectoryError):
        morlen.read("/")
    for text in ("", "x", b"\0\xff", "problem type: 3d"):
        with pytest.raises(morlen.Error):
            morlen.parse(text)


def test_a_failed_analysis_leaves_the_model_alone():
    model = morlen.parse(CANTILEVER)
    before = model.solve().displacements
    model.materials[1].A = 0.0
    with pytest.raises(morlen.Error, match="section parameter A is 0 for element 1"):
        model.solve()
    model.materials[1].A = 0.02
    np.testing.assert_array_equal(model.solve().displacements, before)


@pytest.mark.parametrize(
    "key, value, text, kind",
    [
        ("A", -0.02, CANTILEVER, "error: section parameter A is 0 for element 1"),
        ("Iy", -3e-5, CANTILEVER, "error: section parameter Iy is 0 for element 1"),
        ("J", -1.0, CANTILEVER, "error: section parameter J is 0 for element 1"),
        ("E", -5.0, PLANE, "error: material parameter E is 0 for element 7"),
        ("t", -0.25, SHELLS, "error in element 1 Shell thickness is 0"),
        ("Gxz", -2.0, SHELLS, "error in element 1 Gxz is 0"),
        ("E", -1.0, SOLID, "error in element 1 E is 0"),
    ],
)
def test_negative_values_are_given_in_the_hint(key, value, text, kind):
    hint = f"{key} is {value:g} in the units of the results; it must be above 0"
    model = morlen.parse(text)
    setattr(model.materials[1], key, value)
    in_file = re.sub(rf"(?m)^(1 .*E = .*)$", rf"\1 {key} = {value}", re.sub(rf" {key} = \S+", "", text))
    for solve in (model.solve, lambda: morlen.parse(in_file).solve()):
        if key == "E" and solve != model.solve:
            continue  # the record begins with it
        with pytest.raises(morlen.Error) as caught:
            solve()
        assert (caught.value.message, caught.value.hint) == (kind, hint)


def test_findings(tmp_path):
    file = tmp_path / "a.dat"
    file.write_text(PLANE.replace("materials\n1", "materialz\n1", 1) + "units_res x\n")
    found = morlen.check(file)
    assert all(f.severity in ("error", "warning") for f in found)
    unknown = next(f for f in found if f.code == "unknown-keyword")
    assert (unknown.severity, unknown.line, unknown.column) == ("error", 10, 1)
    assert "materialz" in unknown.text and "materials" in unknown.hint
    assert morlen.check_text(CANTILEVER) == []


@pytest.mark.parametrize("solver", ["Automatic", "skyline", "Sparse", "Direct"])
def test_solvers_agree(solver):
    model = morlen.parse(CANTILEVER)
    try:
        r = model.solve(solver=solver)
    except morlen.Error as error:
        assert solver == "Direct" and "built without" in error.message
        return
    assert r.solver == {"Automatic": "SkyLine", "skyline": "SkyLine"}.get(solver, solver)
    np.testing.assert_allclose(r.displacements, model.solve().displacements, rtol=1e-4)


def test_the_file_chooses_the_solver():
    model = morlen.parse(CANTILEVER + "Solver: Sparse 1e-8 1e-8 500\n")
    assert model.solver == "Sparse" and model.solve().solver == "Sparse"
    assert model.solve(solver="Automatic").solver == "SkyLine"


def test_double():
    model = morlen.parse(SHELLS)
    r = model.solve(solver="Double")
    assert r.solver == "Sparse" and r.shells.forces.shape == (2, 3, 8)


def test_progress():
    lines = []
    morlen.parse(CANTILEVER).solve(progress=lines.append)
    assert any("Stiffness matrix filled" in line for line in lines)
    assert all(line and "\n" not in line for line in lines)


def test_progress_ends_the_analysis():
    class Enough(Exception):
        pass

    def stop(line):
        if "Stiffness" in line:
            raise Enough(line)

    model = morlen.parse(CANTILEVER)
    with pytest.raises(Enough, match="Stiffness"):
        model.solve(progress=stop)
    assert model.solve().displacements[1, 0] > 0


def test_warnings_are_warnings(capfd):
    text = PLANE.replace("end materials", "x 2\nend materials")
    with warnings.catch_warnings(record=True) as caught:
        warnings.simplefilter("always")
        morlen.parse(text)
    assert [w.category for w in caught] == [morlen.ModelWarning]
    assert "line 12" in str(caught[0].message)
    assert capfd.readouterr() == ("", "")


@pytest.mark.parametrize("name", ALL)
def test_models_can_be_pickled(name):
    model = morlen.parse(ALL[name])
    model.materials[1].E = 1.7e8
    other = pickle.loads(pickle.dumps(model))
    assert other.materials[1].E == 1.7e8
    np.testing.assert_array_equal(other.solve().displacements, model.solve().displacements)


def test_a_material_keeps_its_model_alive():
    material = morlen.parse(CANTILEVER).materials[1]
    material.A = 3.0
    assert material.A == 3.0


def test_every_example_solves_as_the_program(run_program, tmp_path):
    """Copies of models are complete: all examples and runs give the same files."""
    paths = [*TOP.glob("examples/*.dat"), *TOP.glob("tests/runs/*/model.dat")]
    assert len(paths) > 30
    for path in paths:
        text = path.read_bytes().decode("utf-8", "replace")
        r = morlen.parse(text).solve()
        pickled = pickle.loads(pickle.dumps(r))
        text_results, post = run_program(text)
        for one in (r, pickled):
            one.write(text=tmp_path / "a.txt", post=tmp_path / "a.res")
            assert (tmp_path / "a.txt").read_bytes() == text_results, path
            assert (tmp_path / "a.res").read_bytes() == post, path


def test_two_threads_at_once():
    texts = [CANTILEVER, PLANE, SHELLS, CANTILEVER.replace("1 111111", "1 000000")]
    alone = [morlen.parse(text).solve().displacements for text in texts[:3]]

    def work(k):
        if k % 4 == 3:  # refused: the error belongs to this thread
            with pytest.raises(morlen.Error, match="boundary conditions"):
                morlen.parse(texts[3]).solve()
            return True
        return (morlen.parse(texts[k % 4]).solve().displacements == alone[k % 4]).all()

    with ThreadPoolExecutor(2) as pool:
        assert all(pool.map(work, range(400)))


def test_one_model_in_two_threads():
    model = morlen.parse(CANTILEVER)
    expected = model.solve().displacements
    with ThreadPoolExecutor(2) as pool:
        for r in pool.map(lambda _: model.solve(), range(100)):
            np.testing.assert_array_equal(r.displacements, expected)


def test_the_interpreter_runs_meanwhile(large_model):
    model = morlen.read(large_model("plate", "100", "--setting", "Solver SkyLine"))
    ticks = []
    done = threading.Event()

    def tick():
        while not done.wait(0.01):
            ticks.append(time.perf_counter())

    thread = threading.Thread(target=tick)
    thread.start()
    model.solve()
    done.set()
    thread.join()
    # The solution takes about a second: its thread would get no tick while the lock is held.
    assert len(ticks) > 5


def test_threads_that_share_a_model_do_not_wait_for_each_other_forever(large_model):
    """The lock of a model and that of the interpreter are never taken in the wrong order."""
    model = morlen.read(large_model("block", "14"))
    results = model.solve()
    end = time.monotonic() + 1.5
    rounds = [0, 0, 0]

    def write(k, tmp=None):
        while time.monotonic() < end:
            pickle.dumps(results if k else model)
            rounds[k] += 1

    def ask():
        while time.monotonic() < end:
            model.materials[1].E = model.materials[1].E
            results._core.displacements()
            rounds[2] += 1

    threads = [threading.Thread(target=write, args=(k,), daemon=True) for k in (0, 1)]
    threads.append(threading.Thread(target=ask, daemon=True))
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join(60)
        assert not thread.is_alive()
    assert min(rounds) > 3
