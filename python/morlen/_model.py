"""Models: reading, their data, their materials, and the analysis."""

from __future__ import annotations

import operator
import os
from collections.abc import Callable, Iterator, Mapping
from dataclasses import dataclass
from functools import cached_property
from typing import Literal, NamedTuple

from . import _core
from ._core import Material
from ._error import Error
from ._files import encoded, name_of, read_bytes, to_bytes
from ._fixed import Fixed, ReadOnlyArrays
from ._results import Results
from ._typing import Floats, Ints

__all__ = ["Elements", "Material", "Materials", "Model", "Nodes", "Units", "parse", "read"]

_BEAM, _SHELL, _SOLID = 1, 2, 4


class Units(NamedTuple):
    """The names of the units of the results; empty where the problem file does not name them."""

    force: str
    length: str
    pressure: str

    @property
    def moment(self) -> str:
        """Such as "kN*m"; empty without names."""
        return f"{self.force}*{self.length}" if self.force else ""


@dataclass(frozen=True, eq=False)
class Nodes(ReadOnlyArrays):
    """The nodes of a model, in the order of all arrays with a row for each node."""

    numbers: Ints
    """(n) numbers in the problem file."""
    coordinates: Floats
    """(n, 3) in the unit of length; z is 0 in the plane."""

    def __len__(self) -> int:
        return len(self.numbers)


@dataclass(frozen=True, eq=False)
class Elements(ReadOnlyArrays):
    """Elements of one kind, in the order of all arrays with a row for each of them."""

    numbers: Ints
    """(n) numbers in the problem file."""
    nodes: Ints
    """(n, k) numbers of their nodes; 0 beyond those of an element that has fewer than others."""
    materials: Ints
    """(n) numbers of their materials."""

    def __len__(self) -> int:
        return len(self.numbers)


class Materials(Fixed, Mapping[int, Material]):
    """The materials of a model by their numbers, as live objects."""

    def __init__(self, core: _core.Model) -> None:
        self._core = core

    def __getitem__(self, number: int) -> Material:
        try:
            return self._core.material(operator.index(number))
        except (KeyError, TypeError, OverflowError):
            raise KeyError(f"no material {number!r}; the model has {self._all()}") from None

    def _all(self) -> str:
        numbers = [str(number) for number in self]
        listed = ", ".join(numbers[:10]) + (", ..." if len(numbers) > 10 else "")
        return f"the material{'s' if len(numbers) > 1 else ''} {listed}" if numbers else "none"

    def __iter__(self) -> Iterator[int]:
        return iter(self._core.material_numbers())

    def __len__(self) -> int:
        return len(self._core.material_numbers())

    def __repr__(self) -> str:
        return f"<materials {', '.join(map(str, self))}>"


class Model(Fixed):
    """A model, made by `read`, `parse` or `Builder.model`. It can be solved again and again."""

    def __init__(self, core: _core.Model) -> None:
        self._core = core

    @property
    def kind(self) -> Literal["2d", "3d"]:
        """ "2d" for a plane problem."""
        return "2d" if self._core.is_plane() else "3d"

    @property
    def solver(self) -> str:
        """The solver that the problem file asks for."""
        return self._core.solver()

    @cached_property
    def units(self) -> Units:
        """The units of all values."""
        return Units(*self._core.units())

    @cached_property
    def nodes(self) -> Nodes:
        """The nodes."""
        return Nodes(*self._core.nodes())

    @cached_property
    def beams(self) -> Elements:
        """The beams, with two nodes each."""
        return Elements(*self._core.elements(_BEAM))

    @cached_property
    def shells(self) -> Elements:
        """The shells, with three or six nodes each."""
        return Elements(*self._core.elements(_SHELL))

    @cached_property
    def solids(self) -> Elements:
        """The tetrahedra, with four or ten nodes each."""
        return Elements(*self._core.elements(_SOLID))

    @cached_property
    def materials(self) -> Materials:
        """The materials by number; changes of them count from the next `solve` on."""
        return Materials(self._core)

    def solve(self, solver: str | None = None, progress: Callable[[str], object] | None = None) -> Results:
        """Analyses the model as it is now.

        solver: "Automatic", "SkyLine", "Sparse", "Double" or "Direct"; None takes that of the
        problem file, which is "Automatic" unless the file says otherwise. progress: is called with
        each line about the progress; an exception of it ends the analysis.

        Other threads run meanwhile. Ctrl-C ends the analysis. Raises Error for a model that the
        program refuses, ValueError for an unknown solver.
        """
        return Results(self._core.solve(*solution_arguments(solver, progress)))

    def __getstate__(self) -> _core.Model:
        return self._core

    def __setstate__(self, state: _core.Model) -> None:
        self._core = state

    def __repr__(self) -> str:
        counts = [f"{len(self.nodes)} nodes"]
        for name in ("beams", "shells", "solids"):
            if count := len(getattr(self, name)):
                counts.append(f"{count} {name}")
        return f"<morlen.Model {self.kind}: {', '.join(counts)}>"


def solution_arguments(
    solver: str | None, progress: Callable[[str], object] | None
) -> tuple[str | None, Callable[[str], object] | None]:
    """The arguments of `solve`. Raises TypeError for those of other types."""
    if not (solver is None or isinstance(solver, str)):
        raise TypeError(f"solver is a name or None, not {solver!r}")
    if not (progress is None or callable(progress)):
        raise TypeError(f"progress is a function or None, not {progress!r}")
    return solver, progress


def read(path: str | os.PathLike[str]) -> Model:
    """Reads a problem file. Raises Error where the program refuses it, OSError without a file."""
    name = name_of(path)
    try:
        return Model(_core.parse(read_bytes(name), [encoded(os.path.abspath(name))]))
    except Error as error:
        if not name.endswith(".cases"):
            raise
        hint = "this is a file of load cases: morlen.read_cases reads it"
        raise Error(error.message, error.line, error.column, hint) from None


def parse(text: str | bytes) -> Model:
    """Reads the text of a problem file. Raises Error where the program refuses it."""
    return Model(_core.parse(to_bytes(text), []))
