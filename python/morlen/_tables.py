"""Results as tables of pandas and meshes of meshio."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any

import numpy as np
import numpy.typing as npt

from ._typing import Floats, Ints

if TYPE_CHECKING:
    import meshio
    import pandas

    from ._model import Elements
    from ._results import Results

_CELLS = {2: "line", 3: "triangle", 6: "triangle6", 4: "tetra", 10: "tetra10"}


def _names(results: Results) -> tuple[list[str], list[str]]:
    """The components of displacements and of reactions."""
    count = results.displacements.shape[1]
    if count == 6:
        return ["ux", "uy", "uz", "rx", "ry", "rz"], ["Fx", "Fy", "Fz", "Mx", "My", "Mz"]
    if results.model.kind == "2d" and not len(results.solids):
        return ["ux", "uy", "rz"], ["Fx", "Fy", "Mz"]
    return ["ux", "uy", "uz"], ["Fx", "Fy", "Fz"]


def to_pandas(results: Results) -> dict[str, pandas.DataFrame]:
    """See Results.to_pandas."""
    import pandas as pd

    nodes = pd.Index(results.model.nodes.numbers, name="node")
    displacements, reactions = _names(results)
    tables = {
        "displacements": pd.DataFrame(results.displacements, nodes, displacements),
        "reactions": pd.DataFrame(results.reactions, nodes, reactions),
    }
    if len(results.beams):
        forces = results.beams.forces()
        tables["beams"] = _by_point(forces, results.beams.numbers, "beam", results.beams.components)
    if len(results.shells):
        forces = results.shells.forces
        names = list(results.shells.components)
        tables["shells"] = _by_point(forces, results.shells.numbers, "shell", names)
    if len(results.solids):
        tables["stress"] = pd.DataFrame(results.solids.stress, nodes, list(results.solids.components))
    return tables


def _by_point(
    values: Floats, numbers: Ints, name: str, components: tuple[str, ...] | list[str]
) -> pandas.DataFrame:
    import pandas as pd

    count, points, width = values.shape
    index = pd.MultiIndex.from_arrays(
        [np.repeat(numbers, points), np.tile(np.arange(points), count)], names=[name, "point"]
    )
    return pd.DataFrame(values.reshape(count * points, width), index, list(components))


def to_meshio(results: Results) -> meshio.Mesh:
    """See Results.to_meshio."""
    import meshio

    model = results.model
    count = 3 if results.displacements.shape[1] == 6 else len(_names(results)[0])
    point_data: dict[str, npt.NDArray[np.float64]] = {
        "displacements": _vectors(results.displacements, count, model.kind),
        "reactions": _vectors(results.reactions, count, model.kind),
    }
    if len(results.solids):
        for k, name in enumerate(results.solids.components):
            point_data[name] = results.solids.stress[:, k]
    cells: list[tuple[str, Ints]] = []
    numbers: list[Ints] = []
    shells: list[Floats] = []
    for elements in (model.beams, model.shells, model.solids):
        for width, rows in _by_width(elements):
            cells.append((_CELLS[width], elements.nodes[rows, :width] - 1))
            numbers.append(elements.numbers[rows])
            of_shells = elements is model.shells
            shells.append(
                np.nanmean(results.shells.forces[rows], axis=1) if of_shells else np.zeros((len(rows), 8))
            )
    cell_data: dict[str, list[npt.NDArray[Any]]] = {"number": list(numbers)}
    if len(results.shells):
        for k, name in enumerate(results.shells.components):
            if name != "0":
                cell_data[name] = [block[:, k] for block in shells]
    return meshio.Mesh(model.nodes.coordinates, cells, point_data, cell_data)


def _vectors(values: Floats, count: int, kind: str) -> Floats:
    """Displacements or forces along x, y, z."""
    translations = 2 if kind == "2d" and values.shape[1] == 3 else 3
    vectors = np.zeros((len(values), 3))
    vectors[:, :translations] = values[:, : min(count, translations)]
    return vectors


def _by_width(elements: Elements) -> list[tuple[int, npt.NDArray[np.intp]]]:
    """The numbers of nodes that the elements have, each with the rows of its elements."""
    widths = (elements.nodes > 0).sum(axis=1) if len(elements) else np.empty(0, dtype=int)
    return [(int(width), np.flatnonzero(widths == width)) for width in np.unique(widths)]
