"""Load cases, combinations and envelopes."""

from __future__ import annotations

import os
from collections.abc import Callable, Iterator, Mapping
from dataclasses import dataclass
from functools import cached_property

from . import _core
from ._files import read_bytes
from ._results import Results
from ._typing import Floats, Ints


@dataclass(frozen=True, eq=False)
class Extremes:
    """The smallest and the largest values of an envelope: (n, points, components), each by itself."""

    numbers: Ints
    """(n) numbers of the nodes or elements."""
    components: tuple[str, ...]
    minimum: Floats
    maximum: Floats
    minimum_by: Ints
    """The combination that governs, as a place in `Envelope.names`; -1 where there is no value."""
    maximum_by: Ints

    def __len__(self) -> int:
        return len(self.numbers)


class Envelope:
    """The extremes over some cases and combinations.

    Derived values, such as `u` or the design moments `mx+`, are computed from the combined ones.
    """

    def __init__(self, core: _core.CaseResults, name: str, names: tuple[str, ...], plane: bool) -> None:
        self._core = core
        self._plane = plane
        self.name = name
        self.names = names

    def _extremes(self, kind: str, components: tuple[str, ...]) -> Extremes:
        numbers, low, high, low_by, high_by = self._core.envelope(self.name, kind)
        return Extremes(numbers, components[: low.shape[2]], low, high, low_by, high_by)

    def _of_nodes(self, space: tuple[str, ...], plane: tuple[str, ...]) -> tuple[str, ...]:
        count = self._core.components()
        if count == 6:
            return space
        return plane if self._plane and not self._core.has_solids() else space[:3]

    @cached_property
    def displacements(self) -> Extremes:
        """(nodes, 1, 7) displacements, rotations and u, the length of the displacement."""
        space = ("ux", "uy", "uz", "rx", "ry", "rz")
        return self._extremes("displacements", (*self._of_nodes(space, ("ux", "uy", "rz")), "u"))

    @cached_property
    def reactions(self) -> Extremes:
        """(nodes with supports, 1, 6) reactions."""
        space = ("Fx", "Fy", "Fz", "Mx", "My", "Mz")
        return self._extremes("reactions", self._of_nodes(space, ("Fx", "Fy", "Mz")))

    @cached_property
    def beams(self) -> Extremes:
        """(beams, division points, 6) N, Vy, Vz, T, My, Mz."""
        return self._extremes("beams", ("N", "Vy", "Vz", "T", "My", "Mz"))

    @cached_property
    def shells(self) -> Extremes:
        """(shells, points, 16) local forces, principal ones and design moments."""
        local = ("Nx", "Ny", "Nxy", "Mx", "My", "Mxy", "Qx", "Qy")
        derived = ("N1", "N2", "M1", "M2", "mx+", "my+", "mx-", "my-")
        return self._extremes("shells", local + derived)

    @cached_property
    def solids(self) -> Extremes:
        """(nodes, 1, 10) stresses, von Mises, and principal stresses, descending."""
        names = ("Sx", "Sy", "Sz", "Txy", "Tyz", "Txz", "von_Mises", "S1", "S2", "S3")
        return self._extremes("solids", names)

    def __repr__(self) -> str:
        return f"<morlen.Envelope {self.name!r} over {len(self.names)}>"


class SolvedCases(Mapping[str, Results]):
    """The results of cases and combinations by name."""

    def __init__(self, core: _core.CaseResults, cases: Cases) -> None:
        self._core = core
        self._cases = cases

    def __getitem__(self, name: str) -> Results:
        return Results(self._core.results(name))

    def __iter__(self) -> Iterator[str]:
        return iter(self._cases.combinations)

    def __len__(self) -> int:
        return len(self._cases.combinations)

    def envelope(self, name: str) -> Envelope:
        """An envelope of the file."""
        return Envelope(self._core, name, self._cases.envelopes[name], self._core.is_plane())

    @property
    def solver(self) -> str:
        """The solver that was used."""
        return self._core.solver()

    def __repr__(self) -> str:
        return f"<morlen.SolvedCases of {self._cases!r}, solver {self.solver}>"


class Cases:
    """A file of load cases with its model and its loads, made by `read_cases`."""

    def __init__(self, path: str, text: bytes) -> None:
        self._path = path
        self._text = text
        self._core: _core.Cases | None = _core.read_cases(path, text)
        names, titles, combinations, envelopes = self._core.content()
        self.names: tuple[str, ...] = tuple(names)
        """The names of the load cases."""
        self.titles: dict[str, str] = dict(zip(names, titles))
        self.combinations: dict[str, dict[str, float]] = dict(combinations)
        """Cases and combinations by name, each with the factors of its cases."""
        self.envelopes: dict[str, tuple[str, ...]] = {name: tuple(of) for name, of in envelopes}
        """Envelopes by name, each with the names of its cases and combinations."""

    def solve(
        self, solver: str | None = None, progress: Callable[[str], object] | None = None
    ) -> SolvedCases:
        """Solves all load cases with one factorisation; as Model.solve.

        A second call reads the files that the cases name again.
        """
        core, self._core = self._core, None
        return SolvedCases((core or _core.read_cases(self._path, self._text)).solve(solver, progress), self)

    def __repr__(self) -> str:
        others = len(self.combinations) - len(self.names)
        return (
            f"<morlen.Cases: {len(self.names)} cases, {others} combinations, {len(self.envelopes)} envelopes>"
        )


def read_cases(path: str | os.PathLike[str]) -> Cases:
    """Reads a file of load cases, combinations and envelopes, and all files that it names.

    Raises Error for the first error, OSError without a file.
    """
    if not hasattr(_core, "read_cases"):
        raise NotImplementedError("this package has been built without load cases")
    return Cases(os.fspath(path), read_bytes(path))
