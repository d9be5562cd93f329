"""Nodes, elements and sets of an `.inp` file."""

import numpy as np

from morlen_import import inp_cards, numbers
from morlen_import.fault import Fault, did_you_mean, shown, warn
from morlen_import.inp_sets import Sets
from morlen_import.mesh import (
    KINDS,
    Group,
    MeshBuilder,
    NumberFinder,
    check_middles,
    merge_equal_cells,
    turn_tetrahedra,
)

# type: (kind, places of its nodes in the order of a mesh)
TYPES = {
    "C3D4": ("tet4", range(4)),
    "C3D10": ("tet10", range(10)),
    "S3": ("tri3", range(3)),
    "S6": ("tri6", range(6)),
    "CPS3": ("tri3", range(3)),
    "CPS6": ("tri6", range(6)),
    "B31": ("line2", range(2)),
    "B31R": ("line2", range(2)),
    "T3D2": ("line2", range(2)),
    # The middle node is the second.
    "B32": ("line3", (0, 2, 1)),
    "B32R": ("line3", (0, 2, 1)),
    "T3D3": ("line3", (0, 2, 1)),
}
_OTHERS = {
    "C3D6": 6,
    "C3D8": 8,
    "C3D8R": 8,
    "C3D8I": 8,
    "C3D15": 15,
    "C3D20": 20,
    "C3D20R": 20,
    "C3D20RI": 20,
    "C3D10I": 10,
    "C3D10M": 10,
    "C3D10T": 10,
    "S3R": 3,
    "S4": 4,
    "S4R": 4,
    "S8": 8,
    "S8R": 8,
    "STRI3": 3,
    "STRI65": 6,
    "CPS4": 4,
    "CPS4R": 4,
    "CPS8": 8,
    "CPS8R": 8,
    "CPE3": 3,
    "CPE4": 4,
    "CPE6": 6,
    "CPE8": 8,
    "CAX3": 3,
    "CAX4": 4,
    "CAX6": 6,
    "CAX8": 8,
    "M3D3": 3,
    "M3D4": 4,
    "M3D6": 6,
    "M3D8": 8,
    "T2D2": 2,
    "T2D3": 3,
    "B21": 2,
    "B22": 3,
    "B33": 2,
}
MESH_KEYWORDS = ("HEADING", "NODE", "ELEMENT", "NSET", "ELSET")
IGNORED = (
    "NODE FILE",
    "EL FILE",
    "NODE PRINT",
    "EL PRINT",
    "NODE OUTPUT",
    "ELEMENT OUTPUT",
    "OUTPUT",
    "CONTACT FILE",
    "CONTACT OUTPUT",
    "CONTACT PRINT",
    "SECTION PRINT",
    "SECTION FILE",
    "MONITOR",
    "PRINT",
    "PREPRINT",
    "RESTART",
    "FILE FORMAT",
    "ENERGY FILE",
    "ENERGY OUTPUT",
    "ENERGY PRINT",
    "FILE OUTPUT",
)
_FLAT = ("PART", "END PART", "ASSEMBLY", "END ASSEMBLY", "INSTANCE", "END INSTANCE")
_NOT_MISSPELT = ("PLASTIC",)  # near ELASTIC, but another keyword
_FILE_BITS = 40


def refuse_keyword(card, skip, known):
    """Refuses a card that nothing can be made of, or skips it with a warning."""
    if card.keyword in _FLAT:
        raise card.fault(
            "files of parts and instances are not read",
            hint="write a flat file, without parts and assemblies",
        )
    if not skip:
        near = "" if card.keyword in _NOT_MISSPELT else did_you_mean(card.keyword, known)
        raise Fault(
            card.path,
            f"the keyword *{shown(card.keyword)} is not read{near}",
            line=card.line,
            hint="--skip leaves such keywords out",
        )
    warn(card.path, f"*{shown(card.keyword)} is left out", card.line)


class InpMesh:
    """The mesh of a file. An element is an index in all of them; `kinds`, `rows` and `types` tell what it is."""

    def __init__(self, path, read_file):
        self.path = str(path)
        self.files = []
        self.heading = ""
        self.node_sets = Sets("nodes")
        self.element_sets = Sets("elements")
        self.others = []
        self._builder = MeshBuilder(path)
        self._builder.fault = self._fault_at
        self._types = {}
        self._sets_of_elements = []
        readers = {
            "HEADING": self._read_heading,
            "NODE": self._read_nodes,
            "ELEMENT": self._read_elements,
            "NSET": self._read_node_set,
            "ELSET": self._read_element_set,
        }
        for card in inp_cards.read_cards(path, read_file):
            if card.keyword in readers:
                readers[card.keyword](card)
            elif card.keyword not in IGNORED:
                self.others.append(card)
        self.mesh = self._builder.finish_without_groups()
        self.mesh.names_have_case = False
        self._index_elements()
        self.find_nodes = NumberFinder(self.mesh.numbers).find

    def nodes_of_set(self, name):
        """Indices of the nodes of a set."""
        return self.node_sets.members(name, self.find_nodes)

    def elements_of_set(self, name):
        """Indices of the elements of a set."""
        return self.element_sets.members(name, self.find_elements)

    def mark(self, path, line):
        """A line of any of the files as one number."""
        if path not in self.files:
            self.files.append(path)
        return (self.files.index(path) << _FILE_BITS) + line

    def _fault_at(self, text, mark):
        if mark < 0:
            return Fault(self.path, text)
        return Fault(self.files[int(mark) >> _FILE_BITS], text, line=int(mark) & ((1 << _FILE_BITS) - 1))

    def _read_heading(self, card):
        card.check_parameters()
        texts = [
            line.strip() for chunk in card.data for line in chunk.text.decode("utf-8", "replace").split("\n")
        ]
        self.heading = " ".join(text for text in texts if text)

    def _read_nodes(self, card):
        card.check_parameters()
        for chunk in card.data:
            found = inp_cards.plain_numbers(chunk)
            table, lines = self._plain_nodes(card, chunk, found) if found else self._node_rows(card, chunk)
            tags = table[:, 0].astype(np.int64)
            self._builder.add_nodes(tags, table[:, 1:], self.mark(chunk.path, 0) + lines)
            if "NSET" in card.parameters:
                self.node_sets.add(card.need("NSET"), tags, chunk.path, lines)

    def _plain_nodes(self, card, chunk, found):
        run, counts, lines, _ = found
        starts = np.cumsum(counts) - counts
        wrong = counts > 4
        if wrong.any():
            raise card.fault(
                "a field too many: a node has a number and three coordinates",
                int(lines[np.argmax(wrong)]),
                chunk.path,
            )
        table = np.zeros((len(counts), 4))
        for k in range(4):
            given = counts > k
            table[given, k] = run[starts[given] + k]
        wrong = (table[:, 0] != np.trunc(table[:, 0])) | (np.abs(table[:, 0]) >= numbers.LARGEST)
        if wrong.any():
            raise card.fault("the number of a node is not whole", int(lines[np.argmax(wrong)]), chunk.path)
        return table, lines

    def _node_rows(self, card, chunk):
        table, lines = [], []
        for line, fields, _ in chunk.rows():
            fields = inp_cards.without_empty_end(fields)
            if len(fields) > 4:
                raise card.fault(
                    "a field too many: a node has a number and three coordinates", line, chunk.path
                )
            row = [inp_cards.need_whole(card, chunk.path, line, fields[0], "number of a node")]
            row += [
                inp_cards.need_number(card, chunk.path, line, word, "coordinate") if word else 0.0
                for word in fields[1:]
            ]
            table.append(row + [0.0] * (4 - len(row)))
            lines.append(line)
        return np.array(table, dtype=float).reshape(-1, 4), np.array(lines, dtype=np.int64)

    def _read_elements(self, card):
        card.check_parameters()
        name = card.need("TYPE").upper()
        if name not in TYPES and name not in _OTHERS:
            raise card.fault(f"elements of the type {shown(name)} cannot be taken over")
        width = 1 + (len(TYPES[name][1]) if name in TYPES else _OTHERS[name])
        for chunk in card.data:
            run, counts, lines, open_ends = inp_cards.plain_numbers(chunk) or self._element_rows(card, chunk)
            if not np.array_equal(run, np.trunc(run)) or (np.abs(run) >= numbers.LARGEST).any():
                self._element_rows(card, chunk)
                raise card.fault("a number is not whole", chunk.line, chunk.path)
            first_lines = self._check_lines(card, chunk, name, width, (counts, lines, open_ends))
            table = run.astype(np.int64).reshape(-1, width)
            marks = self.mark(chunk.path, 0) + first_lines
            if name in TYPES:
                kind, order = TYPES[name]
                self._builder.add_cells(kind, table[:, 0], table[:, 1:][:, list(order)], marks)
                self._types.setdefault(kind, []).append((name, len(table)))
            elif len(table):
                self._builder.refuse(name, len(table), int(marks[0]))
            if "ELSET" in card.parameters:
                self.element_sets.add(card.need("ELSET"), table[:, 0], chunk.path, first_lines)

    def _element_rows(self, card, chunk):
        run, counts, lines, open_ends = [], [], [], []
        for line, fields, is_open in chunk.rows():
            if not fields[-1]:
                raise card.fault(
                    "an empty field: only one comma at the end of a line says that the element goes on",
                    line,
                    chunk.path,
                )
            run += [
                inp_cards.need_whole(card, chunk.path, line, word, "an element: its number, its nodes")
                for word in fields
            ]
            counts.append(len(fields))
            lines.append(line)
            open_ends.append(is_open)
        return tuple(np.array(part) for part in (run, counts, lines, open_ends))

    def _check_lines(self, card, chunk, name, width, rows):
        """Refuses elements that do not end at the end of a line; gives the line where each begins."""
        counts, lines, open_ends = rows
        ends = np.cumsum(counts)
        begins = ends - counts
        too_many = begins // width != (ends - 1) // width
        too_few = (ends % width != 0) & ~open_ends
        wrong = too_many | too_few
        if wrong.any():
            row = int(np.argmax(wrong))
            what = "a field too many" if too_many[row] else "fields are missing"
            raise card.fault(
                f"{what}: an element of type {name} has a number and {width - 1} nodes",
                int(lines[row]),
                chunk.path,
            )
        if len(ends) and ends[-1] % width:
            raise card.fault("the last element is not complete", int(lines[-1]), chunk.path)
        return lines[begins % width == 0]

    def _read_node_set(self, card):
        card.check_parameters()
        name = card.need("NSET")
        if "ELSET" in card.parameters:
            self._sets_of_elements.append((card, name))
            self.node_sets.add(name, np.zeros(0, dtype=np.int64), card.path, card.line)
        else:
            self.node_sets.read(card, name)

    def _read_element_set(self, card):
        card.check_parameters()
        self.element_sets.read(card, card.need("ELSET"))

    def _index_elements(self):
        self.kind_names = list(self.mesh.cells)
        cells = [self.mesh.cells[kind] for kind in self.kind_names]
        none = np.zeros(0, dtype=np.int64)
        self.numbers = np.concatenate([none, *(c.numbers for c in cells)])
        self.kinds = np.concatenate([none, *(np.full(len(c.numbers), k) for k, c in enumerate(cells))])
        self.rows = np.concatenate([none, *(np.arange(len(c.numbers)) for c in cells)])
        counts = [found for kind in self.kind_names for found in self._types[kind]]
        names = np.array([name for name, _ in counts], dtype="U8")
        self.types = np.repeat(names, np.array([count for _, count in counts], dtype=np.int64))
        marks = np.concatenate([none, *(self._builder.marks[kind] for kind in self.kind_names)])
        finder = NumberFinder(self.numbers)
        double = finder.first_double()
        if double is not None:
            raise self._fault_at(f"element {self.numbers[double]} is given twice", marks[double])
        self.find_elements = finder.find
        for card, name in self._sets_of_elements:
            elset = card.need("ELSET")
            if elset not in self.element_sets:
                raise card.fault(f"there is no set {shown(elset)} of elements")
            found = self.elements_of_set(elset)
            for kind in np.unique(self.kinds[found]):
                nodes = self.mesh.cells[self.kind_names[kind]].nodes[
                    self.rows[found[self.kinds[found] == kind]]
                ]
                self.node_sets.add(name, self.mesh.numbers[np.unique(nodes)], card.path, card.line)


def read_mesh(path, skip, read_file):
    """The mesh of a file without sections, with its sets as groups."""
    source = InpMesh(path, read_file)
    from morlen_import.inp_model import KEYWORDS

    for card in source.others:
        if card.keyword in KEYWORDS:
            raise card.fault(
                "the file has materials, sections or steps itself, and takes no map",
                hint="give --units LENGTH,FORCE in place of the map, or take these keywords out",
            )
        refuse_keyword(card, skip, MESH_KEYWORDS)
    mesh = source.mesh
    for name in source.element_sets.names():
        mesh.groups += _groups_of(source, name)
    for name in source.node_sets.names():
        mesh.groups.append(Group(0, name, nodes=source.nodes_of_set(name)))
    merge_equal_cells(mesh)
    turn_tetrahedra(mesh)
    check_middles(mesh)
    return mesh


def _groups_of(source, name):
    """The groups of an element set: one for each dimension of its elements."""
    found = source.elements_of_set(name)
    groups = {}
    for k in np.unique(source.kinds[found]):
        kind = source.kind_names[k]
        dimension = KINDS[kind].dimension
        group = groups.setdefault(dimension, Group(dimension, name))
        group.cells[kind] = np.unique(source.rows[found[source.kinds[found] == k]])
    return [groups[dimension] for dimension in sorted(groups)]
