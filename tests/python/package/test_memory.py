"""Errors and interruptions leave nothing behind: the memory of the process stays flat."""

import gc
import random

import pytest
from broken import broken_texts
from small_models import ALL

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


@pytest.mark.filterwarnings("ignore")
def test_2000_errors():
    texts = list(broken_texts(2000, seed=5))
    # In the first rounds, pools and allocator grow to what the largest of these models needs.
    for _ in range(3):
        assert try_all(texts) > 1500
    gc.collect()
    before = resident()
    for _ in range(5):
        try_all(texts)
    gc.collect()
    # A leak of 200 bytes for each of these 10,000 models would be 2 MB; the allocator alone moves
    # by half of one.
    assert resident() - before < 1500


def test_solutions_are_freed():
    def work():
        for text in ALL.values():
            results = morlen.parse(text).solve()
            results.beams.forces()
            results.displacements.copy()

    for _ in range(20):
        work()
    gc.collect()
    before = resident()
    for _ in range(300):
        work()
    gc.collect()
    assert resident() - before < 1024


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

    for _ in range(20):
        work()
    gc.collect()
    before = resident()
    for _ in range(300):
        work()
    gc.collect()
    assert resident() - before < 1024
