"""Models from arrays, as readable problem files."""

from __future__ import annotations

import reprlib
from collections.abc import Iterable, Sequence
from typing import Any, Literal

import numpy as np
import numpy.typing as npt

from . import _core
from ._fixed import Fixed
from ._model import Model, parse
from ._typing import Floats

_KEYS = ("E Ex Ey nu nuXY nuYX G Gxy Gxz Gyz A Iy Iz J t Weight widthY widthZ Euler1 Euler2 Euler3").split()
_SETTINGS = (
    "NumOfDivisions Solver GravityDirection DoSmoothing CoplanarityAngle MainStresses "
    "MainAndLocalStresses ConvertTo6Nodes ShellFormulation"
).split()
_LOADS = {
    "local": "local_pressure_loads",
    "global": "global_pressure_loads",
    "projected": "global_projected_pressure_loads",
    "face": "face_loads",
}
_TYPES = {"beams": "Linear", "shells": "Triangle", "tetrahedra": "Tetrahedra"}

Numbers = npt.NDArray[np.int64]


def _shape_fault(what: str, kind: str, shapes: Sequence[tuple[int | str, ...]], got: object) -> ValueError:
    """An argument of the wrong shape. got: what was given, a shape for an array."""
    wanted = " or ".join(str(shape).replace("'", "") for shape in shapes)
    return ValueError(f"{what}: expected {kind} of the shape {wanted}, got {got}")


def _array(values: npt.ArrayLike, what: str, kind: str, shapes: Sequence[tuple[int | str, ...]]) -> Any:
    """The values as an array of numbers of any shape."""
    try:
        array = np.asarray(values)
    except ValueError:
        raise _shape_fault(what, kind, shapes, "rows of different lengths") from None
    try:
        return array if array.dtype.kind in "iubc" else array.astype(np.float64)
    except (TypeError, ValueError):
        raise _shape_fault(what, kind, shapes, reprlib.repr(values)) from None


def _finite(array: Any, what: str) -> Floats:
    if np.iscomplexobj(array):
        raise ValueError(f"{what}: expected real numbers, got {array.dtype}")
    real: Floats = array.astype(np.float64)
    if not np.isfinite(real).all():
        raise ValueError(f"{what}: expected finite numbers")
    return real


def _whole(array: Any, what: str) -> Numbers:
    if not array.size:
        array = array.astype(np.int64)
    if not np.issubdtype(array.dtype, np.integer):
        raise ValueError(f"{what}: expected whole numbers, got {array.dtype}")
    numbers: Numbers = array.astype(np.int64)
    return numbers


def _table(
    values: npt.ArrayLike, what: str, columns: Sequence[int], rows: int | None = None, kind: str = "numbers"
) -> Any:
    """Rows of numbers; one row counts for all `rows`."""
    shapes: list[tuple[int | str, ...]] = [("n" if rows is None else rows, count) for count in columns]
    given = _array(values, what, kind, shapes)
    table = np.atleast_2d(given)
    if rows is not None and len(table) == 1:
        table = np.repeat(table, rows, axis=0)
    if table.ndim != 2 or table.shape[1] not in columns or (rows is not None and len(table) != rows):
        got = repr(values) if isinstance(values, str) else given.shape
        raise _shape_fault(what, kind, shapes, got)
    return table


def _list(values: npt.ArrayLike, what: str, rows: int | None = None, kind: str = "numbers") -> Any:
    """Numbers; one counts for all `rows`."""
    shapes: list[tuple[int | str, ...]] = [("n" if rows is None else rows,)]
    given = _array(values, what, kind, shapes)
    numbers = np.atleast_1d(given)
    if rows is not None and numbers.shape == (1,):
        numbers = np.repeat(numbers, rows)
    if numbers.ndim != 1 or (rows is not None and len(numbers) != rows):
        raise _shape_fault(what, kind, shapes, given.shape)
    return numbers


def _floats(values: npt.ArrayLike, what: str, columns: Sequence[int], rows: int | None = None) -> Floats:
    """Finite numbers as rows; one row counts for all `rows`."""
    return _finite(_table(values, what, columns, rows), what)


def _numbers(values: npt.ArrayLike, what: str, rows: int | None = None) -> Numbers:
    """Whole numbers; one counts for all `rows`."""
    return _whole(_list(values, what, rows, "whole numbers"), what)


def _text(value: float) -> str:
    text = repr(float(value))
    return text[:-2] if text.endswith(".0") else text


def _rows(whole: Numbers, real: Floats, middle: str = "") -> str:
    table = whole if whole.ndim == 2 else whole[:, None]
    return _core.rows(table, real, middle.encode()).decode()


def _none(rows: int) -> Floats:
    return np.empty((rows, 0))


class Builder(Fixed):
    """Collects a model from arrays.

    Nodes and elements get the numbers 1, 2, ... in the order in which they are added; every method
    that adds something returns its numbers. Lists of numbers may be a single number. Values are in
    one set of units, those of `units`. What does not fit raises ValueError; whatever else is wrong
    with the model raises Error in `model`.
    """

    def __init__(self, kind: Literal["2d", "3d"] = "3d", comment: str = "") -> None:
        """kind: "2d" for plane frames, else "3d". comment: describes the model in its file."""
        if kind not in ("2d", "3d"):
            raise ValueError(f"kind: expected '2d' or '3d', got {kind!r}")
        if not isinstance(comment, str):
            raise ValueError(f"comment: expected a text, got {comment!r}")
        self._kind = kind
        self._comment = comment
        self._units: tuple[str, str, str] | None = None
        self._coordinates: list[Floats] = []
        self._elements: dict[tuple[str, int], list[Numbers]] = {}
        self._element_count = 0
        self._materials: list[dict[str, float]] = []
        self._blocks: dict[str, list[str]] = {}
        self._settings: dict[str, str] = {}
        self._solids = False

    @property
    def _dimension(self) -> int:
        return 2 if self._kind == "2d" else 3

    def units(self, force: str, length: str, pressure: str | None = None) -> None:
        """Names the units of all values, such as "kN", "m", "kPa"; they convert nothing."""
        names = (force, length, pressure or f"{force}/{length}2")
        for name in names:
            if (
                not isinstance(name, str)
                or not name
                or len(name) > 20
                or any(c.isspace() or c in "#:=" for c in name)
            ):
                raise ValueError(f"{name!r} is no name of a unit")
        self._units = names

    def nodes(self, coordinates: npt.ArrayLike) -> Numbers:
        """Adds nodes at (n, 3) places [length]; (n, 2) in the plane."""
        places = _floats(coordinates, "coordinates", (self._dimension,))
        first = sum(map(len, self._coordinates)) + 1
        self._coordinates.append(places)
        return np.arange(first, first + len(places))

    def beams(self, nodes: npt.ArrayLike, materials: npt.ArrayLike) -> Numbers:
        """Adds beams from (n, 2) numbers of nodes and (n) or one number of materials."""
        return self._add("beams", nodes, (2,), materials)

    def shells(self, nodes: npt.ArrayLike, materials: npt.ArrayLike) -> Numbers:
        """Adds shells from (n, 3) or (n, 6) numbers of nodes; corners first."""
        return self._add("shells", nodes, (3, 6), materials)

    def tetrahedra(self, nodes: npt.ArrayLike, materials: npt.ArrayLike) -> Numbers:
        """Adds solids from (n, 4) or (n, 10) numbers of nodes; corners first."""
        self._solids = True
        return self._add("tetrahedra", nodes, (4, 10), materials)

    def _add(
        self, kind: str, nodes: npt.ArrayLike, widths: Sequence[int], materials: npt.ArrayLike
    ) -> Numbers:
        table = _whole(_table(nodes, "nodes", widths, kind="whole numbers"), "nodes")
        of = _numbers(materials, "materials", len(table))
        first = self._element_count + 1
        self._element_count += len(table)
        numbers = np.arange(first, first + len(table))
        block = np.column_stack([numbers, table, of])
        self._elements.setdefault((kind, table.shape[1]), []).append(block)
        return numbers

    def materials(self, **values: npt.ArrayLike) -> Numbers:
        """Adds materials: each key of the problem file's materials with one value or an array.

        Such as materials(E=2.1e8, G=8.1e7, A=[0.01, 0.02], Iy=..., Iz=..., J=...).
        """
        for key in values:
            if key not in _KEYS:
                raise ValueError(f"unknown key of a material: {key!r}; keys are {', '.join(_KEYS)}")
        if not values:
            raise ValueError("a material needs values, such as E=2.1e8")
        lists = {key: _list(value, key) for key, value in values.items()}
        count = next((len(one) for one in lists.values() if len(one) != 1), 1)
        arrays = [_finite(_list(one, key, count), key) for key, one in lists.items()]
        first = len(self._materials) + 1
        for row in zip(*arrays):
            self._materials.append(dict(zip(values, map(float, row))))
        return np.arange(first, len(self._materials) + 1)

    @property
    def _components(self) -> tuple[int, ...]:
        if self._kind == "2d":
            return (3,)
        return (3, 6)

    def supports(
        self,
        nodes: npt.ArrayLike,
        flags: str | npt.ArrayLike,
        values: npt.ArrayLike | None = None,
        euler: npt.ArrayLike | None = None,
    ) -> None:
        """Supports nodes.

        flags: "111000" or (n, 6) numbers, for x, y, z and the rotations: 0 free, 1 prescribed,
        2 held by a spring; three in the plane and for solids. values: (n, 6) prescribed
        displacements [length, radians] or stiffnesses [force/length, moment]; None for zeros,
        without springs. euler: (n, 3) angles of the axes of the supports [radians]; None for global
        axes.
        """
        of = _numbers(nodes, "nodes")
        marks = self._flags(flags, len(of))
        if values is None and (marks == 2).any():
            raise ValueError("values: expected the stiffnesses of the springs (flags 2), got None")
        count = marks.shape[1]
        given = _floats(np.zeros(count) if values is None else values, "values", (count,), len(of))
        angles = None if euler is None else _floats(euler, "euler", (3,), len(of))
        block = self._blocks.setdefault("constraints", [])
        kinds, group = np.unique(marks, axis=0, return_inverse=True)
        for k, kind in enumerate(kinds):
            mark = "".join(str(int(digit)) for digit in kind)
            rows = group.reshape(-1) == k
            text = _rows(of[rows], given[rows], mark)
            if angles is not None:
                text = _with_angles(text, angles[rows])
            block.append(text)

    def _flags(self, flags: str | npt.ArrayLike, rows: int) -> Floats:
        digits = [ord(digit) - ord("0") for digit in flags] if isinstance(flags, str) else flags
        marks = _table(digits, "flags", self._components, rows)
        if not np.isin(marks, (0, 1, 2)).all():
            raise ValueError(f"flags: expected 0, 1 or 2, got {flags!r}")
        return _finite(marks, "flags")

    def hinges(
        self,
        elements: npt.ArrayLike | None = None,
        code: str | None = None,
        nodes: npt.ArrayLike | None = None,
    ) -> None:
        """Hinges ends of beams, or all ends of beams at nodes.

        code: of elements, one digit for each end: 1 continuous, 0 hinged; None for "00".
        """
        if (elements is None) == (nodes is None):
            raise ValueError("give either elements or nodes")
        if nodes is not None:
            if code is not None:
                raise ValueError(f"code: expected with elements only, got {code!r} with nodes")
            of = _numbers(nodes, "nodes")
            self._put("rotules", _rows(of, _none(len(of)), "hinge"))
        elif elements is not None:
            if code not in (None, "00", "01", "10", "11"):
                raise ValueError(f"code: expected '00', '01', '10' or '11', got {code!r}")
            of = _numbers(elements, "elements")
            self._put("elem_rotules", _rows(of, _none(len(of)), code or "00"))

    def loads(self, nodes: npt.ArrayLike, values: npt.ArrayLike) -> None:
        """Adds (n, 6) forces and moments on nodes, global axes; (n, 3) Fx, Fy, Mz in the plane,
        Fx, Fy, Fz on solids. Loads on a node add up."""
        of = _numbers(nodes, "nodes")
        self._put("nodal_point_loads", _rows(of, _floats(values, "values", self._components, len(of))))

    def element_loads(
        self,
        elements: npt.ArrayLike,
        values: npt.ArrayLike,
        kind: Literal["local", "global", "projected", "face"] = "global",
        faces: npt.ArrayLike | None = None,
    ) -> None:
        """Adds distributed loads: (n, 3) forces per length of beams, per area of shells and faces.

        kind: "local" or "global" axes; "projected" per length or area across the load; "face" on
        faces of solids and edges of shells. (n, 2) in the plane; (n, 4) local loads on beams with
        a torque. faces: indices of faces or edges, from 0; needed on solids.
        """
        if kind not in _LOADS:
            raise ValueError(f"unknown kind of load: {kind!r}; kinds are {', '.join(_LOADS)}")
        of = _numbers(elements, "elements")
        columns = (2,) if self._kind == "2d" else (3, 4) if kind == "local" else (3,)
        given = _floats(values, "values", columns, len(of))
        if faces is None:
            self._put(_LOADS[kind], _rows(of, given))
        else:
            sides = _numbers(faces, "faces", len(of))
            self._put(_LOADS[kind], _rows(np.column_stack([of, sides]), given))

    def temperature_loads(
        self, elements: npt.ArrayLike, expansion: npt.ArrayLike, change: npt.ArrayLike
    ) -> None:
        """Adds changes of temperature of beams: coefficients of expansion and changes."""
        of = _numbers(elements, "elements")
        given = {"expansion": expansion, "change": change}
        columns = [_finite(_list(value, name, len(of)), name) for name, value in given.items()]
        self._put("temperature_loads", _rows(of, np.column_stack(columns)))

    def settings(self, **values: Any) -> None:
        """Sets settings of the problem file, such as GravityDirection=(0, 0, -1),
        ConvertTo6Nodes=True, ShellFormulation="Refined"."""
        for name, value in values.items():
            if name not in _SETTINGS:
                raise ValueError(f"unknown setting: {name!r}; settings are {', '.join(_SETTINGS)}")
            self._settings[name] = _setting(value)

    def _put(self, block: str, text: str) -> None:
        self._blocks.setdefault(block, []).append(text)

    def text(self) -> str:
        """The problem file."""
        parts = [f"problem type: {self._kind}\n"]
        parts += [f"# {line}\n" for line in self._comment.splitlines()]
        if self._units:
            force, length, pressure = self._units
            parts.append(
                "\nunits_names\n# system, force, length, pressure, sizes of force and length\n"
                f"  all {force} {length} {pressure} 1 1\nend\n"
                f"units_mesh {length}\nunits_mat_and_load all\nunits_res all\n"
            )
        parts += self._meshes()
        if self._materials:
            parts.append("\nmaterials\n")
            parts += [_material(n, values) for n, values in enumerate(self._materials, 1)]
            parts.append("end materials\n")
        for block, texts in self._blocks.items():
            parts += [f"\n{block}\n", *texts, f"end {block}\n"]
        if self._settings:
            parts.append("\n")
            parts += [f"{name} {text}".rstrip() + "\n" for name, text in self._settings.items()]
        return "".join(parts)

    def _meshes(self) -> Iterable[str]:
        for k, ((kind, width), blocks) in enumerate(self._elements.items()):
            yield (
                f"\nmesh dimension = {self._dimension} elemtype {_TYPES[kind]} nnode = {width}\n"
                "coordinates\n"
            )
            if k == 0 and self._coordinates:
                places = np.concatenate(self._coordinates)
                yield "# node, x, y" + (", z\n" if self._dimension == 3 else "\n")
                yield _rows(np.arange(1, len(places) + 1), places)
            yield f"end coordinates\nelements\n# element, {width} nodes, material\n"
            table = np.concatenate(blocks)
            yield _rows(table, _none(len(table)))
            yield "end elements\n"

    def model(self) -> Model:
        """The model. Raises Error where the program refuses it."""
        return parse(self.text())


def _with_angles(text: str, angles: Floats) -> str:
    lines = text.splitlines()
    items = [
        "  " + " ".join(f"Euler{k} = {_text(angle)}" for k, angle in enumerate(row, 1) if angle)
        for row in angles
    ]
    return "".join(f"{line}{item}".rstrip() + "\n" for line, item in zip(lines, items))


def _material(number: int, values: dict[str, float]) -> str:
    items = "  ".join(f"{key} = {_text(value)}" for key, value in values.items())
    return f"  {number}  {items}\n"


def _setting(value: Any) -> str:
    if isinstance(value, bool):
        return "" if value else "off"
    if isinstance(value, str):
        text = value
    elif np.ndim(value) == 0:
        text = str(value) if isinstance(value, (int, np.integer)) else _text(value)
    else:
        text = " ".join(_text(item) for item in value)
    if "\n" in text or "#" in text or "nan" in text or "inf" in text:
        raise ValueError(f"{value!r} is no value of a setting")
    return text
