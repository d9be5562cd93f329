"""The results of an analysis."""

from __future__ import annotations

import operator
import os
from functools import cached_property
from typing import TYPE_CHECKING, Any

from . import _core
from ._files import encoded, name_of
from ._fixed import Fixed, ReadOnlyArrays
from ._typing import Floats, Ints

if TYPE_CHECKING:
    import meshio
    import pandas
    from matplotlib.axes import Axes

    from ._model import Model, Units

_LOCAL = ("Nx", "Ny", "Nxy", "Mx", "My", "Mxy", "Qx", "Qy")
_MAIN = ("N11", "N22", "0", "M11", "M22", "0", "Qm1", "Qm2")


# The most bytes of an array of results along beams: more is a slip, and would fill the memory.
_MOST_BYTES = 2**32


def _point_count(points: int, least: int, beams: int, width: int) -> int:
    """The number of points as an int. beams, width: the other sides of the array."""
    try:
        count = operator.index(points)
    except TypeError:
        raise TypeError(f"points is a whole number, not {points!r}") from None
    if count < least:
        raise ValueError(f"points is at least {least}, not {count}")
    most = _MOST_BYTES // (8 * width * max(beams, 1))
    if count > most:
        of_beams = f"{beams} beam" + ("" if beams == 1 else "s")
        raise ValueError(f"points is at most {most} for {of_beams}, an array of 4 GiB, not {count}")
    return count


class BeamResults(ReadOnlyArrays, Fixed):
    """The results of the beams, in the order of `numbers`."""

    components = ("N", "Vy", "Vz", "T", "My", "Mz")
    numbers: Ints
    """(beams) their numbers in the problem file."""

    def __init__(self, core: _core.Solved, numbers: Ints) -> None:
        super().__init__(numbers=numbers)
        self._core = core

    def forces(self, points: int = 21) -> Floats:
        """(beams, points, 6) N, Vy, Vz [force], T, My, Mz [moment] in local axes.

        The points have equal distances and begin and end at the ends of the beam; a single point is
        its middle. In the plane Vz, T and My are 0. Loads on the span count. The array has 4 GiB at
        most.
        """
        return self._core.beam_forces(_point_count(points, 1, len(self), 6))

    def displacements(self, points: int = 21) -> Floats:
        """(beams, points, 3) displacements along global x, y, z [length]; 2 in the plane."""
        return self._core.beam_displacements(_point_count(points, 2, len(self), 3))

    def __len__(self) -> int:
        return len(self.numbers)


class ShellResults(ReadOnlyArrays, Fixed):
    """The results of the shells, in the order of `numbers`."""

    numbers: Ints
    """(shells) their numbers in the problem file."""

    def __init__(self, core: _core.Solved, numbers: Ints) -> None:
        super().__init__(numbers=numbers)
        self._core = core

    @property
    def components(self) -> tuple[str, ...]:
        """The components of `forces`: the local ones, unless the file asks for the main ones only."""
        return _MAIN if self._core.stress_output() == "main" else _LOCAL

    @cached_property
    def forces(self) -> Floats:
        """(shells, points, 8) Nx, Ny, Nxy [force/length], Mx, My, Mxy [moment/length], Qx, Qy.

        In local axes, at the integration points: one of a shell of three nodes, three of one of six
        nodes. Where both occur, points that a shell does not have are not numbers.
        """
        return self._core.shell_forces(False)

    @cached_property
    def main_forces(self) -> Floats:
        """(shells, points, 8) principal values N11, N22, 0, M11, M22, 0, Qm1, Qm2.

        Only where the problem file asks for them (`StressOutput`).
        """
        if self._core.stress_output() == "local":
            raise ValueError("the model asks for local results only")
        return self._core.shell_forces(True)

    def __len__(self) -> int:
        return len(self.numbers)


class SolidResults(ReadOnlyArrays, Fixed):
    """The results of the solids, at the nodes."""

    components = ("Sx", "Sy", "Sz", "Txy", "Tyz", "Txz")
    numbers: Ints
    """(solids) their numbers in the problem file."""

    def __init__(self, core: _core.Solved, numbers: Ints) -> None:
        super().__init__(numbers=numbers)
        self._core = core

    @cached_property
    def stress(self) -> Floats:
        """(nodes, 6) Sx, Sy, Sz, Txy, Tyz, Txz [pressure] in global axes; no rows without solids."""
        return self._core.solid_stress()

    def __len__(self) -> int:
        return len(self.numbers)


class Results(Fixed):
    """The results of an analysis for one load case. They can be pickled."""

    def __init__(self, core: _core.Solved) -> None:
        self._core = core

    @cached_property
    def model(self) -> Model:
        """The model as it was solved; a copy."""
        from ._model import Model

        return Model(self._core.model())

    @property
    def units(self) -> Units:
        """The units of all values."""
        return self.model.units

    @cached_property
    def displacements(self) -> Floats:
        """(nodes, 6) displacements along x, y, z [length], rotations [radians]; rows as the nodes.

        (nodes, 3) in the plane, x, y and the rotation, and of solids, x, y, z. Global axes.
        """
        return self._core.displacements()

    @cached_property
    def reactions(self) -> Floats:
        """(nodes, 6) forces along x, y, z and moments about them; 0 where no support carries.

        (nodes, 3) in the plane and of solids, as `displacements`. Global axes.
        """
        return self._core.reactions()

    @cached_property
    def beams(self) -> BeamResults:
        """Forces and displacements along the beams."""
        return BeamResults(self._core, self.model.beams.numbers)

    @cached_property
    def shells(self) -> ShellResults:
        """Forces and moments of the shells."""
        return ShellResults(self._core, self.model.shells.numbers)

    @cached_property
    def solids(self) -> SolidResults:
        """Stresses of the solids."""
        return SolidResults(self._core, self.model.solids.numbers)

    @property
    def solver(self) -> str:
        """The solver that was used."""
        return self._core.solver()

    @property
    def residual(self) -> float:
        """Loads that the forces of the elements miss, relative to the loads."""
        return self._core.residual()

    @property
    def error_estimate(self) -> float:
        """The estimated error of the displacements, relative to them."""
        return self._core.error()

    def write(
        self,
        *,
        text: str | os.PathLike[str] | None = None,
        post: str | os.PathLike[str] | None = None,
        mesh: str | os.PathLike[str] | None = None,
        vtu: str | os.PathLike[str] | None = None,
        report: str | os.PathLike[str] | None = None,
    ) -> None:
        """Writes files: all of them, or none and all are as before.

        text, post, mesh: as of `morlen`; vtu: as of `morlen-export`; report: as of `morlen-report`.
        The mesh file is written together with `post`. Problem files, files of load cases and all
        files that the model was read from are refused.
        """
        paths = (text, post, mesh, vtu, report)
        self._core.write(*(None if path is None else encoded(name_of(path)) for path in paths))

    def to_pandas(self) -> dict[str, pandas.DataFrame]:
        """Tables by name: displacements and reactions by node, beams by beam and point, shells by
        shell and point, stress by node. Needs pandas."""
        from ._tables import to_pandas

        return to_pandas(self)

    def to_meshio(self) -> meshio.Mesh:
        """The model with displacements, reactions and results as data of its nodes and elements.
        Needs meshio."""
        from ._tables import to_meshio

        return to_meshio(self)

    def plot(self, ax: Axes | None = None, scale: float | None = None, **options: Any) -> Axes:
        """Draws the model and its deformed shape, and returns the axes. Needs matplotlib.

        scale: of the displacements; None makes the largest a tenth of the model. options: of the
        lines of the deformed shape.
        """
        from ._plot import plot

        return plot(self, ax, scale, **options)

    def __getstate__(self) -> _core.Solved:
        return self._core

    def __setstate__(self, state: _core.Solved) -> None:
        self._core = state

    def __repr__(self) -> str:
        return f"<morlen.Results of {self.model!r}, solver {self.solver}>"
