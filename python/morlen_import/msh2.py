"""Sections of `.msh` 2.2.

Nodes may be in a section $ParametricNodes: the dimension and the number of the geometric entity of each node, and its
parameters on it, follow its coordinates. They are not used.
"""

import numpy as np

from morlen_import import msh_elements, numbers
from morlen_import.fault import Fault
from morlen_import.mesh import KINDS

_PARAMETERS = (0, 1, 2, 0)  # of a node, by the dimension of its entity
_NODE = [("number", "i4"), ("place", "f8", 3)]
_PARAMETRIC = [
    np.dtype([*_NODE, ("dimension", "i4"), ("entity", "i4"), ("parameters", "f8", (count,))])
    for count in _PARAMETERS
]


class Reader:
    """Reads nodes and elements into a builder."""

    def __init__(self, source, builder):
        self.source = source
        self.builder = builder
        builder.where = "offset" if source.is_binary else "line"
        binary = source.is_binary
        self.sections = {
            "Nodes": self._binary_nodes if binary else self._text_nodes,
            "ParametricNodes": self._binary_parametric if binary else self._text_parametric,
            "Elements": self._binary_elements if binary else self._text_elements,
        }

    def _text_nodes(self):
        count = self.source.count("count of nodes")
        table, lines = self.source.rows(count, 4, 1, "a node: number, x, y, z")
        self.builder.add_nodes(table[:, 0].astype(np.int64), table[:, 1:].copy(), lines)

    def _text_parametric(self):
        count = self.source.count("count of nodes")
        what = "a node: number, x, y, z, dimension, entity, parameters"
        run, starts, words, lines = self.source.ragged(count, what, np.float64)
        path = self.source.path
        _first_fault(path, lines, words < 6, f"{what}: at least 6 numbers needed")
        head = run[starts[:, None] + np.arange(6)]
        whole = head[:, (0, 4, 5)]
        wrong = ((whole != np.trunc(whole)) | (np.abs(whole) >= numbers.LARGEST)).any(axis=1)
        _first_fault(path, lines, wrong, f"{what}: a number is not whole")
        _first_fault(path, lines, ~np.isin(head[:, 4], range(4)), f"{what}: no dimension")
        wanted = 6 + np.array(_PARAMETERS)[head[:, 4].astype(np.int64)]
        _first_fault(path, lines, words != wanted, f"{what}: another count of parameters")
        self.builder.add_nodes(head[:, 0].astype(np.int64), head[:, 1:4].copy(), lines)

    def _text_elements(self):
        count = self.source.count("count of elements")
        run, starts, words, lines = self.source.ragged(count, "an element")
        path = self.source.path
        _first_fault(
            path, lines, words < 3, "an element has a number, a type, a count of tags, tags and nodes"
        )
        types, tags = run[starts + 1], run[starts + 2]
        _first_fault(path, lines, tags < 0, "the count of tags is negative")
        for number in np.unique(types):
            rows = np.flatnonzero(types == number)
            nodes = msh_elements.node_count(int(number))
            if nodes is None:
                raise Fault(path, f"unknown element type {number}", line=int(lines[rows[0]]))
            _first_fault(
                path,
                lines[rows],
                words[rows] != 3 + tags[rows] + nodes,
                f"an element of type {number} with so many tags has another count of numbers",
            )
            first_node = starts[rows] + 3 + tags[rows]
            # A physical group is the first tag; without tags there is none.
            physical = np.where(tags[rows] > 0, run[np.minimum(starts[rows] + 3, len(run) - 1)], 0)
            self._add(
                int(number),
                run[starts[rows]],
                physical,
                run[first_node[:, None] + np.arange(nodes)],
                lines[rows],
            )

    def _add(self, number, tags, physical, nodes, marks):
        added = msh_elements.add_elements(self.builder, number, tags, nodes, marks)
        if added is None:
            return
        kind, first = added
        groups = np.abs(physical)  # a negative number is the group with the direction reversed
        for group in np.unique(groups[groups != 0]):
            self.builder.join(
                KINDS[kind].dimension, int(group), kind, first + np.flatnonzero(groups == group)
            )

    def _binary_nodes(self):
        (count,) = self.source.whole_numbers(1, "count of nodes")
        begin = self.source.place
        self._add_binary_nodes(self.source.array(np.dtype(_NODE), count, "nodes"), begin)

    def _binary_parametric(self):
        """Nodes in runs of equal dimension, whose records have equal lengths."""
        source = self.source
        (left,) = source.whole_numbers(1, "count of nodes")
        most = 1
        while left > 0:
            begin = source.place
            dimension = int(source.array(_PARAMETRIC[0], 1, "a node")["dimension"][0])
            source.place = begin
            if not 0 <= dimension <= 3:
                raise source.fault(f"a node on an entity of dimension {dimension}")
            record = _PARAMETRIC[dimension]
            room = (len(source.data) - begin) // record.itemsize
            table = source.array(record, max(1, min(left, most, room)), "nodes")
            other = np.flatnonzero(table["dimension"] != dimension)
            most = 1 if len(other) else 2 * most
            table = table[: other[0]] if len(other) else table
            source.place = begin + record.itemsize * len(table)
            self._add_binary_nodes(table, begin)
            left -= len(table)

    def _add_binary_nodes(self, table, begin):
        places = table["place"].astype(np.float64)
        marks = begin + table.dtype.itemsize * np.arange(len(table))
        wrong = np.flatnonzero(~np.isfinite(places).all(axis=1))
        if len(wrong):
            raise Fault(self.source.path, "a coordinate is no finite number", offset=int(marks[wrong[0]]))
        self.builder.add_nodes(table["number"].astype(np.int64), places, marks)

    def _binary_elements(self):
        source = self.source
        (left,) = source.whole_numbers(1, "count of elements")
        while left > 0:
            begin = source.place
            number, count, tags = (int(value) for value in source.array(np.int32, 3, "head of elements"))
            nodes = msh_elements.node_count(number)
            if nodes is None or tags < 0 or not 0 < count <= left:
                raise Fault(
                    source.path,
                    f"no head of elements: type {number}, count {count}, tags {tags}",
                    offset=begin,
                )
            width = 1 + tags + nodes
            repeated = self._equal_heads(begin, width, left) if count == 1 else 0
            if repeated > 1:
                source.place = begin
                table = source.array(np.int32, repeated * (3 + width), "elements").reshape(
                    repeated, 3 + width
                )[:, 3:]
                marks = begin + 4 * (3 + width) * np.arange(repeated)
            else:
                table = source.array(np.int32, count * width, "elements").reshape(count, width)
                marks = begin + 12 + 4 * width * np.arange(count)
            left -= len(table)
            table = table.astype(np.int64)
            physical = table[:, 1] if tags else np.zeros(len(table), dtype=np.int64)
            self._add(number, table[:, 0], physical, table[:, 1 + tags :], marks)

    def _equal_heads(self, begin, width, left):
        """How many elements, each with a head equal to the one at `begin`, follow each other."""
        source = self.source
        record = 4 * (3 + width)
        most = min(left, (len(source.data) - begin) // record)
        if most < 2:
            return most
        table = np.frombuffer(source.data, np.int32, most * (3 + width), begin).reshape(most, 3 + width)
        same = (table[:, :3] == table[0, :3]).all(axis=1)
        return most if same.all() else int(np.argmin(same))


def _first_fault(path, lines, wrong, text):
    rows = np.flatnonzero(wrong)
    if len(rows):
        raise Fault(path, text, line=int(lines[rows[0]]))
