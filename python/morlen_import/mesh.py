"""A mesh as it is read: nodes, cells by kind, groups.

Nodes of cells are indices into the arrays of nodes, from 0. The corners come first, then the middle nodes in the order
of the problem file: lines 1-2; triangles 1-2, 2-3, 3-1; tetrahedra 1-2, 2-3, 1-3, 1-4, 2-4, 3-4.
"""

from dataclasses import dataclass, field

import numpy as np

from morlen_import.fault import Fault, count_of, numbered, warn


@dataclass(frozen=True)
class Kind:
    """A kind of cells: its dimension, nodes and corners, and its names in messages."""

    dimension: int
    nodes: int
    corners: int
    name: str
    plural: str

    def count(self, number):
        """'1 triangle', '4 triangles'."""
        return count_of(number, self.name, self.plural)


KINDS = {
    "point": Kind(0, 1, 1, "point", "points"),
    "line2": Kind(1, 2, 2, "line", "lines"),
    "line3": Kind(1, 3, 2, "line of three nodes", "lines of three nodes"),
    "tri3": Kind(2, 3, 3, "triangle", "triangles"),
    "tri6": Kind(2, 6, 3, "triangle of six nodes", "triangles of six nodes"),
    "tet4": Kind(3, 4, 4, "tetrahedron", "tetrahedra"),
    "tet10": Kind(3, 10, 4, "tetrahedron of ten nodes", "tetrahedra of ten nodes"),
}
EDGES = {
    "line3": np.array([(0, 1)]),
    "tri6": np.array([(0, 1), (1, 2), (2, 0)]),
    "tet10": np.array([(0, 1), (1, 2), (0, 2), (0, 3), (1, 3), (2, 3)]),
}
# New places of the nodes of a tetrahedron whose second and third corner are exchanged.
TURNED = {"tet4": [0, 2, 1, 3], "tet10": [0, 2, 1, 3, 6, 5, 4, 7, 9, 8]}


@dataclass
class Cells:
    """Cells of one kind: their numbers in the file and their nodes, one row a cell."""

    numbers: np.ndarray
    nodes: np.ndarray
    turned: np.ndarray = None  # of tetrahedra: the second and third corner are exchanged


@dataclass
class Group:
    """A group of one dimension: indices of its cells by kind; of node sets, the nodes."""

    dimension: int
    name: str = None
    number: int = None
    cells: dict = field(default_factory=dict)
    nodes: np.ndarray = None

    @property
    def label(self):
        """The name that a map can use for it."""
        return f"{self.dimension}:{self.name if self.name is not None else self.number}"

    def text(self):
        """The label with the counts of what is in the group."""
        counts = [KINDS[kind].count(len(indices)) for kind, indices in self.cells.items()]
        if self.nodes is not None:
            counts.append(count_of(len(self.nodes), "node"))
        return f"{self.label}  {', '.join(counts)}"


@dataclass
class Mesh:
    """Nodes and cells of a file; `has_numbers` is false when the file numbers neither."""

    path: str
    numbers: np.ndarray
    places: np.ndarray
    cells: dict
    groups: list
    has_numbers: bool = True
    names_have_case: bool = True


class MeshBuilder:
    """Collects what a reader finds, and makes a mesh of it."""

    def __init__(self, path):
        self.path = path
        self.where = "line"  # what the marks are: lines or offsets; -1 is none
        self.marks = {}
        self._nodes = []
        self._cells = {}
        self._groups = {}
        self._refused = {}

    def add_nodes(self, numbers, places, marks):
        """Nodes with their numbers; `marks` has the line or the offset of each."""
        self._nodes.append((numbers, places, marks))

    def add_cells(self, kind, numbers, nodes, marks):
        """Cells with the numbers of their nodes; gives the index of the first in its kind."""
        chunks = self._cells.setdefault(kind, [])
        first = sum(len(chunk[0]) for chunk in chunks)
        chunks.append((numbers, nodes, marks))
        return first

    def refuse(self, name, count, mark):
        """Counts elements that have no place in a problem file."""
        old, first = self._refused.get(name, (0, mark))
        self._refused[name] = (old + count, first)

    def join(self, dimension, number, kind, indices):
        """Puts cells, by their indices in their kind, into a numbered group."""
        group = self._groups.setdefault((dimension, number), {})
        group.setdefault(kind, []).append(indices)

    def finish(self, names):
        """The mesh. `names` has the names of groups by (dimension, number)."""
        mesh = self.finish_without_groups()
        mesh.groups = [
            Group(
                dimension,
                names.get((dimension, number)),
                number,
                {kind: np.unique(np.concatenate(parts)) for kind, parts in found.items()},
            )
            for (dimension, number), found in sorted(self._groups.items())
        ]
        merge_equal_cells(mesh)
        turn_tetrahedra(mesh)
        check_middles(mesh)
        return mesh

    def finish_without_groups(self):
        """The mesh with all cells as they are given, and no groups; keeps the marks of its cells."""
        self._raise_refused()
        if not self._nodes:
            raise Fault(
                self.path, "the file has no nodes", **{self.where: 0 if self.where == "offset" else 1}
            )
        numbers, places, marks = (np.concatenate(part) for part in zip(*self._nodes))
        finder = NumberFinder(numbers)
        double = finder.first_double()
        if double is not None:
            raise self.fault(f"node {numbers[double]} is given twice", marks[double])
        cells = {kind: self._finish_cells(kind, finder) for kind in KINDS if kind in self._cells}
        return Mesh(str(self.path), numbers, places, cells, [])

    def fault(self, text, mark):
        """A fault at a mark."""
        return Fault(self.path, text, **{self.where: int(mark)} if mark >= 0 else {})

    def _raise_refused(self):
        if not self._refused:
            return
        found = ", ".join(f"{count} of the kind {name}" for name, (count, _) in self._refused.items())
        mark = min(mark for _, mark in self._refused.values())
        raise self.fault(
            f"elements that cannot be taken over: {found}. Only lines, triangles and tetrahedra of first"
            " and second order can",
            mark,
        )

    def _finish_cells(self, kind, finder):
        numbers, nodes, marks = (np.concatenate(part) for part in zip(*self._cells[kind]))
        self.marks[kind] = marks
        indices = finder.find(nodes)
        wrong = np.flatnonzero((indices < 0).any(axis=1))
        if len(wrong):
            row = wrong[0]
            node = nodes[row][indices[row] < 0][0]
            raise self.fault(
                f"element {numbers[row]} has node {node}, which the file does not have", marks[row]
            )
        ordered = np.sort(indices, axis=1)
        same = np.flatnonzero((ordered[:, 1:] == ordered[:, :-1]).any(axis=1))
        if len(same):
            raise self.fault(f"element {numbers[same[0]]} has a node twice", marks[same[0]])
        return Cells(numbers, indices)


class NumberFinder:
    """Indices of nodes or elements from their numbers."""

    def __init__(self, numbers):
        self._order = np.argsort(numbers, kind="stable")
        self._sorted = numbers[self._order]

    def first_double(self):
        """The index of the first whose number an earlier one has, or None."""
        double = np.flatnonzero(self._sorted[1:] == self._sorted[:-1])
        return int(self._order[double + 1].min()) if len(double) else None

    def find(self, wanted):
        """Indices in the shape of `wanted`; -1 for unknown numbers."""
        if not len(self._sorted):
            return np.full(np.shape(wanted), -1, dtype=np.int64)
        place = np.searchsorted(self._sorted, wanted)
        place[place == len(self._sorted)] = 0
        return np.where(self._sorted[place] == wanted, self._order[place], -1)


def row_ids(rows):
    """A number for every row of whole numbers, equal for equal rows and less than the count of rows."""
    ids = np.zeros(len(rows), dtype=np.int64)
    for column in rows.T:
        _, of_column = np.unique(column, return_inverse=True)
        _, ids = np.unique(ids * (len(rows) + 1) + of_column, return_inverse=True)
    return ids


def merge_equal_cells(mesh):
    """Keeps the first of the cells with equal nodes, in the groups of all of them."""
    for kind, cells in mesh.cells.items():
        if len(cells.nodes) < 2:
            continue
        _, first, kept_of = np.unique(
            row_ids(np.sort(cells.nodes, axis=1)), return_index=True, return_inverse=True
        )
        if len(first) == len(cells.nodes):
            continue
        kept = np.sort(first)
        new = np.searchsorted(kept, first)[kept_of]
        mesh.cells[kind] = Cells(cells.numbers[kept], cells.nodes[kept])
        for group in mesh.groups:
            if kind in group.cells:
                group.cells[kind] = np.unique(new[group.cells[kind]])


def volumes_times_six(places, nodes):
    """Six times the volume between the first four nodes of each row; negative when they run the other way."""
    a, b, c, d = (places[nodes[:, k]] for k in range(4))
    return np.einsum("ij,ij->i", np.cross(b - a, c - a), d - a)


def turn_tetrahedra(mesh):
    """Exchanges the second and third corner of tetrahedra whose volume is negative, with the middle nodes."""
    count = 0
    for kind, order in TURNED.items():
        if kind not in mesh.cells:
            continue
        cells = mesh.cells[kind]
        cells.turned = volumes_times_six(mesh.places, cells.nodes) < 0
        cells.nodes[cells.turned] = cells.nodes[cells.turned][:, order]
        count += int(cells.turned.sum())
    if count:
        warn(
            mesh.path,
            f"the corners of {count_of(count, 'tetrahedron', 'tetrahedra')} run the other way: "
            "the second and the third were exchanged",
        )


def check_middles(mesh):
    """Refuses middle nodes that, in most cells of a kind, are nearer to other edges than to their own."""
    for kind, edges in EDGES.items():
        if kind not in mesh.cells or not len(mesh.cells[kind].nodes):
            continue
        cells = mesh.cells[kind]
        corners = KINDS[kind].corners
        wrong = _misplaced(mesh.places[cells.nodes], edges, corners)
        rows = np.flatnonzero(wrong)
        if 2 * len(rows) > len(wrong):
            raise Fault(
                mesh.path,
                f"element {cells.numbers[rows[0]]}, a {KINDS[kind].name}: its middle nodes are not"
                f" on its edges. {len(rows)} of {len(wrong)} such elements have them in a wrong order",
            )
        if len(rows):
            warn(
                mesh.path,
                numbered(
                    cells.numbers[rows],
                    "element has middle nodes far from the middles of its edges",
                    "elements have middle nodes far from the middles of their edges",
                ),
            )


def _misplaced(points, edges, corners):
    """True for rows where a middle node is nearer to the middle of another edge, or outside a line."""
    middles = 0.5 * (points[:, edges[:, 0]] + points[:, edges[:, 1]])
    wrong = np.zeros(len(points), dtype=bool)
    for k in range(len(edges)):
        node = points[:, corners + k]
        own = np.linalg.norm(node - middles[:, k], axis=1)
        if len(edges) == 1:
            wrong |= own >= np.linalg.norm(points[:, 1] - points[:, 0], axis=1)
        for other in range(len(edges)):
            if other != k:
                wrong |= np.linalg.norm(node - middles[:, other], axis=1) < own
    return wrong
