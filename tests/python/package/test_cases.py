"""Load cases: each as the problem file that it is, combinations as sums, envelopes as extremes."""

import gc
import pickle
import re
import xml.etree.ElementTree

import numpy as np
import pytest
from conftest import TOP
from small_models import PLANE, SHELLS, SOLID

import morlen
from morlen import _core

if not hasattr(_core, "read_cases"):
    pytest.skip("built without load cases", allow_module_level=True)

FRAME = re.sub(r"(?s)global_pressure_loads.*", "", PLANE).replace("Iz = ", "Weight = 20 Iz = ")
WIND = "nodal_point_loads\n2 3 7 0\nend nodal_point_loads\n"
SNOW = "global_pressure_loads\n7 0 -5\nend global_pressure_loads\n"
SETTLED = "constraints\n1 010 0 -0.02 0\nend constraints\n"
CASES = f"""model = "frame.dat"
[cases.G]
title = "Weight"
gravity = true
[cases.W]
text = '''
{WIND}'''
[cases.S]
text = '''
{SNOW}'''
[cases.U]
text = '''
{SETTLED}'''
[combinations]
"ULS 1" = {{ G = 1.35, S = 1.5 }}
"ULS 2" = {{ "ULS 1" = 1.0, W = -0.9 }}
"SLS" = {{ G = 1.0, U = 1.0 }}
[envelopes]
ULS = ["ULS *", "G"]
all = ["*"]
"""
GRAVITY = "GravityDirection 0 -1 0\n"


@pytest.fixture
def frame(tmp_path):
    (tmp_path / "frame.dat").write_text(FRAME + GRAVITY)
    (tmp_path / "frame.cases").write_text(CASES)
    return tmp_path / "frame.cases"


def test_content(frame):
    cases = morlen.read_cases(frame)
    assert cases.names == ("G", "W", "S", "U") and cases.titles["G"] == "Weight"
    assert cases.combinations["ULS 2"] == {"G": 1.35, "S": 1.5, "W": -0.9}
    assert cases.envelopes["ULS"] == ("G", "ULS 1", "ULS 2")
    assert repr(cases) == "<morlen.Cases: 4 cases, 3 combinations, 2 envelopes>"
    solved = cases.solve()
    assert list(solved) == list(cases.combinations) and len(solved) == 7
    assert solved.solver == "SkyLine" and "ULS 1" in solved and "ULS" not in solved
    with pytest.raises(KeyError):
        solved["ULS 3"]
    with pytest.raises(KeyError, match="no envelope 'G'"):
        solved.envelope("G")
    with pytest.raises(KeyError, match="no case or combination 3"):
        solved[3]


@pytest.mark.parametrize(
    "name, loads",
    [("G", GRAVITY), ("W", WIND), ("S", SNOW), ("U", SETTLED)],
)
def test_cases_are_the_problem_files_that_they_are(name, loads, frame, tmp_path):
    case = morlen.read_cases(frame).solve()[name]
    model = FRAME if name == "G" else FRAME.replace("Weight = 20 ", "")
    alone = morlen.parse(model + loads).solve()
    np.testing.assert_array_equal(case.displacements, alone.displacements)
    np.testing.assert_allclose(case.reactions, alone.reactions, rtol=1e-12, atol=1e-12)
    np.testing.assert_array_equal(case.beams.forces(7), alone.beams.forces(7))
    np.testing.assert_array_equal(case.beams.displacements(7), alone.beams.displacements(7))
    case.write(text=tmp_path / "a.txt", post=tmp_path / "a.res", vtu=tmp_path / "a.vtu")
    alone.write(text=tmp_path / "b.txt", post=tmp_path / "b.res", vtu=tmp_path / "b.vtu")
    for ending in ("txt", "res"):
        assert (tmp_path / f"a.{ending}").read_bytes() == (tmp_path / f"b.{ending}").read_bytes()
    # The file of a case has the results and no loads.
    arrays = [xml.etree.ElementTree.parse(tmp_path / f"{k}.vtu").iter("DataArray") for k in "ab"]
    of_case, of_model = ({array.get("Name").split(" [")[0]: array.text for array in one} for one in arrays)
    for one in (of_case, of_model):
        one.pop("Material Weight", None)  # the model of the case has it
    assert len(of_case) > 10 and of_case.items() <= of_model.items()
    extra = of_model.keys() - of_case.keys()
    assert extra <= {"Nodal force", "Nodal moment", "Line load", "Prescribed displacement"}
    assert bool(extra) == (name != "G")
    with pytest.raises(morlen.Error, match="report"):
        case.write(report=tmp_path / "a.html")


def test_combinations_are_sums(frame):
    solved = morlen.read_cases(frame).solve()
    for name, factors in solved.cases.combinations.items():
        parts = [(factor, solved[case]) for case, factor in factors.items()]
        for take in (
            lambda r: r.displacements,
            lambda r: r.reactions,
            lambda r: r.beams.forces(5),
            lambda r: r.beams.displacements(5),
        ):
            total = sum(factor * take(r) for factor, r in parts)
            np.testing.assert_allclose(take(solved[name]), total, rtol=1e-11, atol=1e-11)
    assert solved["ULS 2"].residual < 1e-12 and solved["ULS 2"].units == ("", "", "")


def test_results_of_cases_can_be_pickled_and_outlive_the_others(frame, tmp_path):
    r = morlen.read_cases(frame).solve()["ULS 2"]
    other = pickle.loads(pickle.dumps(r))
    np.testing.assert_array_equal(other.displacements, r.displacements)
    np.testing.assert_array_equal(other.beams.forces(9), r.beams.forces(9))
    r.write(post=tmp_path / "a")
    other.write(post=tmp_path / "b")
    assert (tmp_path / "a").read_bytes() == (tmp_path / "b").read_bytes()


def same_arrays(one, other):
    np.testing.assert_array_equal(one, other)
    assert not other.flags.writeable


def test_solved_cases_can_be_pickled(frame, tmp_path, monkeypatch):
    solved = morlen.read_cases(frame).solve()
    state = pickle.dumps(solved)
    assert solved._core.__getstate__() == pickle.loads(state)._core.__getstate__()
    # No file is read again and nothing is solved again.
    for file in tmp_path.iterdir():
        file.unlink()
    other = pickle.loads(state)
    assert list(other) == list(solved) and other.solver == solved.solver and repr(other) == repr(solved)
    for name in solved:
        same_arrays(solved[name].displacements, other[name].displacements)
        same_arrays(solved[name].beams.forces(9), other[name].beams.forces(9))
        same_arrays(solved[name].reactions, other[name].reactions)
        assert solved[name].residual == other[name].residual
    for envelope in ("ULS", "all"):
        one, two = solved.envelope(envelope).beams, other.envelope(envelope).beams
        same_arrays(one.maximum, two.maximum)
        same_arrays(one.minimum_by, two.minimum_by)
    solved["ULS 1"].write(text=tmp_path / "a.txt", vtu=tmp_path / "a.vtu")
    again = pickle.loads(pickle.dumps(other))
    again["ULS 1"].write(text=tmp_path / "b.txt", vtu=tmp_path / "b.vtu")
    for ending in ("txt", "vtu"):
        assert (tmp_path / f"a.{ending}").read_bytes() == (tmp_path / f"b.{ending}").read_bytes()
    with pytest.raises(morlen.Error, match="can't read file"):  # a second solution reads the files again
        other.cases.solve()


def test_results_outlive_the_solved_cases_of_a_pickle(frame):
    solved = morlen.read_cases(frame).solve()
    expected = solved["ULS 2"].beams.forces(5)
    one = pickle.loads(pickle.dumps(solved))["ULS 2"]
    gc.collect()
    np.testing.assert_array_equal(one.beams.forces(5), expected)
    np.testing.assert_array_equal(pickle.loads(pickle.dumps(one)).beams.forces(5), expected)


def test_envelopes_can_be_pickled(frame):
    envelope = morlen.read_cases(frame).solve().envelope("ULS")
    before = envelope.displacements
    other = pickle.loads(pickle.dumps(envelope))
    assert other.name == "ULS" and other.names == envelope.names and repr(other) == repr(envelope)
    for kind in ("displacements", "reactions", "beams", "shells", "solids"):
        one, two = getattr(envelope, kind), getattr(other, kind)
        assert one.components == two.components and one.names == two.names
        for values in ("numbers", "minimum", "maximum", "minimum_by", "maximum_by"):
            same_arrays(getattr(one, values), getattr(two, values))
    alone = pickle.loads(pickle.dumps(before))
    same_arrays(before.maximum, alone.maximum)
    assert alone.maximum_name[1, 0, 1] == before.maximum_name[1, 0, 1]


def test_unsolved_cases_can_be_pickled(frame, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    cases = morlen.read_cases("frame.cases")
    other = pickle.loads(pickle.dumps(cases))
    monkeypatch.chdir("/")
    same_arrays(cases.solve()["ULS 1"].displacements, other.solve()["ULS 1"].displacements)


def test_inputs_are_never_written_over(frame, tmp_path, monkeypatch):
    (tmp_path / "snow.txt").write_text(SNOW)
    frame.write_text(CASES.replace(f"text = '''\n{SNOW}'''", 'loads = "snow.txt"'))
    assert "snow.txt" in frame.read_text()
    (tmp_path / "other.cases").write_text("anything")
    (tmp_path / "link.vtu").symlink_to("frame.cases")
    (tmp_path / "link2.vtu").symlink_to("other.cases")
    (tmp_path / "hard.txt").hardlink_to(tmp_path / "snow.txt")
    monkeypatch.chdir(tmp_path)
    solved = morlen.read_cases("frame.cases").solve()
    monkeypatch.chdir("/")
    plain = morlen.parse(SHELLS).solve()
    before = {file.name: file.read_bytes() for file in tmp_path.iterdir()}
    names = ["frame.cases", "frame.dat", "snow.txt", "other.cases", "link.vtu", "link2.vtu", "hard.txt"]
    for name in names:
        for kind in ("text", "post", "vtu"):
            for r in (
                solved["G"],
                pickle.loads(pickle.dumps(solved))["G"],
                pickle.loads(pickle.dumps(solved["G"])),
            ):
                with pytest.raises(morlen.Error, match="is read|is a problem file|is a file of load cases"):
                    r.write(**{kind: tmp_path / name})
    for name in ("frame.cases", "other.cases", "link2.vtu"):  # also by results of another model
        with pytest.raises(morlen.Error, match="is a file of load cases"):
            plain.write(vtu=tmp_path / name)
    assert {file.name: file.read_bytes() for file in tmp_path.iterdir()} == before


def check_extremes(extremes, values, count):
    """values: of all members of the envelope; the first `count` components of the extremes."""
    stacked = np.array(values).reshape(len(values), *extremes.minimum[..., :count].shape)
    scale = np.nanmax(abs(stacked)) or 1.0
    low, high = extremes.minimum[..., :count], extremes.maximum[..., :count]
    np.testing.assert_allclose(low, stacked.min(axis=0), atol=1e-11 * scale)
    np.testing.assert_allclose(high, stacked.max(axis=0), atol=1e-11 * scale)
    for by, extreme in ((extremes.minimum_by, low), (extremes.maximum_by, high)):
        by = by[..., :count]
        governing = np.take_along_axis(stacked, np.maximum(by, 0)[None], axis=0)[0]
        np.testing.assert_allclose(governing, extreme, atol=1e-11 * scale)


@pytest.mark.parametrize("name", ["ULS", "all"])
def test_envelopes_are_extremes(name, frame):
    solved = morlen.read_cases(frame).solve()
    envelope = solved.envelope(name)
    members = [solved[one] for one in envelope.names]
    assert envelope.beams.components == ("N", "Vy", "Vz", "T", "My", "Mz")
    assert envelope.beams.minimum.shape == (1, 21, 6) and envelope.beams.numbers.tolist() == [7]
    check_extremes(envelope.beams, [r.beams.forces(21) for r in members], 6)
    # Where no value is, none governs, and no name is given.
    assert (envelope.beams.minimum_by[..., [2, 3, 4]] == -1).all()
    assert (envelope.beams.minimum_name[..., [2, 3, 4]] == "").all()
    for by, name in (
        (envelope.beams.minimum_by, envelope.beams.minimum_name),
        (envelope.beams.maximum_by, envelope.beams.maximum_name),
    ):
        assert name.shape == by.shape
        assert all(name[i] == envelope.names[by[i]] for i in np.ndindex(by.shape) if by[i] >= 0)
    assert envelope.displacements.components == ("ux", "uy", "rz", "u")
    check_extremes(envelope.displacements, [r.displacements for r in members], 3)
    lengths = np.array([np.hypot(*r.displacements[:, :2].T) for r in members])
    np.testing.assert_allclose(envelope.displacements.maximum[:, 0, 3], lengths.max(axis=0), rtol=1e-12)
    assert envelope.reactions.numbers.tolist() == [1]
    check_extremes(envelope.reactions, [r.reactions[:1] for r in members], 3)
    assert len(envelope.shells) == len(envelope.solids) == 0
    with pytest.raises(ValueError, match="read-only"):
        envelope.beams.minimum[0] = 0


def test_envelopes_of_shells_and_solids(tmp_path):
    for text, loads, take in (
        (SHELLS, "nodal_point_loads\n2 0 0 1 0 0 0\nend\n", lambda r: r.shells.forces),
        (SOLID, "nodal_point_loads\n4 3 2 1\nend\n", lambda r: r.solids.stress),
    ):
        # Bending needs supports that let the plate bend.
        text = text.replace("2 001111", "2 000011").replace("3 001111", "3 000011")
        (tmp_path / "m.dat").write_text(text)
        (tmp_path / "m.cases").write_text(
            f'model = "m.dat"\n[cases.A]\nfrom_model = true\n[cases.B]\ntext = """\n{loads}"""\n'
            '[combinations]\nC = { A = 1, B = -2 }\n[envelopes]\nE = ["*"]\n'
        )
        solved = morlen.read_cases(tmp_path / "m.cases").solve()
        envelope = solved.envelope("E")
        extremes = envelope.shells if "Triangle" in text else envelope.solids
        values = [take(solved[name]) for name in "ABC"]
        check_extremes(extremes, values, values[0].shape[-1])
        names = extremes.components
        assert len(names) == extremes.minimum.shape[-1]
        if "von_Mises" in names:
            s = np.array(values)
            by_hand = np.sqrt(
                0.5
                * ((s[..., 0] - s[..., 1]) ** 2 + (s[..., 1] - s[..., 2]) ** 2 + (s[..., 2] - s[..., 0]) ** 2)
                + 3 * (s[..., 3:] ** 2).sum(axis=-1)
            )
            np.testing.assert_allclose(
                extremes.maximum[:, 0, names.index("von_Mises")], by_hand.max(axis=0), rtol=1e-9
            )
        else:
            m = np.array(values)[..., 3:6]
            wood = np.maximum(m[..., 0] + abs(m[..., 2]), 0)
            # Where My + |Mxy| is negative the formula is another one.
            plain = (m[..., 0] + abs(m[..., 2]) > 0) & (m[..., 1] + abs(m[..., 2]) > 0)
            got = extremes.maximum[..., names.index("mx+")]
            if plain.all():
                np.testing.assert_allclose(got, wood.max(axis=0), rtol=1e-9)


def test_errors(frame, tmp_path):
    bad = tmp_path / "bad.cases"
    bad.write_text(CASES.replace("W = -0.9", "Wind = -0.9"))
    with pytest.raises(morlen.Error) as caught:
        morlen.read_cases(bad)
    line = 1 + bad.read_text().splitlines().index('"ULS 2" = { "ULS 1" = 1.0, Wind = -0.9 }')
    assert caught.value.line == line and "Wind" in caught.value.message
    bad.write_text("model = \n")
    with pytest.raises(morlen.Error) as caught:
        morlen.read_cases(bad)
    assert caught.value.line == 1
    with pytest.raises(FileNotFoundError):
        morlen.read_cases(tmp_path / "no.cases")
    with pytest.raises(morlen.Error) as caught:
        morlen.read_cases(tmp_path / "frame.dat")
    assert caught.value.hint == "this is a problem file, not a file of load cases: morlen.read reads it"
    with pytest.raises(morlen.Error) as caught:
        morlen.read(frame)
    assert caught.value.hint == "this is a file of load cases: morlen.read_cases reads it"
    with pytest.raises(ValueError, match="unknown solver"):
        morlen.read_cases(frame).solve(solver="Fast")


def test_solved_again(frame):
    cases = morlen.read_cases(frame)
    first = cases.solve()["ULS 1"].displacements
    np.testing.assert_array_equal(cases.solve(progress=lambda line: None)["ULS 1"].displacements, first)


def test_the_example():
    cases = morlen.read_cases(TOP / "examples" / "hall.cases")
    solved = cases.solve()
    for name in cases.envelopes:
        envelope = solved.envelope(name)
        some = [solved[one].beams.forces(envelope.beams.minimum.shape[1]) for one in envelope.names[:40]]
        scale = abs(np.array(some)).max()
        assert (envelope.beams.minimum <= np.array(some) + 1e-9 * scale).all()
        assert (envelope.beams.maximum >= np.array(some) - 1e-9 * scale).all()
