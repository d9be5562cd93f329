"""Arrays cannot be written to, whatever flags are set, and keep their values alive."""

import gc
import pickle
import weakref

import numpy as np
import pytest
from small_models import ALL, SHELLS, SOLID, write_cases

import morlen


def data_of_model(model):
    yield from (model.nodes.numbers, model.nodes.coordinates)
    for elements in (model.beams, model.shells, model.solids):
        yield from (elements.numbers, elements.nodes, elements.materials)


def values_of(results):
    yield from (results.displacements, results.reactions)
    yield from (results.beams.numbers, results.shells.numbers, results.solids.numbers)
    yield from (results.beams.forces(), results.beams.displacements())
    yield from (results.shells.forces, results.solids.stress)
    if results._core.stress_output() != "local":
        yield results.shells.main_forces


def values_of_extremes(extremes):
    yield from (extremes.numbers, extremes.minimum, extremes.maximum)
    yield from (extremes.minimum_by, extremes.maximum_by, extremes.minimum_name, extremes.maximum_name)


def extremes_of(envelope):
    kinds = ("displacements", "reactions", "beams", "shells", "solids")
    return [getattr(envelope, kind) for kind in kinds]


def all_arrays(text, folder):
    """All arrays that a model, its results and its load cases have, also those out of a pickle."""
    for model in (m := morlen.parse(text), pickle.loads(pickle.dumps(m))):
        yield from data_of_model(model)
        for part in (model.nodes, model.beams, model.shells, model.solids):
            yield from (a for a in vars(pickle.loads(pickle.dumps(part))).values())
    for results in (r := m.solve(), pickle.loads(pickle.dumps(r))):
        yield from values_of(results)
        yield from data_of_model(results.model)
        for part in (results.beams, results.shells, results.solids):
            yield pickle.loads(pickle.dumps(part)).numbers
    if not hasattr(morlen._core, "read_cases"):
        return
    solved = morlen.read_cases(write_cases(folder, text)).solve()
    yield from values_of(solved["B"])
    for extremes in extremes_of(solved.envelope("E")):
        yield from values_of_extremes(extremes)
        yield from values_of_extremes(pickle.loads(pickle.dumps(extremes)))


def bases_of(array):
    """The array and all that it is a view of."""
    while array is not None:
        yield array
        array = getattr(array, "base", None)


MODELS = {**ALL, "main forces": SHELLS + "MainAndLocalStresses\n"}


@pytest.mark.parametrize("name", MODELS)
def test_nothing_makes_an_array_writable(name, tmp_path):
    count = 0
    for array in all_arrays(MODELS[name], tmp_path):
        count += 1
        before = array.copy()
        for owner in bases_of(array):
            for view in (owner, owner[:] if isinstance(owner, np.ndarray) else owner):
                if not isinstance(view, np.ndarray):
                    with pytest.raises((TypeError, BufferError, ValueError)):
                        memoryview(view)[:1] = b"x"
                    continue
                assert not view.flags.writeable
                with pytest.raises(ValueError, match="WRITEABLE"):
                    view.setflags(write=True)
                with pytest.raises(ValueError, match="WRITEABLE"):
                    view.flags.writeable = True
                with pytest.raises(ValueError, match="read-only"):
                    view[...] = 1
                assert not view.view().flags.writeable and not view.T.flags.writeable
                assert not np.lib.stride_tricks.as_strided(view).flags.writeable
                if view.dtype != object:
                    assert memoryview(view).readonly
        np.testing.assert_array_equal(array, before)
        with pytest.raises(ValueError):
            array.resize(array.size + 1)
        copy = array.copy()
        copy[...] = copy  # a copy is the user's
    assert count > 60


@pytest.mark.parametrize("name", MODELS)
def test_arrays_outlive_what_they_come_from(name, tmp_path):
    arrays = list(all_arrays(MODELS[name], tmp_path))
    copies = [array.copy() for array in arrays]
    gc.collect()
    others = [np.full(array.shape, 1.0) for array in arrays]  # over memory that is free
    for array, copy in zip(arrays, copies):
        np.testing.assert_array_equal(array, copy)
    part = [array[-1:] for array in arrays]
    expected = [copy[-1:] for copy in copies]
    del arrays, array, others
    gc.collect()
    others = [np.full(copy.shape, 1.0) for copy in copies]
    for array, copy in zip(part, expected):
        np.testing.assert_array_equal(array, copy)
    assert len(others) == len(part)


def test_arrays_do_not_keep_the_results_alive():
    r = morlen.parse(SOLID).solve()
    arrays = [*values_of(r), *data_of_model(r.model)]
    gone = weakref.ref(r)
    del r
    gc.collect()
    assert gone() is None and len(arrays) > 10


def test_arrays_are_freed():
    """Values go with their last array: a million of them, many times."""
    forces = morlen.parse(ALL["cantilever"]).solve().beams.forces
    with open("/proc/self/status", encoding="ascii") as file:
        before = next(int(line.split()[1]) for line in file if line.startswith("VmRSS"))
    for _ in range(40):
        view = forces(200_000)[0, ::2]
    assert view.shape == (100_000, 6)
    with open("/proc/self/status", encoding="ascii") as file:
        after = next(int(line.split()[1]) for line in file if line.startswith("VmRSS"))
    assert after - before < 40_000  # kilobytes: some arrays of 9,600, not all 40
