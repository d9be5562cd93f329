"""Drawings of deformed shapes."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any

import numpy as np

from ._typing import Floats

if TYPE_CHECKING:
    from matplotlib.axes import Axes

    from ._results import Results

_EDGES = {3: [(0, 1), (1, 2), (2, 0)], 4: [(0, 1), (1, 2), (2, 0), (0, 3), (1, 3), (2, 3)]}


def plot(results: Results, ax: Axes | None, scale: float | None, **options: Any) -> Axes:
    """See Results.plot."""
    import matplotlib.pyplot as plt
    from matplotlib.collections import LineCollection
    from mpl_toolkits.mplot3d.art3d import Line3DCollection

    plane = results.model.kind == "2d"
    if ax is None:
        ax = plt.figure().add_subplot(projection=None if plane else "3d")
    before, moves = _lines(results)
    places = results.model.nodes.coordinates
    if scale is None:
        scale = _scale(places, results)
    width = 2 if plane else 3
    collection = LineCollection if plane else Line3DCollection
    after = before + scale * moves
    shape = {"color": "tab:blue", "linewidth": 1.2, **options}
    for lines, look in ((before, {"color": "0.75", "linewidth": 0.8}), (after, shape)):
        drawn = collection(lines[..., :width], **look)
        if plane:
            ax.add_collection(drawn)
        else:
            ax.add_collection3d(drawn)
    _set_limits(ax, np.concatenate([before, after]).reshape(-1, 3), width)
    ax.set_title(f"displacements × {scale:.3g}")
    unit = results.units.length
    ax.set_xlabel(f"x [{unit}]" if unit else "x")
    ax.set_ylabel(f"y [{unit}]" if unit else "y")
    return ax


def _lines(results: Results) -> tuple[Floats, Floats]:
    """Polylines (lines, points, 3) and the displacements of their points.

    A beam is one line, a shell or solid one for each edge.
    """
    model = results.model
    points = 21 if len(model.beams) else 2
    t = np.linspace(0.0, 1.0, points)[None, :, None]
    before, moves = [], []
    if len(model.beams):
        ends = model.nodes.coordinates[model.beams.nodes - 1]
        before.append((1 - t) * ends[:, None, 0] + t * ends[:, None, 1])
        along = results.beams.displacements(points)
        moves.append(np.concatenate([along, np.zeros((*along.shape[:2], 3 - along.shape[2]))], axis=2))
    for elements, corners in ((model.shells, 3), (model.solids, 4)):
        if not len(elements):
            continue
        of = elements.nodes[:, :corners]
        pairs = np.unique(np.sort(np.concatenate([of[:, edge] for edge in _EDGES[corners]]), axis=1), axis=0)
        for values, into in ((model.nodes.coordinates, before), (_translations(results), moves)):
            ends = values[pairs - 1]
            into.append((1 - t) * ends[:, None, 0] + t * ends[:, None, 1])
    return np.concatenate(before), np.concatenate(moves)


def _translations(results: Results) -> Floats:
    return results.displacements[:, :3]


def _scale(places: Floats, results: Results) -> float:
    """Makes the largest displacement a tenth of the model; a round number."""
    width = 2 if results.model.kind == "2d" else 3
    moves = results.displacements[:, :width]
    largest = float(np.sqrt((moves**2).sum(axis=1)).max())
    size = float(np.ptp(places, axis=0).max())
    if not largest > 0.0 or not size > 0.0:
        return 1.0
    exact = 0.1 * size / largest
    power = 10.0 ** np.floor(np.log10(exact))
    return float(power * max(digit for digit in (1, 2, 5) if digit * power <= exact))


def _set_limits(ax: Axes, points: Floats, width: int) -> None:
    low, high = points.min(axis=0), points.max(axis=0)
    margin = 0.05 * float((high - low).max()) or 1.0
    ax.set_xlim(low[0] - margin, high[0] + margin)
    ax.set_ylim(low[1] - margin, high[1] + margin)
    if width == 2:
        ax.set_aspect("equal")
        return
    ax.set_zlim(low[2] - margin, high[2] + margin)
    ax.set_box_aspect(high - low + 2 * margin)
