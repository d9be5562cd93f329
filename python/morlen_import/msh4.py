"""Sections of `.msh` 4.1."""

import numpy as np

from morlen_import import msh_elements, numbers
from morlen_import.fault import Fault


class Reader:
    """Reads entities, nodes and elements into a builder."""

    def __init__(self, source, builder):
        self.source = source
        self.builder = builder
        builder.where = "offset" if source.is_binary else "line"
        self._groups = {}
        binary = source.is_binary
        self.sections = {
            "Entities": self._binary_entities if binary else self._text_entities,
            "Nodes": self._nodes,
            "Elements": self._elements,
        }

    def _text_entities(self):
        counts = self.source.whole_numbers(4, "counts of entities")
        for dimension, count in enumerate(counts):
            self.source.require_room(count, "count of entities")
            for _ in range(count):
                words = self.source.line().split()
                box = 3 if dimension == 0 else 6
                groups = self._text_groups(words, box, dimension)
                self._set_groups(
                    dimension,
                    numbers.require_whole(
                        self.source.path, self.source.mark, words[0], "number of an entity"
                    ),
                    groups,
                )

    def _text_groups(self, words, box, dimension):
        """The physical groups in a line: number, box, count of groups, groups, count of bounds, bounds."""

        def whole(place):
            if place >= len(words):
                raise self.source.fault("the line of an entity is too short")
            return numbers.require_whole(self.source.path, self.source.mark, words[place], "an entity")

        for word in words[1 : 1 + box]:
            numbers.require_number(self.source.path, self.source.mark, word, "an entity")
        count = whole(1 + box)
        groups = [whole(2 + box + k) for k in range(count)] if 0 <= count <= len(words) else None
        if groups is None:
            raise self.source.fault(f"an entity cannot have {count} groups")
        length = 2 + box + count
        if dimension:
            bounds = whole(length)
            length += 1 + bounds
        if len(words) != length:
            raise self.source.fault(f"the line of an entity has {len(words)} numbers in place of {length}")
        return groups

    def _binary_entities(self):
        source = self.source
        counts = source.array(np.uint64, 4, "counts of entities")
        for dimension, count in enumerate(counts):
            for _ in range(int(count)):
                (tag,) = source.array(np.int32, 1, "number of an entity")
                source.array(np.float64, 3 if dimension == 0 else 6, "box of an entity")
                groups = source.array(np.int32, self._size(), "groups of an entity")
                if dimension:
                    source.array(np.int32, self._size(), "bounds of an entity")
                self._set_groups(dimension, int(tag), [int(group) for group in groups])

    def _set_groups(self, dimension, tag, groups):
        if (dimension, tag) in self._groups:
            raise self.source.fault(f"entity {tag} of dimension {dimension} is given twice")
        # A negative number is the group with the direction reversed.
        self._groups[(dimension, tag)] = [abs(group) for group in groups]

    def _size(self):
        return int(self.source.array(np.uint64, 1, "a count")[0])

    def _head(self, count, what):
        """`count` whole numbers: of a section (sizes), or of a block (three ints and a size)."""
        source = self.source
        if not source.is_binary:
            return source.whole_numbers(4, what)
        if count == 4:
            return [int(value) for value in source.array(np.uint64, 4, what)]
        return [int(value) for value in source.array(np.int32, 3, what)] + [self._size()]

    def _nodes(self):
        blocks, total, _, _ = self._head(4, "counts of nodes")
        found = 0
        for _ in range(self._block_count(blocks)):
            begin = self.source.mark
            dimension, _, parametric, count = self._head(3, "head of a block of nodes")
            if not 0 <= dimension <= 3 or parametric not in (0, 1):
                raise self._at_head(begin, "no head of a block of nodes")
            self._block_of_nodes(count, 3 + (dimension if parametric else 0))
            found += count
        if found != total:
            raise self.source.fault(f"the section has {found} nodes in place of {total}")

    def _block_of_nodes(self, count, columns):
        source = self.source
        if source.is_binary:
            tags = self._whole(source.array(np.uint64, count, "numbers of nodes"))
            begin = source.place
            table = (
                source.array(np.float64, count * columns, "coordinates")
                .astype(np.float64)
                .reshape(count, columns)
            )
            marks = begin + 8 * columns * np.arange(count)
            wrong = np.flatnonzero(~np.isfinite(table).all(axis=1))
            if len(wrong):
                raise Fault(source.path, "a coordinate is no finite number", offset=int(marks[wrong[0]]))
        else:
            tags = source.rows(count, 1, 1, "the number of a node")[0][:, 0]
            table, marks = source.rows(count, columns, 0, "the coordinates of a node")
        self.builder.add_nodes(tags.astype(np.int64), table[:, :3].copy(), marks)

    def _elements(self):
        blocks, total, _, _ = self._head(4, "counts of elements")
        found = 0
        for _ in range(self._block_count(blocks)):
            begin = self.source.mark
            dimension, entity, number, count = self._head(3, "head of a block of elements")
            nodes = msh_elements.node_count(number)
            if nodes is None or not 0 <= dimension <= 3:
                raise self._at_head(
                    begin, f"no head of a block of elements: dimension {dimension}, type {number}"
                )
            if count:
                self._block_of_elements(dimension, entity, number, count, nodes)
            found += count
        if found != total:
            raise self.source.fault(f"the section has {found} elements in place of {total}")

    def _block_of_elements(self, dimension, entity, number, count, nodes):
        source = self.source
        if source.is_binary:
            begin = source.place
            table = self._whole(source.array(np.uint64, count * (1 + nodes), "elements")).reshape(
                count, 1 + nodes
            )
            marks = begin + 8 * (1 + nodes) * np.arange(count)
        else:
            table, marks = source.rows(
                count, 1 + nodes, 1 + nodes, f"an element of type {number}: its number, its nodes"
            )
        added = msh_elements.add_elements(self.builder, number, table[:, 0], table[:, 1:], marks)
        if added is None:
            return
        kind, first = added
        for group in self._groups.get((dimension, entity), []):
            self.builder.join(dimension, group, kind, np.arange(first, first + count))

    def _block_count(self, blocks):
        # Blocks may be empty, but each has a head.
        if self.source.is_binary:
            return blocks
        self.source.require_room(blocks, "count of blocks")
        return blocks

    def _at_head(self, begin, text):
        if self.source.is_binary:
            return Fault(self.source.path, text, offset=begin)
        return self.source.fault(text)

    def _whole(self, values):
        if len(values) and int(values.max()) >= numbers.LARGEST:
            raise self.source.fault("a number of a node or an element is too large")
        return values.astype(np.int64)
