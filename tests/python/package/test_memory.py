"""Errors and interruptions leave nothing behind: the memory of the process stays flat."""

import gc
import pickle
import random

import pytest
from broken import broken_texts
from small_models import ALL, write_cases

import morlen


def resident():
    """Memory of the process in kilobytes."""
    with open("/proc/self/status", encoding="ascii") as file:
        return next(int(line.split()[1]) for line in file if line.startswith("VmRSS"))


def try_all(texts):
    refused = 0
    for text in texts:
        try:
            model = morlen.parse(text)
            model.solve()
        except morlen.Error as error:
            assert error.message
            refused += 1
    return refused


def assert_flat(work, warmup, rounds, kilobytes):
    """The memory grows by less than this over the rounds. Pools and allocator first grow to what the
    work needs."""
    for _ in range(warmup):
        work()
    gc.collect()
    before = resident()
    for _ in range(rounds):
        work()
    gc.collect()
    assert resident() - before < kilobytes


@pytest.mark.filterwarnings("ignore")
def test_2000_errors():
    texts = list(broken_texts(2000, seed=5))

    def work():
        assert try_all(texts) > 1500

    # A leak of 200 bytes for each of these 10,000 models would be 2 MB; the allocator alone moves
    # by half of one.
    assert_flat(work, warmup=3, rounds=5, kilobytes=1500)


def test_solutions_are_freed():
    def work():
        for text in ALL.values():
            results = morlen.parse(text).solve()
            results.beams.forces()
            results.displacements.copy()
            pickle.loads(pickle.dumps(results))

    assert_flat(work, warmup=20, rounds=300, kilobytes=1024)


@pytest.mark.skipif(not hasattr(morlen._core, "read_cases"), reason="built without load cases")
def test_solved_cases_are_freed(tmp_path):
    file = write_cases(tmp_path, ALL["cantilever"])

    def work():
        solved = morlen.read_cases(file).solve()
        other = pickle.loads(pickle.dumps(solved))
        other["B"].displacements.copy()
        pickle.loads(pickle.dumps(other.envelope("E"))).beams

    assert_flat(work, warmup=20, rounds=300, kilobytes=1024)


def test_stopped_analyses_are_freed():
    class Stop(Exception):
        pass

    generator = random.Random(3)

    def stop_at(count):
        left = [count]

        def progress(line):
            left[0] -= 1
            if left[0] < 0:
                raise Stop

        return progress

    def work():
        for text in ALL.values():
            model = morlen.parse(text)
            with pytest.raises(Stop):
                model.solve(progress=stop_at(generator.randrange(8)))

    assert_flat(work, warmup=20, rounds=300, kilobytes=1024)
