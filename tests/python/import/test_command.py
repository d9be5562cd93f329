"""The command: arguments, files, exit status, time."""

import functools
import os
import re
import signal
import subprocess
import sys
import time
from pathlib import Path

import numpy as np
import pytest
from small_meshes import SOLID, SOLID_MAP
from solved import block_rows
from test_inp_rules import BASE, STEPS


@pytest.fixture
def folder(tmp_path):
    """A folder with a mesh, its map and a deck."""
    (tmp_path / "a.msh").write_text(SOLID)
    (tmp_path / "a.map").write_text(SOLID_MAP)
    (tmp_path / "a.inp").write_text(BASE)
    return tmp_path


@pytest.mark.parametrize(
    "arguments, message",
    [
        ([], "the following arguments are required: MESH"),
        (["a.msh", "a.map"], "the name of the problem file is missing: -o FILE"),
        (["a.msh", "-o", "a.dat"], "the map of the groups is missing (--groups lists them)"),
        (["a.inp", "-o", "a.dat"], "--units LENGTH,FORCE is missing, or a map of the groups"),
        (
            ["a.msh", "--units", "mm,N", "-o", "a.dat"],
            "the map of the groups is missing (--groups lists them)",
        ),
        (["a.msh", "a.map", "--units", "mm,N", "-o", "a.dat"], "the map has the units: leave out --units"),
        (["a.inp", "--units", "mm", "-o", "a.dat"], "--units mm: two units are needed, such as mm,N"),
        (
            ["a.inp", "--units", "mm,kg", "-o", "a.dat"],
            "--units mm,kg: 'kg' is no unit of force: use one of N, kN, MN, lbf, kip",
        ),
        (
            ["a.inp", "--units", "yd,N", "-o", "a.dat"],
            "--units yd,N: 'yd' is no unit of length: use one of mm, cm, m, km, in, ft",
        ),
        (["a.msh", "a.map", "--skip", "-o", "a.dat"], "--skip is only for .inp files"),
        (["a.msh", "a.map", "--bad", "-o", "a.dat"], "unrecognized arguments: --bad"),
    ],
)
def test_wrong_arguments(imported, folder, arguments, message):
    status, out, err = imported(*arguments)
    assert (status, out) == (2, "")
    assert err.splitlines()[0] == f"morlen-import: {message}"
    assert err.splitlines()[1].startswith("usage: morlen-import")
    assert (folder / "a.map").read_text() == SOLID_MAP


def test_groups(imported, folder):
    status, out, err = imported("a.msh", "--groups")
    assert (status, err) == (0, "")
    assert out.splitlines() == [
        "0:tip  1 point",
        "2:foot  1 triangle",
        "2:top  1 triangle",
        "2:also top  1 triangle",
        "2:inner  1 triangle",
        "3:body  2 tetrahedra",
    ]
    (folder / "b.inp").write_text(BASE[: BASE.index("*MATERIAL")])
    assert imported("b.inp", "--groups")[1].splitlines() == [
        "3:BODY  2 tetrahedra",
        "0:ALL  5 nodes",
        "0:FEET  3 nodes",
    ]
    assert imported("a.msh", "--groups", "-o", "x")[0] == 2


@pytest.mark.parametrize(
    "missing, message",
    [
        ("meshio", "a.vtk: error: files of this kind are read by meshio, which is not installed"),
        ("h5py", "a.med: error: meshio needs h5py, which is not installed"),
    ],
)
def test_missing_packages(imported, folder, monkeypatch, missing, message):
    pytest.importorskip("meshio")
    import sys

    monkeypatch.setitem(sys.modules, missing, None)
    name = message.partition(":")[0]
    (folder / name).write_text("x")
    status, _, err = imported(name, "a.map", "-o", "a.dat")
    assert (status, err.splitlines()[0]) == (2, message)
    assert f"hint: install python3-{missing}" in err


def test_help_and_version(imported):
    assert imported("--help")[0] == 0 and imported("--version")[1].startswith("morlen-import ")


@pytest.mark.parametrize(
    "arguments, start",
    [
        (["none.msh", "a.map", "-o", "a.dat"], "none.msh: error: cannot be read: No such file"),
        (["a.msh", "none.map", "-o", "a.dat"], "none.map: error: cannot be read: No such file"),
        (["none.vtu", "a.map", "-o", "a.dat"], "none.vtu: error: cannot be read: No such file"),
        ([".", "a.map", "-o", "a.dat"], ".: error: "),
        (["a.msh", ".", "-o", "a.dat"], ".: error: this is a folder"),
        (["a.msh", "a.map", "-o", "none/a.dat"], "none/a.dat: error: cannot be written: No such file"),
        (["a.msh", "a.map", "-o", "."], ".: error: this is no regular file"),
        (["a.msh", "a.map", "-o", "a.map"], "a.map: error: a.map would be written over"),
        (["a.msh", "a.map", "-o", "./a.msh"], "a.msh: error: a.msh would be written over"),
        (["a.msh", "a.map", "-o", "link"], "link: error: a.msh would be written over"),
        (["b.inp", "--units", "mm,N", "-o", "a.inp"], "a.inp: error: a.inp would be written over"),
    ],
)
def test_files_that_cannot_be_used(imported, folder, arguments, start):
    (folder / "link").symlink_to("a.msh")
    (folder / "b.inp").write_text("*INCLUDE, INPUT=a.inp\n")
    status, out, err = imported(*arguments)
    errors = [line for line in err.splitlines() if ": warning: " not in line]
    assert (status, out) == (2, "")
    assert errors[0].startswith(start)
    assert not [name for name in os.listdir(folder) if "tmp" in name]
    assert (folder / "a.msh").read_text() == SOLID and (folder / "a.inp").read_text() == BASE


@pytest.mark.parametrize("name", ["-", "/dev/stdout", "/dev/fd/1"])
def test_standard_output_has_the_problem_file_alone(imported, folder, name):
    assert imported("a.msh", "a.map", "-o", "a.dat")[0] == 0
    expected = (folder / "a.dat").read_text()
    before = set(os.listdir(folder))
    assert imported("a.msh", "a.map", "-o", name)[:2] == (0, expected)
    assert set(os.listdir(folder)) == before


@pytest.mark.parametrize("name", ["-", "a.dat"])
def test_a_full_standard_output_is_an_error(folder, name):
    package = str(Path(__file__).resolve().parents[3] / "python")
    command = "from morlen_import.command_line import main; import sys; sys.exit(main())"
    with open("/dev/full", "w") as full:
        run = subprocess.run([sys.executable, "-c", command, "a.msh", "a.map", "-o", name, "--no-check"], cwd=folder,
                             stdout=full, stderr=subprocess.PIPE, text=True, env=os.environ | {"PYTHONPATH": package})
    message = "error: can't write to standard output\nhint: No space left on device\n"
    assert run.returncode == 2 and run.stderr.endswith(message) and "Exception" not in run.stderr


def test_pipes_get_the_problem_file(imported, folder):
    assert imported("a.msh", "a.map", "-o", "a.dat")[0] == 0
    os.mkfifo(folder / "pipe")
    with subprocess.Popen(["cat", "pipe"], cwd=folder, stdout=subprocess.PIPE, text=True) as reader:
        assert imported("a.msh", "a.map", "-o", "pipe")[:2] == (0, "wrote pipe\n")
        assert reader.communicate(timeout=30)[0] == (folder / "a.dat").read_text()


def test_links_are_followed(imported, folder):
    (folder / "there").mkdir()
    (folder / "a.dat").symlink_to("there/b.dat")
    assert imported("a.msh", "a.map", "-o", "a.dat")[:2] == (0, "wrote a.dat\n")
    assert (folder / "a.dat").is_symlink() and (folder / "there" / "b.dat").read_text().startswith(
        "problem type: 3d"
    )


def test_an_earlier_file_is_kept_after_an_error(imported, folder):
    (folder / "a.dat").write_text("earlier")
    (folder / "a.map").write_text(SOLID_MAP.replace("top", "tpo"))
    assert imported("a.msh", "a.map", "-o", "a.dat")[0] == 2
    assert (folder / "a.dat").read_text() == "earlier"
    (folder / "a.map").write_text(SOLID_MAP)
    assert imported("a.msh", "a.map", "-o", "a.dat")[0] == 0
    assert (folder / "a.dat").read_text().startswith("problem type: 3d\n")


def test_errors_of_the_check(imported, folder):
    (folder / "a.map").write_text(SOLID_MAP.replace('"111"', '"001"'))
    status, out, err = imported("a.msh", "a.map", "-o", "a.dat")
    assert (status, out) == (2, "")
    assert re.search(r"(?m)^a\.dat(:\d+:\d+)?: error: ", err) and "hint: --no-check writes the file" in err
    assert not (folder / "a.dat").exists()
    status, out, err = imported("a.msh", "a.map", "--no-check", "-o", "a.dat")
    assert (status, out) == (0, "wrote a.dat\n")


FOLDED = """$MeshFormat
2.2 0 8
$EndMeshFormat
$Nodes
4
11 0 0 1
12 2 0 1
13 2 2 1
14 0 2 1
$EndNodes
$Elements
3
5 1 2 1 1 11 12
17 2 2 6 1 11 12 13
19 2 2 6 1 11 14 13
$EndElements
"""
FOLDED_MAP = """
units = { length = "m", force = "kN" }
[settings]
ShellFormulation = "Refined"
[materials.concrete]
groups = ["2:6"]
E = 3e7
nu = 0.2
G = 1.25e7
t = 0.2
[supports.foot]
groups = ["1:1"]
flags = "111111"
"""


def test_errors_of_the_check_have_the_numbers_of_the_mesh(imported, folder):
    (folder / "b.msh").write_text(FOLDED)
    (folder / "b.map").write_text(FOLDED_MAP)
    status, _, err = imported("b.msh", "b.map", "-o", "b.dat")
    assert status == 2 and "error: Elements 1 and 2 have normals in opposite directions" in err
    assert "hint: in b.msh: element 2 is 19, element 1 is 17" in err.splitlines()
    (folder / "b.map").write_text(FOLDED_MAP.replace("111111", "001000"))
    (folder / "b.msh").write_text(FOLDED.replace("11 14 13", "11 13 14"))
    status, _, err = imported("b.msh", "b.map", "-o", "b.dat")
    assert status == 2 and "node 1 moves most" in err
    assert [
        line for line in err.splitlines() if "node 1 is 11" in line and line.startswith("hint: in b.msh: ")
    ]


def test_no_numbers_where_they_are_equal(imported, folder):
    same = FOLDED.replace("5 1 2 1 1", "3 1 2 1 1").replace("17 2 2", "1 2 2").replace("19 2 2", "2 2 2")
    for node in "1234":
        same = re.sub(rf"\b1{node}\b", node, same)
    (folder / "b.msh").write_text(same)
    (folder / "b.map").write_text(FOLDED_MAP)
    status, _, err = imported("b.msh", "b.map", "-o", "b.dat")
    assert status == 2 and "Elements 1 and 2 have" in err and "hint: in b.msh" not in err


def check_of_cases(folder, commands):
    """A folder with a morlen-check that runs shell commands for files of cases, and finds no errors in others."""
    other = folder / "other"
    other.mkdir()
    program = other / "morlen-check"
    program.write_text(f"#!/bin/sh\ncase $2 in *.cases) {commands};; esac\n")
    program.chmod(0o755)
    return other


def test_cases_are_checked(imported, build, folder):
    (folder / "a.inp").write_text(STEPS)
    status, _, err = imported("a.inp", "--units", "mm,N", "-o", "b.dat")
    # No combination uses the steps: that is no warning.
    assert (status, "nothing uses the case" in err, "not checked" in err) == (0, False, False)
    # A check that knows an error of the cases: none of the files is written.
    other = check_of_cases(
        folder,
        f'{build}/companions/morlen-check "$@" || exit 9;'
        ' echo "c.dat:3:1: warning: careful" >&2; echo "$2:7:2: error: wrong" >&2; exit 1',
    )
    (folder / "out").mkdir()
    status, out, err = imported("a.inp", "--units", "mm,N", "-o", "out/c.dat", programs=[other])
    assert (status, out) == (2, "")
    assert [line for line in err.splitlines() if "out/c." in line] == [
        "out/c.dat:3:1: warning: careful",
        "out/c.cases:7:2: error: wrong",
        "out/c.cases: error: morlen-check finds errors in the model, and no file is written",
    ]
    assert not os.listdir(folder / "out")
    assert imported("a.inp", "--units", "mm,N", "-o", "out/c.dat", "--no-check", programs=[other])[0] == 0


def test_a_check_without_cases(imported, folder):
    (folder / "a.inp").write_text(STEPS)
    text = "this program has been built without files of load cases"
    other = check_of_cases(folder, f'echo "$2: error: {text}" >&2; exit 1')
    status, _, err = imported("a.inp", "--units", "mm,N", "-o", "b.dat", programs=[other])
    assert status == 0
    assert (
        "b.cases: warning: not checked: this morlen-check has been built without files of load cases\n" in err
    )


def test_links_to_different_folders(imported, folder):
    (folder / "a.inp").write_text(STEPS)
    (folder / "there").mkdir()
    (folder / "b.cases").symlink_to("there/b.cases")
    status, _, err = imported("a.inp", "--units", "mm,N", "-o", "b.dat")
    assert (
        status == 2
        and "b.dat: error: links of the problem file and of its cases lead to different folders" in err
    )


def test_without_the_check_program(folder, monkeypatch, capsys):
    from morlen_import.command_line import main

    monkeypatch.chdir(folder)
    monkeypatch.setenv("PATH", "/nowhere")
    assert main(["a.msh", "a.map", "-o", "a.dat"]) == 0
    signal.signal(signal.SIGINT, signal.default_int_handler)  # the end of an import ignores it
    assert (
        "a.dat: warning: not checked: morlen-check is neither beside this program nor on PATH"
        in capsys.readouterr().err
    )


def test_cases_beside_the_model(imported, folder):
    (folder / "a.inp").write_text(STEPS)
    assert imported("a.inp", "--units", "mm,N", "-o", "b.dat")[1] == "wrote b.dat\nwrote b.cases\n"
    assert imported("a.inp", "--units", "mm,N", "-o", "c.cases")[0] == 2
    assert not (folder / "c.cases").exists()


LAUNCHERS = ("companions/morlen-import", "python/morlen-import")


@pytest.fixture(params=LAUNCHERS)
def launcher(build, request):
    """Starts the program of the build in a folder."""
    program = build / request.param
    if not program.exists():
        pytest.skip("morlen-import is not built")

    def start(folder, *arguments):
        return subprocess.Popen(
            [program, *arguments],
            cwd=folder,
            env={"PATH": "/usr/bin:/bin", "PYTHONDONTWRITEBYTECODE": "1"},
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            text=True,
        )

    return start


def test_launcher(launcher, folder):
    run = launcher(folder, "a.msh", "a.map", "-o", "a.dat")
    out, err = run.communicate()
    assert (run.returncode, out) == (0, "wrote a.dat\n"), err
    # morlen-check is found.
    assert "not checked" not in err


def test_a_missing_package(build, folder):
    launcher = build / "companions" / "morlen-import"
    if not launcher.exists():
        pytest.skip("morlen-import is not built")
    (folder / "numpy.py").write_text("raise ModuleNotFoundError('gone', name='numpy')")
    run = subprocess.run(
        [launcher, "a.msh", "a.map", "-o", "a.dat"],
        cwd=folder,
        env=os.environ | {"PYTHONPATH": str(folder)},
        capture_output=True,
        text=True,
        check=False,
    )
    said = "morlen-import: numpy is not installed (Debian package python3-numpy)\n"
    assert (run.returncode, run.stdout, run.stderr) == (2, "", said)


@pytest.mark.parametrize("delay", [0.0, 0.002, 0.005, 0.01, 0.02, 0.03, 0.05, 0.07, 0.1, 0.15, 0.2, 0.3])
def test_interrupts(launcher, folder, delay):
    (folder / "a.msh").write_text(large_mesh((16, 16, 16))[0])
    run = launcher(folder, "a.msh", "a.map", "-o", "a.dat")
    time.sleep(0.003 + delay)
    run.send_signal(signal.SIGINT)
    out, err = run.communicate()
    if run.returncode == 0:
        assert out == "wrote a.dat\n" and (folder / "a.dat").exists()
        return
    assert sorted(os.listdir(folder)) == ["a.inp", "a.map", "a.msh"]
    if run.returncode == -signal.SIGINT and delay < 0.01:
        # On a busy machine the program that starts Python has not blocked the signal yet, and dies of it.
        assert (out, err) == ("", "")
        return
    assert (run.returncode, out) == (2, "")
    assert err.splitlines()[-1] == "morlen-import: interrupted" and "Traceback" not in err


def _triangles(flat):
    """Two triangles in every square of a table of nodes."""
    a, b, c, d = (part.ravel() for part in (flat[:-1, :-1], flat[1:, :-1], flat[1:, 1:], flat[:-1, 1:]))
    return np.concatenate([np.column_stack([a, b, c]), np.column_stack([a, c, d])])


@functools.cache
def large_mesh(parts):
    """A block of cubes, by their counts along x, y and z, of six tetrahedra each, as .msh 2.2.

    The triangles of its lower side are the group "foot", those of its upper side "top".
    """
    counts = np.array(parts) + 1
    places = np.meshgrid(*[np.arange(n) / max(parts) for n in counts], indexing="ij")
    nodes = np.column_stack([axis.ravel() for axis in places])
    corner = np.arange(len(nodes)).reshape(counts)
    paths = [(1, 2, 4), (1, 4, 2), (2, 1, 4), (2, 4, 1), (4, 1, 2), (4, 2, 1)]
    step = {1: (1, 0, 0), 2: (0, 1, 0), 4: (0, 0, 1)}

    def shifted(offset):
        return corner[tuple(slice(o, o + n) for o, n in zip(offset, parts))].ravel()

    tets = []
    for path in paths:
        offset, row = np.zeros(3, dtype=int), [shifted((0, 0, 0))]
        for move in path:
            offset = offset + step[move]
            row.append(shifted(offset))
        tets.append(np.column_stack(row))
    tets = np.concatenate(tets) + 1
    foot, top = (_triangles(corner[:, :, k] + 1) for k in (0, -1))
    rows = [f"{k} 2 2 2 1 {p} {q} {r}" for k, (p, q, r) in enumerate(foot.tolist(), 1)]
    rows += [f"{k} 2 2 3 1 {p} {q} {r}" for k, (p, q, r) in enumerate(top.tolist(), 1 + len(rows))]
    rows += [f"{k} 4 2 5 1 {p} {q} {r} {s}" for k, (p, q, r, s) in enumerate(tets.tolist(), 1 + len(rows))]
    head = SOLID[: SOLID.index("$Nodes")]
    places = "".join(f"{k} {p!r} {q!r} {r!r}\n" for k, (p, q, r) in enumerate(nodes.tolist(), 1))
    return (
        f"{head}$Nodes\n{len(nodes)}\n{places}$EndNodes\n$Elements\n{len(rows)}\n"
        + "\n".join(rows)
        + "\n$EndElements\n",
        len(tets),
    )


# The second is slim: all motions inside it would be looked for, in about 20 s, were the check not a quick one.
@pytest.mark.parametrize("parts", [(33, 33, 33), (12, 12, 240)])
def test_200000_tetrahedra_in_ten_seconds(build, folder, parts):
    text, count = large_mesh(parts)
    assert count > 200_000
    (folder / "a.msh").write_text(text)
    code = (
        "import sys; sys.path.insert(0, sys.argv[1])\n"
        "from morlen_import.command_line import main\n"
        "sys.exit(main(sys.argv[3:], programs=[sys.argv[2]]))"
    )
    top = os.path.join(os.path.dirname(__file__), "..", "..", "..", "python")
    run = subprocess.Popen(
        [sys.executable, "-c", code, top, build / "companions", "a.msh", "a.map", "-o", "a.dat"], cwd=folder
    )
    _, status, used = os.wait4(run.pid, 0)
    run.returncode = os.waitstatus_to_exitcode(status)
    assert run.returncode == 0
    # Time of the processor, so that other programs do not count.
    if "MORLEN_SANITIZED" not in os.environ:
        assert used.ru_utime + used.ru_stime < 10.0
    written = (folder / "a.dat").read_text()
    assert written.count("\n") > count
    assert len(block_rows(written, "local_pressure_loads")) == 2 * parts[0] * parts[1]


def test_the_check_is_a_quick_one(imported, folder):
    """Motions inside large models are left to morlen, in models of some equations the check finds them."""
    programs = folder / "programs"
    programs.mkdir()
    (programs / "morlen-check").write_text('#!/bin/sh\necho "$@" >>"$(dirname "$0")/calls"\n')
    (programs / "morlen-check").chmod(0o755)
    assert imported("a.msh", "a.map", "-o", "a.dat", programs=[programs])[0] == 0
    (call,) = (programs / "calls").read_text().splitlines()
    assert re.fullmatch(r"--quick \./\S+", call)
