"""Ctrl-C ends an analysis within a second, in the libraries of Solver Direct at the end of a phase."""

import os
import signal
import subprocess
import sys
import time

import pytest
from conftest import BUILD, TOP
from small_models import CANTILEVER

import morlen

SCRIPT = """
import sys, time
sys.path.insert(0, sys.argv[1])
import morlen
model = morlen.read(sys.argv[2])
print("begin", flush=True)
phase = sys.argv[3]
def progress(line):
    print("phase" if phase in line else "line", time.time(), flush=True)
try:
    model.solve(progress=progress)
    print("solved", time.time(), flush=True)
except KeyboardInterrupt:
    print("ended", time.time(), flush=True)
model = morlen.parse(open(sys.argv[4]).read())
print(model.solve().displacements[1, 0])
"""


class Run:
    """A solution in another process, up to the line of a phase."""

    def __init__(self, model, phase):
        portal = TOP / "examples" / "portal_frame.dat"
        arguments = [BUILD / "python", model, phase, portal]
        command = [sys.executable, "-c", SCRIPT, *map(str, arguments)]
        self.process = subprocess.Popen(command, stdout=subprocess.PIPE, text=True)
        self.reached = self.next("phase")

    def next(self, *words):
        """The time of the next line with one of these words; its word is kept."""
        for line in self.process.stdout:
            self.word = line.split()[0]
            if self.word in words:
                return float(line.split()[1])
        raise AssertionError(f"the process ended before {words}")

    def interrupt(self):
        """Sends Ctrl-C a moment after the beginning of the phase; gives the time."""
        time.sleep(0.15)
        self.process.send_signal(signal.SIGINT)
        return time.time()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()
        self.process.stdout.close()


def second():
    """A second on a machine that does nothing else."""
    return 1.0 if os.getloadavg()[0] < os.cpu_count() else 3.0


# Each phase takes some seconds.
@pytest.mark.parametrize(
    "family, solver, phase",
    [
        (("plate", "110"), "SkyLine", "Just before Solver"),
        (("plate", "110"), "SkyLine", "Just before filling"),
        # A tolerance that no iteration reaches: a smaller model takes long as well.
        (("block", "28"), "Sparse 1e-30 1e-30 5000", "iteration number 10 "),
        (("block", "28"), "Sparse 1e-30 1e-30 5000", "Just before filling"),
    ],
)
def test_control_c(family, solver, phase, large_model):
    model = large_model(*family, "--setting", f"Solver {solver}")
    with Run(model, phase) as run:
        sent = run.interrupt()
        ended = run.next("ended", "solved")
        rest = run.process.stdout.read()
    assert run.word == "ended"
    assert ended - sent < second()
    # The process works on.
    assert "0.009" in rest


def test_control_c_in_the_library_of_solver_direct(large_model):
    """A phase of the library is finished, and no other one begins."""
    model = large_model("block", "22", "--setting", "Solver Direct")
    try:
        morlen.parse(CANTILEVER).solve(solver="Direct")
    except morlen.Error as error:
        assert "built without" in error.message
        pytest.skip("built without Solver Direct")
    with Run(model, "Factorisation") as run:
        duration = run.next("phase") - run.reached  # "Factorisation finished"
    with Run(model, "Factorisation") as run:
        sent = run.interrupt()
        ended = run.next("ended", "solved", "phase", "line")
        rest = run.process.stdout.read()
    assert run.word == "ended"  # no line of a later phase
    assert 0.4 < duration  # the signal comes in the middle of the phase
    assert ended - sent < 2 * duration + second()
    assert "0.009" in rest


def test_the_handler_of_a_signal_may_raise(large_model):
    class Late(Exception):
        pass

    def raise_late(number, frame):
        raise Late

    model = morlen.read(large_model("plate", "60", "--setting", "Solver SkyLine"))
    before = signal.signal(signal.SIGALRM, raise_late)
    try:
        signal.setitimer(signal.ITIMER_REAL, 0.2)
        with pytest.raises(Late):
            for _ in range(50):
                model.solve()
    finally:
        signal.setitimer(signal.ITIMER_REAL, 0)
        signal.signal(signal.SIGALRM, before)


def test_control_c_while_reading_and_writing(large_model, tmp_path):
    """Interrupted writing leaves no file."""

    def raise_late(number, frame):
        raise KeyboardInterrupt

    path = large_model("block", "24")
    results = morlen.read(path).solve()
    before = signal.signal(signal.SIGALRM, raise_late)
    try:
        signal.setitimer(signal.ITIMER_REAL, 0.11)
        with pytest.raises(KeyboardInterrupt):
            for _ in range(200):
                results.write(post=tmp_path / "a.res", vtu=tmp_path / "a.vtu")
                morlen.read(path)
    finally:
        signal.setitimer(signal.ITIMER_REAL, 0)
        signal.signal(signal.SIGALRM, before)
    for file in tmp_path.iterdir():
        assert file.name in ("a.res", "a.vtu")
        assert file.stat().st_size > 1000
