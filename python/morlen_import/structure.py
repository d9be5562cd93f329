"""The elements of a model: those cells of a mesh that have a material.

Each cell knows its elements: a line of three nodes becomes two beams. Triangles and lines without material are found
again as faces of tetrahedra and edges of shells, by their corners.
"""

import numpy as np

from morlen_import.mesh import KINDS, row_ids
from morlen_import.model import Part

FACES = np.array([(0, 1, 2), (1, 2, 3), (2, 3, 0), (3, 0, 1)])
SHELL_EDGES = np.array([(0, 1), (1, 2), (2, 0)])
TYPES = {"Linear": ("line2", "line3"), "Triangle": ("tri3", "tri6"), "Tetrahedra": ("tet4", "tet10")}


class Structure:
    """Elements of the cells with a material; `materials` has the material of every cell by kind, 0 for none.

    `fault` makes the fault of a text, where the materials are given.
    """

    def __init__(self, mesh, materials, fault):
        self.mesh = mesh
        self.materials = materials
        self._refuse_mixtures(fault)
        self.node_index = self._number_nodes()
        self.elements = {}
        self.parts = []
        for element_type, kinds in TYPES.items():
            self._add_part(element_type, kinds)

    def has(self, kind):
        """True when a cell of the kind is an element."""
        return kind in self.materials and bool(self.materials[kind].any())

    @property
    def has_solids(self):
        """True for a model of tetrahedra."""
        return self.has("tet4") or self.has("tet10")

    def is_element(self, kind, indices):
        """True for each of the cells that is an element."""
        return self.materials[kind][indices] > 0

    def elements_of(self, kind, indices):
        """The numbers of the elements that the cells have become."""
        found = self.elements[kind][indices].ravel()
        return found[found > 0]

    def index_of(self, nodes):
        """Indices of nodes of the mesh in the model, -1 for those of no element."""
        return self.node_index[nodes]

    def faces(self, kind, indices):
        """For triangles: tetrahedron (number of the first), its face, and the count of tetrahedra on the triangle."""
        return self._sides(self._corners(kind, indices), ("tet4", "tet10"), FACES)

    def edges(self, kind, indices):
        """For lines: shell (number of the first), its edge, and the count of shells on the line."""
        return self._sides(self._corners(kind, indices), ("tri3", "tri6"), SHELL_EDGES)

    def _corners(self, kind, indices):
        return self.mesh.cells[kind].nodes[indices][:, : KINDS[kind].corners]

    def _sides(self, wanted, kinds, sides):
        marked = np.zeros(len(self.mesh.numbers), dtype=bool)
        marked[wanted] = True
        rows, owners, places = [np.sort(wanted, axis=1)], [], []
        for kind in kinds:
            if not self.has(kind):
                continue
            cells = np.flatnonzero(self.materials[kind])
            nodes = self.mesh.cells[kind].nodes[cells]
            for place, side in enumerate(sides):
                of_side = nodes[:, side]
                near = marked[of_side].all(axis=1)
                rows.append(np.sort(of_side[near], axis=1))
                owners.append(self.elements[kind][cells[near], 0])
                places.append(np.full(int(near.sum()), place))
        if not owners:
            nothing = np.zeros(len(wanted), dtype=np.int64)
            return nothing, nothing, nothing
        ids = row_ids(np.concatenate(rows))
        wanted_ids, ids = ids[: len(wanted)], ids[len(wanted) :]
        owners, places = np.concatenate(owners), np.concatenate(places)
        order = np.lexsort((owners, ids))
        begin = np.searchsorted(ids[order], wanted_ids, "left")
        count = np.searchsorted(ids[order], wanted_ids, "right") - begin
        if not len(order):
            return count, count, count
        first = order[np.minimum(begin, len(order) - 1)]
        return owners[first], places[first], count

    def _refuse_mixtures(self, fault):
        kinds = [kind for kind in KINDS if self.has(kind)]
        if not kinds:
            raise fault("no element has a material")
        if self.has_solids and any(KINDS[kind].dimension < 3 for kind in kinds):
            raise fault("tetrahedra cannot be combined with beams or shells in one model")
        for first, second in (("tri3", "tri6"), ("tet4", "tet10")):
            if self.has(first) and self.has(second):
                raise fault(
                    f"{KINDS[first].plural} of {KINDS[first].nodes} and of {KINDS[second].nodes} nodes cannot"
                    " be combined in one model"
                )

    def _number_nodes(self):
        used = np.zeros(len(self.mesh.numbers), dtype=bool)
        for kind, materials in self.materials.items():
            used[self.mesh.cells[kind].nodes[materials > 0]] = True
        kept = np.flatnonzero(used)
        kept = kept[np.argsort(self.mesh.numbers[kept], kind="stable")]
        self.kept_nodes = kept
        index = np.full(len(used), -1, dtype=np.int64)
        index[kept] = np.arange(len(kept))
        return index

    def _add_part(self, element_type, kinds):
        pieces = []
        for kind in kinds:
            if not self.has(kind):
                continue
            cells = np.flatnonzero(self.materials[kind])
            for k, columns in enumerate([[0, 2], [2, 1]] if kind == "line3" else [slice(None)]):
                pieces.append((kind, cells, k, self.mesh.cells[kind].nodes[cells][:, columns]))
        if not pieces:
            return
        numbers = np.concatenate([self.mesh.cells[kind].numbers[cells] for kind, cells, _, _ in pieces])
        order = np.argsort(numbers, kind="stable")
        first = 1 + sum(len(part.nodes) for part in self.parts)
        place = np.empty(len(order), dtype=np.int64)
        place[order] = np.arange(len(order)) + first
        begin = 0
        for kind, cells, k, _ in pieces:
            table = self.elements.setdefault(kind, np.zeros((len(self.materials[kind]), 2), dtype=np.int64))
            table[cells, k] = place[begin : begin + len(cells)]
            begin += len(cells)
        nodes = self.node_index[np.concatenate([nodes for _, _, _, nodes in pieces])]
        materials = np.concatenate([self.materials[kind][cells] for kind, cells, _, _ in pieces])
        self.parts.append(Part(element_type, nodes[order], materials[order], numbers[order], first))
