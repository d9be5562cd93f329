"""The package as pip installs it, and its types."""

import importlib.util
import os
import shutil
import subprocess
import sys

import pytest
from conftest import BUILD, TOP

USE = "import morlen; print(morlen.__file__, morlen.read({!r}).solve().displacements[1, 0])"


def run(*command, **options):
    done = subprocess.run(command, capture_output=True, text=True, check=False, **options)
    assert done.returncode == 0, done.stdout + done.stderr
    return done.stdout


@pytest.fixture(scope="module")
def venv(tmp_path_factory):
    """A virtual environment with the packages of the system: with its pip, else with one of its own, which takes
    seconds to unpack."""
    folder = tmp_path_factory.mktemp("venv")
    own = [] if importlib.util.find_spec("pip") is None else ["--without-pip"]
    made = subprocess.run(
        [sys.executable, "-m", "venv", "--system-site-packages", *own, str(folder)],
        capture_output=True,
        check=False,
    )
    if made.returncode:
        pytest.skip("python3-venv is not installed")
    return folder


def test_pip_installs_without_a_network(venv, tmp_path):
    # No network: a proxy that refuses everything. The build folder is given: its compilation is not
    # part of this test.
    nowhere = "http://127.0.0.1:9"
    environment = {k: v for k, v in os.environ.items() if k not in ("PYTHONPATH", "MAKEFLAGS")}
    environment |= {"http_proxy": nowhere, "https_proxy": nowhere, "PIP_INDEX_URL": nowhere}
    pip = (venv / "bin" / "python", "-m", "pip")
    run(
        *pip,
        "install",
        "--disable-pip-version-check",
        "--config-settings",
        f"build={BUILD}",
        str(TOP),
        env=environment,
        cwd=tmp_path,
    )
    model = str(TOP / "examples" / "portal_frame.dat")
    place, sway = run(venv / "bin" / "python", "-c", USE.format(model), cwd=tmp_path, env=environment).split()
    assert place.startswith(str(venv)) and float(sway) == pytest.approx(0.0091232, rel=1e-5)
    files = {path.name for path in (venv / "lib").glob("python3.*/site-packages/morlen/*")}
    assert {"py.typed", "_core.pyi", "__init__.py"} <= files
    run(*pip, "uninstall", "-y", "morlen", env=environment, cwd=tmp_path)


def test_names_of_other_libraries_stay_hidden():
    """The module shows its entry only: another MUMPS or BLAS in the process cannot take its calls."""
    if not shutil.which("nm"):
        pytest.skip("nm is not installed")
    module = next((BUILD / "python" / "morlen").glob("_core*.so"))
    shown = run("nm", "-D", "--defined-only", str(module)).split()
    assert [word for word in shown if word.startswith("P")] == ["PyInit__core"]
    assert len(shown) == 3


@pytest.fixture(scope="module")
def cache(tmp_path_factory):
    """A cache of mypy for all tests: the types of numpy are read once."""
    return str(tmp_path_factory.mktemp("mypy"))


def mypy(*arguments):
    if not shutil.which("mypy"):
        pytest.skip("mypy is not installed")
    environment = os.environ | {"MYPYPATH": str(BUILD / "python"), "PYTHONPATH": str(BUILD / "python")}
    return subprocess.run(
        [sys.executable, "-m", *arguments],
        capture_output=True,
        text=True,
        check=False,
        env=environment,
        cwd=TOP,
    )


def test_types_of_the_package(cache):
    done = mypy("mypy", "--cache-dir", cache, "--strict", "-p", "morlen")
    assert done.returncode == 0, done.stdout


def test_stubs_are_those_of_the_module(tmp_path):
    # The classes have the metaclass and the methods of pybind11, which no stub has.
    allowed = tmp_path / "allowed"
    allowed.write_text(r"morlen\._core\.(Material|Model|Solved|Cases|CaseResults)(\.__\w+__)?" + "\n")
    done = mypy("mypy.stubtest", "morlen._core", "--allowlist", str(allowed), "--ignore-unused-allowlist")
    assert done.returncode == 0, done.stdout


USER = """
import morlen

model = morlen.read("frame.dat")
for f in morlen.check("frame.dat"):
    print(f.severity, f.code, f.line, f.text)
r = model.solve(solver="Automatic", progress=None)
reveal_type(r.displacements)
reveal_type(r.beams.forces(points=21))
model.materials[1].A = 0.02
reveal_type(model.materials[1].A)
r.write(text="frame.txt", post="frame.morlen.res", vtu="frame.vtu", report="frame.html")
"""


def test_types_of_a_program(tmp_path, cache):
    (tmp_path / "user.py").write_text(USER)
    done = mypy("mypy", "--cache-dir", cache, "--strict", str(tmp_path / "user.py"))
    assert done.returncode == 0, done.stdout
    assert done.stdout.count("ndarray") == 2 and "builtins.float" in done.stdout
    (tmp_path / "wrong.py").write_text(USER + "model.solv()\nmodel.foo = 1\nmodel.materials[1].Area = 1\n")
    done = mypy("mypy", "--cache-dir", cache, "--strict", str(tmp_path / "wrong.py"))
    assert all(name in done.stdout for name in ('"solv"', '"foo"', '"Area"'))
