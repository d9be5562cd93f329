"""Ten models, each in all forms: closed forms, and the same displacements from every form."""

import numpy as np
import pytest
from gmsh_models import FORMS, MODELS, make_files, map_text
from gmsh_runs import NEEDS_GMSH
from solved import coordinates, solve

pytestmark = NEEDS_GMSH


@pytest.fixture(scope="module", params=MODELS, ids=lambda model: model.name.replace(" ", "-"))
def files(request, tmp_path_factory):
    """A model, its files by their forms, and what has been made of them: coordinates and results."""
    return request.param, make_files(request.param, tmp_path_factory.mktemp("gmsh")), {}


@pytest.fixture
def solved(files, imported, build, tmp_path):
    """Imports and solves a model in one form; gives coordinates and results. Each form once for all tests."""
    model, paths, made = files

    def make(form):
        if form not in made:
            (tmp_path / "mesh.map").write_text(map_text(model, form))
            status, out, err = imported(paths[form], "mesh.map", "-o", "model.dat")
            assert (status, out) == (0, "wrote model.dat\n"), err
            xyz = coordinates((tmp_path / "model.dat").read_text())
            made[form] = xyz, solve(build, tmp_path / "model.dat")
        return made[form]

    return make


@pytest.mark.parametrize("form", FORMS)
def test_closed_forms(files, form, solved):
    xyz, results = solved(form)
    files[0].check(results, xyz)


def test_same_results(files, solved):
    first = None
    for form in files[1]:
        xyz, results = solved(form)
        moved = results.displacements
        order = np.lexsort(np.round(xyz, 4).T + 0.0)
        if first is None:
            first = xyz[order], moved[order]
            continue
        # Six digits of the results, and of the coordinates in .inp files.
        np.testing.assert_allclose(xyz[order], first[0], atol=1e-5 * np.abs(first[0]).max())
        np.testing.assert_allclose(moved[order], first[1], atol=1e-4 * np.abs(first[1]).max())
