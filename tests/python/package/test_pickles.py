"""Damaged pickles are refused: an error, never other values and never a crash."""

import pickle
import random

import pytest
from small_models import ALL, CANTILEVER, PLANE, write_cases

import morlen


def load(core, state):
    type(core).__new__(type(core)).__setstate__(state)


def damages(state, count, seed):
    """Texts that differ from a state: bits, bytes, cuts, gaps, doubled and moved parts."""
    generator = random.Random(seed)
    place = lambda: generator.randrange(len(state))  # noqa: E731
    while count:
        a, b = sorted((place(), place() + 1))
        damaged = bytearray(state)
        kind = generator.randrange(7)
        if kind == 0:
            damaged[a] ^= 1 << generator.randrange(8)
        elif kind == 1:
            damaged[a : a + 8] = generator.randbytes(min(8, len(state) - a))
        elif kind == 2:
            del damaged[a:]
        elif kind == 3:
            del damaged[a:b]
        elif kind == 4:
            damaged[a:a] = damaged[a:b]
        elif kind == 5:
            damaged[a:b] = bytes(b - a)
        else:
            damaged += generator.randbytes(generator.randrange(1, 20))
        if damaged != state:
            count -= 1
            yield bytes(damaged)


def assert_refused(core, count, seed):
    state = core.__getstate__()
    load(core, state)
    for damaged in (b"", b"x" * len(state), *damages(state, count, seed)):
        with pytest.raises(morlen.Error, match="stored"):
            load(core, damaged)


@pytest.mark.parametrize("name", ALL)
def test_models_and_results(name):
    model = morlen.parse(ALL[name])
    assert_refused(model._core, 250, seed=1)
    assert_refused(model.solve()._core, 250, seed=2)


@pytest.mark.skipif(not hasattr(morlen._core, "read_cases"), reason="built without load cases")
def test_cases(tmp_path):
    solved = morlen.read_cases(write_cases(tmp_path, CANTILEVER)).solve()
    assert_refused(solved._core, 500, seed=3)
    assert_refused(solved["B"]._core, 500, seed=4)


def test_states_of_other_classes_are_refused():
    model = morlen.parse(PLANE)
    results = model.solve()
    for core, other in ((model._core, results._core), (results._core, model._core)):
        with pytest.raises(morlen.Error, match="stored"):
            load(core, other.__getstate__())


def fnv(data):
    """FNV-1a, 64 bits."""
    value = 0xCBF29CE484222325
    for byte in data:
        value = (value ^ byte) * 0x100000001B3 % 2**64
    return value


def test_states_of_other_versions_are_refused():
    core = morlen.parse(PLANE).solve()._core
    state = core.__getstate__()

    def sealed(version):
        return state[:-8] + (fnv(state[:-8]) ^ fnv(version)).to_bytes(8, "little")

    assert sealed(morlen.__version__.encode()) == state
    for version in (b"0.0.9", b"99.0.0"):
        with pytest.raises(morlen.Error, match="stored data are damaged, or of another version"):
            load(core, sealed(version))


def test_whole_pickles_that_are_cut(tmp_path):
    whole = pickle.dumps(morlen.parse(PLANE).solve())
    for end in range(0, len(whole), 37):
        with pytest.raises((pickle.UnpicklingError, EOFError)):
            pickle.loads(whole[:end])
