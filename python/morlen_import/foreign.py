"""Meshes in all formats that meshio reads.

meshio prints and exits on its own, and its readers fail in many ways on damaged files: all of that becomes one fault
that names the file.
"""

import contextlib
import io
import warnings

import numpy as np

from morlen_import.fault import Fault, did_you_mean, shown
from morlen_import.mesh import KINDS, MeshBuilder, Group

_KINDS = {
    "vertex": "point",
    "line": "line2",
    "line3": "line3",
    "triangle": "tri3",
    "triangle6": "tri6",
    "tetra": "tet4",
    "tetra10": "tet10",
}
_GROUP_DATA = ("gmsh:physical", "CellEntityIds", "medit:ref", "nastran:ref")


def read_foreign(path):
    """The mesh in a file."""
    foreign = _read(path)
    try:
        return _Conversion(path, foreign).mesh()
    except (ValueError, IndexError, KeyError, TypeError, AttributeError, OverflowError) as error:
        raise Fault(path, f"the contents cannot be used: {shown(error, 120)}") from None


def _read(path):
    try:
        with open(path, "rb"):
            pass
    except OSError as error:
        raise Fault(path, f"cannot be read: {error.strerror or error}") from None
    words = io.StringIO()
    with contextlib.redirect_stdout(words), contextlib.redirect_stderr(words), warnings.catch_warnings():
        warnings.simplefilter("ignore")
        try:
            import meshio
        except ImportError:
            raise Fault(
                path,
                "files of this kind are read by meshio, which is not installed",
                hint="install python3-meshio, or save the mesh as .msh or .inp",
            ) from None
        _require_known_ending(path, meshio)
        try:
            with np.errstate(all="ignore"):
                return meshio.read(path)
        except KeyboardInterrupt:
            raise
        except ImportError as error:
            package = shown(getattr(error, "name", "") or str(error))
            raise Fault(
                path, f"meshio needs {package}, which is not installed", hint=f"install python3-{package}"
            ) from None
        except (MemoryError, RecursionError):
            raise Fault(path, "cannot be read by meshio: it needs too much memory") from None
        except BaseException as error:  # meshio ends by sys.exit, and raises all kinds of errors
            said = " ".join(words.getvalue().split())
            reason = said if isinstance(error, SystemExit) else f"{type(error).__name__}: {error}"
            raise Fault(path, f"cannot be read by meshio: {shown(reason or said, 200)}") from None


def _require_known_ending(path, meshio):
    known = sorted(meshio.extension_to_filetypes)
    if not any(str(path).lower().endswith(ending) for ending in known):
        ending = "." + str(path).rpartition(".")[2] if "." in str(path) else ""
        raise Fault(
            path,
            f"meshes with the ending '{shown(ending)}' are not read{did_you_mean(ending, known)}",
            hint="known endings: .msh .inp " + " ".join(e for e in known if e not in (".msh", ".inp")),
        )


class _Conversion:
    def __init__(self, path, foreign):
        self._path = path
        self._foreign = foreign
        self._builder = MeshBuilder(path)
        self._first = {}

    def mesh(self):
        points = self._points()
        count = len(points)
        self._builder.add_nodes(np.arange(1, count + 1), points, np.full(count, -1))
        number = 1
        groups = self._foreign.cell_data
        names = getattr(self._foreign, "cell_tags", None) or {}
        named = []
        for k, block in enumerate(self._foreign.cells):
            nodes = self._nodes(block, count)
            if block.type not in _KINDS:
                self._builder.refuse(shown(block.type), len(nodes), -1)
                continue
            kind = _KINDS[block.type]
            if nodes.shape[1:] != (KINDS[kind].nodes,):
                raise Fault(self._path, f"elements of the type {block.type} have {nodes.shape[1:]} nodes")
            first = self._builder.add_cells(
                kind, np.arange(number, number + len(nodes)), nodes + 1, np.full(len(nodes), -1)
            )
            number += len(nodes)
            self._add_numbers(groups, k, kind, first, len(nodes))
            if "cell_tags" in groups:
                named.append((kind, first, self._of_block(groups["cell_tags"], k, len(nodes))))
        members = self._named_members(named, names)
        mesh = self._builder.finish(members)
        mesh.groups += self._node_sets(count)
        mesh.has_numbers = False
        return mesh

    def _points(self):
        points = np.asarray(self._foreign.points, dtype=float)
        if points.ndim != 2 or points.shape[1] not in (2, 3):
            raise Fault(self._path, "its nodes do not have two or three coordinates")
        if points.shape[1] == 2:
            points = np.column_stack([points, np.zeros(len(points))])
        wrong = np.flatnonzero(~np.isfinite(points).all(axis=1))
        if len(wrong):
            raise Fault(self._path, f"node {wrong[0] + 1} has a coordinate that is no finite number")
        return points

    def _nodes(self, block, count):
        nodes = np.asarray(block.data)
        if nodes.ndim != 2 or (nodes.size and nodes.dtype.kind not in "iu"):
            raise Fault(self._path, f"elements of the type {shown(block.type)} have no list of nodes")
        nodes = nodes.astype(np.int64)
        if nodes.size and (nodes.min() < 0 or nodes.max() >= count):
            raise Fault(
                self._path,
                f"an element of the type {shown(block.type)} has a node that the file does not have",
            )
        return nodes

    def _of_block(self, data, k, count):
        values = np.asarray(data[k]).reshape(-1)
        if len(values) != count or (count and values.dtype.kind not in "iuf"):
            raise Fault(self._path, "the group numbers do not belong to the elements")
        whole = values.astype(np.int64)
        if not np.array_equal(whole, values):
            raise Fault(self._path, "a group number is not whole")
        return whole

    def _add_numbers(self, groups, k, kind, first, count):
        name = next((name for name in _GROUP_DATA if name in groups), None)
        if name is None:
            return
        numbers = np.abs(self._of_block(groups[name], k, count))
        for number in np.unique(numbers[numbers != 0]):
            self._builder.join(
                KINDS[kind].dimension, int(number), kind, first + np.flatnonzero(numbers == number)
            )

    def _named_members(self, named, names):
        """Groups by name, from families that each have several names; gives the names of new group numbers."""
        numbers = {}
        for kind, first, families in named:
            for family in np.unique(families[families != 0]):
                for name in names.get(int(family), []):
                    key = (KINDS[kind].dimension, name)
                    # Negative numbers: no other group has them.
                    number = numbers.setdefault(key, -1 - len(numbers))
                    self._builder.join(key[0], number, kind, first + np.flatnonzero(families == family))
        return {(dimension, number): name for (dimension, name), number in numbers.items()}

    def _node_sets(self, count):
        families = self._foreign.point_data.get("point_tags")
        names = getattr(self._foreign, "point_tags", None) or {}
        if families is None:
            return []
        families = self._of_block([families], 0, count)
        sets = {}
        for family in np.unique(families[families != 0]):
            for name in names.get(int(family), []):
                sets.setdefault(name, []).append(np.flatnonzero(families == family))
        return [Group(0, name, nodes=np.unique(np.concatenate(parts))) for name, parts in sets.items()]
