"""Load cases, combinations and envelopes."""

from __future__ import annotations

import os
from collections.abc import Callable, Iterator, Mapping
from dataclasses import dataclass, fields
from functools import cached_property
from typing import Any

import numpy as np

from . import _core
from ._files import encoded, name_of, read_bytes
from ._fixed import Fixed, ReadOnlyArrays
from ._model import solution_arguments
from ._results import Results
from ._typing import Floats, Ints, Texts


@dataclass(frozen=True, eq=False)
class Extremes(ReadOnlyArrays):
    """The smallest and the largest values of an envelope: (n, points, components), each by itself."""

    numbers: Ints
    """(n) numbers of the nodes or elements."""
    components: tuple[str, ...]
    minimum: Floats
    maximum: Floats
    minimum_by: Ints
    """The combination that governs, as a place in `names`.

    -1 where there is no value, such as Vz of a beam in the plane: as an index it would give the last
    name. `minimum_name` has no such trap.
    """
    maximum_by: Ints
    names: tuple[str, ...]
    """The cases and combinations of the envelope."""

    @cached_property
    def minimum_name(self) -> Texts:
        """The name of the combination that governs; "" where there is no value."""
        return self._names_at(self.minimum_by)

    @cached_property
    def maximum_name(self) -> Texts:
        """The name of the combination that governs; "" where there is no value."""
        return self._names_at(self.maximum_by)

    def _names_at(self, places: Ints) -> Texts:
        names: Texts = np.array((*self.names, ""), dtype=object)[places]  # -1 is the last
        return _core.read_only(names)

    def __len__(self) -> int:
        return len(self.numbers)

    def __getstate__(self) -> dict[str, Any]:
        return {field.name: getattr(self, field.name) for field in fields(self)}


class Envelope(Fixed):
    """The extremes over some cases and combinations. They can be pickled.

    Derived values, such as `u` or the design moments `mx+`, are computed from the combined ones.
    """

    name: str
    names: tuple[str, ...]
    """The cases and combinations of the envelope."""

    def __init__(self, core: _core.CaseResults, name: str, names: tuple[str, ...]) -> None:
        super().__init__(name=name, names=names)
        self._core = core

    def __getstate__(self) -> tuple[_core.CaseResults, str, tuple[str, ...]]:
        return self._core, self.name, self.names

    def __setstate__(self, state: tuple[_core.CaseResults, str, tuple[str, ...]]) -> None:
        Envelope.__init__(self, *state)

    def _extremes(self, kind: str, components: tuple[str, ...]) -> Extremes:
        numbers, low, high, low_by, high_by = self._core.envelope(self.name, kind)
        return Extremes(numbers, components[: low.shape[2]], low, high, low_by, high_by, self.names)

    def _of_nodes(self, space: tuple[str, ...], plane: tuple[str, ...]) -> tuple[str, ...]:
        count = self._core.components()
        if count == 6:
            return space
        return plane if self._core.is_plane() and not self._core.has_solids() else space[:3]

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


class SolvedCases(Fixed, Mapping[str, Results]):
    """The results of cases and combinations by name. They can be pickled."""

    cases: Cases
    """The cases that were solved."""

    def __init__(self, core: _core.CaseResults, cases: Cases) -> None:
        super().__init__(cases=cases)
        self._core = core

    def __getitem__(self, name: str) -> Results:
        if name not in self.cases.combinations:
            raise KeyError(f"no case or combination {name!r}")
        return Results(self._core.results(name))

    def __iter__(self) -> Iterator[str]:
        return iter(self.cases.combinations)

    def __len__(self) -> int:
        return len(self.cases.combinations)

    def envelope(self, name: str) -> Envelope:
        """An envelope of the file."""
        if name not in self.cases.envelopes:
            raise KeyError(f"no envelope {name!r}")
        return Envelope(self._core, name, self.cases.envelopes[name])

    @property
    def solver(self) -> str:
        """The solver that was used."""
        return self._core.solver()

    def __repr__(self) -> str:
        return f"<morlen.SolvedCases of {self.cases!r}, solver {self.solver}>"


class Cases(Fixed):
    """A file of load cases with its model and its loads, made by `read_cases`."""

    names: tuple[str, ...]
    """The names of the load cases."""
    titles: dict[str, str]
    combinations: dict[str, dict[str, float]]
    """Cases and combinations by name, each with the factors of its cases."""
    envelopes: dict[str, tuple[str, ...]]
    """Envelopes by name, each with the names of its cases and combinations."""

    def __init__(self, path: str, text: bytes) -> None:
        core = _core.read_cases(encoded(path), text)
        names, titles, combinations, envelopes = core.content()
        super().__init__(
            names=tuple(names),
            titles=dict(zip(names, titles)),
            combinations=dict(combinations),
            envelopes={name: tuple(of) for name, of in envelopes},
        )
        self._path = os.path.abspath(path)
        self._text = text
        self._core: _core.Cases | None = core

    def solve(
        self, solver: str | None = None, progress: Callable[[str], object] | None = None
    ) -> SolvedCases:
        """Solves all load cases with one factorisation; as Model.solve.

        A second call reads the files that the cases name again.
        """
        arguments = solution_arguments(solver, progress)
        core, self._core = self._core, None
        core = core or _core.read_cases(encoded(self._path), self._text)
        return SolvedCases(core.solve(*arguments), self)

    def __getstate__(self) -> dict[str, Any]:
        return vars(self) | {"_core": None}  # the files are read again for a solution

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
    name = name_of(path)
    return Cases(name, read_bytes(name))
