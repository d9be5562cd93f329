"""Loads and supports of the steps of an `.inp` file.

Within a step loads on one node and component, or on one face, add up. In a later step they replace the earlier value,
and all others stay. OP=NEW drops the earlier loads of its kind of card: *CLOAD, *DLOAD with *DSLOAD, or *BOUNDARY.
"""

from dataclasses import dataclass, field

import numpy as np

from morlen_import import inp_cards, numbers
from morlen_import.fault import numbered, shown, warn
from morlen_import.mesh import KINDS

# Faces P1 to P4 and S1 to S4 of a tetrahedron as sides of the problem file; second: of one that was turned.
_SIDES = np.array([[0, 3, 1, 2], [0, 2, 1, 3]])
_NAMED = {
    "ENCASTRE": range(6),
    "PINNED": range(3),
    "XSYMM": (0, 4, 5),
    "YSYMM": (1, 3, 5),
    "ZSYMM": (2, 3, 4),
}


class Quantity:
    """Values that a step may replace: those of earlier steps, and those of this one."""

    def __init__(self, shape):
        self.values = np.zeros(shape)
        self.given = np.zeros(shape, dtype=bool)
        self._new = {}

    def clear(self):
        """Drops the values of earlier steps."""
        self.values = np.zeros_like(self.values)
        self.given = np.zeros_like(self.given)

    def add(self, rows, column, value):
        """Adds a value at rows of one column."""
        new = self._column(column)
        new[0][rows] += value
        new[1][rows] = True

    def set(self, rows, column, value):
        """Sets a value at rows; gives a row that this step has set to another value, or None."""
        new = self._column(column)
        clash = rows[new[1][rows] & (new[0][rows] != value)]
        new[0][rows] = value
        new[1][rows] = True
        return int(clash[0]) if len(clash) else None

    def _column(self, column):
        count = len(self.values)
        return self._new.setdefault(column, (np.zeros(count), np.zeros(count, dtype=bool)))

    def end_step(self):
        """Takes over the values of this step."""
        if self._new:
            self.values = self.values.copy()
            self.given = self.given.copy()
        for column, (values, given) in self._new.items():
            self.values[given, column] = values[given]
            self.given[given, column] = True
        self._new = {}


@dataclass
class Step:
    """The state at the end of a step; the arrays are not changed afterwards."""

    number: int
    title: str
    line: int
    forces: np.ndarray
    faces: np.ndarray
    gravity: np.ndarray
    held: np.ndarray
    prescribed: np.ndarray
    support_card: object = None


@dataclass
class Surface:
    """Faces of elements: their elements and the label of the face."""

    card: object
    parts: list = field(default_factory=list)


class StepReader:
    """Reads the cards of loads and supports, before and in steps.

    `has_section` is true for the elements that have one, `used` for their nodes.
    """

    def __init__(self, source, solids, has_section, used):
        self._source = source
        self._solids = solids
        self._has_section = has_section
        nodes, elements = len(source.mesh.numbers), len(source.numbers)
        self._forces = Quantity((nodes, 6))
        self._faces = Quantity((elements, 4))
        self._gravity = Quantity((elements, 3))
        self._supports = Quantity((nodes, 6))
        self._used = used
        self._surfaces = {}
        self._step = None
        self._has_static = False
        self._support_card = None
        self._warned = set()
        self.gravity_card = None
        self.steps = []
        self.readers = {
            "SURFACE": self._surface,
            "BOUNDARY": self._boundary,
            "STEP": self._begin,
            "STATIC": self._static,
            "CLOAD": self._cload,
            "DLOAD": self._dload,
            "DSLOAD": self._dsload,
            "END STEP": self._end,
        }

    def finish(self):
        """Refuses a step without end; without steps the supports are those before them."""
        if self._step is not None:
            raise self._step.fault("the step has no *END STEP")
        if not self.steps:
            self._supports.end_step()
            self._save("", 0)

    def _begin(self, card):
        if self._step is not None:
            raise card.fault("the step before it has no *END STEP")
        nlgeom = card.parameters.get("NLGEOM")
        if nlgeom is not None and nlgeom.upper() != "NO":
            raise card.fault("NLGEOM: only small displacements are computed")
        if "PERTURBATION" in card.parameters:
            raise card.fault("PERTURBATION is not read")
        card.check_parameters()
        if not self.steps:
            self._supports.end_step()
        self._step = card
        self._has_static = False

    def _static(self, card):
        self._need_step(card)
        card.check_parameters()
        self._has_static = True

    def _end(self, card):
        card.check_parameters()
        self._need_step(card)
        for path, line, _ in card.rows():
            raise card.fault("no data belong here", line, path)
        if not self._has_static:
            raise self._step.fault("the step has no *STATIC")
        for quantity in (self._forces, self._faces, self._gravity, self._supports):
            quantity.end_step()
        title = " ".join(",".join(fields) for _, _, fields in self._step.rows())
        self._save(title or self._step.parameters.get("NAME", ""), self._step.line)
        self._step = None

    def _save(self, title, line):
        self.steps.append(
            Step(
                len(self.steps) + 1,
                title,
                line,
                self._forces.values,
                self._faces.values,
                self._gravity.values,
                self._supports.given,
                self._supports.values,
                self._support_card,
            )
        )

    def _need_step(self, card):
        if self._step is None:
            raise card.fault("it belongs between *STEP and *END STEP")

    def _operation(self, card, *quantities):
        op = card.parameters.get("OP", "MOD").upper()
        if op not in ("NEW", "MOD"):
            raise card.fault(f"OP={shown(op)} is not read")
        if op == "NEW":
            for quantity in quantities:
                quantity.clear()

    def _nodes(self, card, path, line, word):
        """Indices of the node of a number, or of the nodes of a set."""
        source = self._source
        return self._find(card, path, line, word, "node", source.node_sets, source.find_nodes)

    def _elements(self, card, path, line, word):
        """Indices of the element of a number, or of the elements of a set."""
        source = self._source
        return self._find(card, path, line, word, "element", source.element_sets, source.find_elements)

    def _find(self, card, path, line, word, what, sets, finder):
        name = word.strip('"')
        number = numbers.whole_of(word)
        hint = None
        if number is not None:
            if name in sets:
                hint = f'{number} is the number of a {what}; the set of this name is written "{name}"'
            found = finder(np.array([number]))
            if found[0] < 0:
                raise card.fault(f"there is no {what} {number}", line, path, hint)
            if hint:
                self._warn_once(card, hint, line)
            return found
        if name in sets:
            return sets.members(name, finder)
        if what == "node" and name in self._source.element_sets:
            hint = f"{shown(word)} is a set of elements: *NSET, NSET=name, ELSET={shown(word)} makes a set of its nodes"
        raise card.fault(f"there is no {what} or set of {what}s {shown(word)}", line, path, hint)

    def _boundary(self, card):
        card.check_parameters()
        if card.parameters.get("TYPE", "DISPLACEMENT").upper() != "DISPLACEMENT":
            raise card.fault("only TYPE=DISPLACEMENT is read")
        self._operation(card, self._supports)
        self._support_card = card
        for path, line, fields in card.rows():
            if not 2 <= len(fields) <= 4:
                raise card.fault(
                    "a line has a node or a set, the first and the last component, and a value", line, path
                )
            nodes = self._nodes(card, path, line, fields[0])
            components, value = self._components(card, path, line, fields)
            if value != 0 and self._step is None:
                raise card.fault("a value other than 0 belongs into a step", line, path)
            self._hold(card, path, line, nodes, components, value)

    def _components(self, card, path, line, fields):
        named = fields[1].upper()
        if named in _NAMED:
            if len(fields) != 2:
                raise card.fault(f"a field too many after {named}", line, path)
            return _NAMED[named], 0.0
        first = inp_cards.need_whole(card, path, line, fields[1], "first component")
        last = (
            inp_cards.need_whole(card, path, line, fields[2], "last component")
            if len(fields) > 2 and fields[2]
            else first
        )
        if not 1 <= first <= last <= 6:
            raise card.fault(f"no components {first} to {last}: they are 1 to 6", line, path)
        value = (
            inp_cards.need_number(card, path, line, fields[3], "value")
            if len(fields) == 4 and fields[3]
            else 0.0
        )
        return range(first - 1, last), value

    def _hold(self, card, path, line, nodes, components, value):
        unused = nodes[~self._used[nodes]]
        if len(unused):
            self._warn_once(
                card,
                numbered(
                    self._source.mesh.numbers[unused],
                    "support is left out, because no element with a section has its node",
                    "supports are left out, because no element with a section has their nodes",
                ),
                line,
            )
        nodes = nodes[self._used[nodes]]
        for component in components:
            if self._solids and component > 2:
                if value != 0:
                    raise card.fault("nodes of solids have no rotations", line, path)
                self._warn_once(
                    card, "nodes of solids have no rotations: components 4 to 6 are left out", line
                )
                continue
            clash = self._supports.set(nodes, component, value)
            if clash is not None:
                raise card.fault(
                    f"node {self._source.mesh.numbers[clash]} has another value for component {component + 1}"
                    " in the same step",
                    line,
                    path,
                )

    def _warn_once(self, card, text, line):
        if text not in self._warned:
            self._warned.add(text)
            warn(card.path, text, line)

    def _cload(self, card):
        self._need_step(card)
        card.check_parameters()
        self._operation(card, self._forces)
        for path, line, fields in card.rows():
            if len(fields) != 3:
                raise card.fault("a line has a node or a set, a component and a force", line, path)
            nodes = self._nodes(card, path, line, fields[0])
            component = inp_cards.need_whole(card, path, line, fields[1], "component")
            if not 1 <= component <= (3 if self._solids else 6):
                raise card.fault(f"no component {component} in this model", line, path)
            lost = nodes[~self._used[nodes]]
            if len(lost):
                raise card.fault(
                    f"node {self._source.mesh.numbers[lost[0]]} belongs to no element with a section",
                    line,
                    path,
                )
            self._forces.add(
                nodes, component - 1, inp_cards.need_number(card, path, line, fields[2], "force")
            )

    def _dload(self, card):
        self._need_step(card)
        card.check_parameters()
        self._operation(card, self._faces, self._gravity)
        for path, line, fields in card.rows():
            if len(fields) < 2:
                raise card.fault("a line has an element or a set, a kind of load and its values", line, path)
            label = fields[1].upper()
            if label == "GRAV" and not fields[0]:
                elements = np.flatnonzero(self._has_section)  # without a set: the whole model
            else:
                elements = self._loaded(card, path, line, self._elements(card, path, line, fields[0]))
            if label == "GRAV":
                self._add_gravity(card, path, line, elements, fields[2:])
            else:
                if len(fields) != 3:
                    raise card.fault("a pressure has one value", line, path)
                value = inp_cards.need_number(card, path, line, fields[2], "pressure")
                self._add_face(card, path, line, elements, label, value)

    def _loaded(self, card, path, line, elements):
        lost = elements[~self._has_section[elements]]
        if len(lost):
            raise card.fault(f"element {self._source.numbers[lost[0]]} has no section", line, path)
        return elements

    def _add_gravity(self, card, path, line, elements, fields):
        if len(fields) != 4:
            raise card.fault("GRAV has an acceleration and three components of its direction", line, path)
        values = [inp_cards.need_number(card, path, line, word, "GRAV") for word in fields]
        direction = np.array(values[1:])
        length = np.linalg.norm(direction)
        if not length > 0:
            raise card.fault("GRAV has no direction", line, path)
        for k in range(3):
            self._gravity.add(elements, k, values[0] * direction[k] / length)
        self.gravity_card = (card, path, line)

    def _add_face(self, card, path, line, elements, label, value):
        """A load P or P1 to P4 of *DLOAD."""
        triangles = self._dimension(elements) == 2
        if label == "P" and triangles.all():
            self._faces.add(elements, 0, value)
        elif label in ("P1", "P2", "P3", "P4") and (self._dimension(elements) == 3).all():
            self._add_sides(elements, int(label[1]) - 1, value)
        else:
            raise card.fault(
                f"the load {shown(label)} is not read on these elements: P1 to P4 act on tetrahedra, P on"
                " shells, GRAV on all",
                line,
                path,
            )

    def _add_sides(self, elements, face, value):
        turned = self._turned(elements)
        for flag in (0, 1):
            self._faces.add(elements[turned == flag], int(_SIDES[flag, face]), value)

    def _turned(self, elements):
        """1 for tetrahedra whose corners were exchanged."""
        turned = np.zeros(len(elements), dtype=np.int64)
        for kind in ("tet4", "tet10"):
            if kind in self._source.kind_names:
                own = self._source.kinds[elements] == self._source.kind_names.index(kind)
                turned[own] = self._source.mesh.cells[kind].turned[self._source.rows[elements[own]]]
        return turned

    def _dimension(self, elements):
        of_kind = np.array([KINDS[kind].dimension for kind in self._source.kind_names])
        return of_kind[self._source.kinds[elements]]

    def _surface(self, card):
        card.check_parameters()
        name = card.need("NAME")
        if card.parameters.get("TYPE", "ELEMENT").upper() != "ELEMENT":
            raise card.fault("only surfaces of elements are read, TYPE=ELEMENT")
        if name.upper() in self._surfaces:
            raise card.fault(f"the surface {shown(name)} is given twice")
        surface = self._surfaces[name.upper()] = Surface(card)
        for path, line, fields in card.rows():
            if len(fields) != 2:
                raise card.fault("a line has an element or a set, and a face", line, path)
            elements = self._elements(card, path, line, fields[0])
            label = fields[1].upper()
            dimension = {"S1": 3, "S2": 3, "S3": 3, "S4": 3, "SPOS": 2, "SNEG": 2}.get(label)
            if dimension is None or not (self._dimension(elements) == dimension).all():
                raise card.fault(
                    f"no face {shown(label)} on these elements: S1 to S4 are of tetrahedra, SPOS and SNEG of"
                    " shells",
                    line,
                    path,
                )
            surface.parts.append((elements, label))

    def _dsload(self, card):
        self._need_step(card)
        card.check_parameters()
        self._operation(card, self._faces, self._gravity)
        for path, line, fields in card.rows():
            if len(fields) != 3 or fields[1].upper() != "P":
                raise card.fault("a line has a surface, P and a pressure", line, path)
            surface = self._surfaces.get(fields[0].strip('"').upper())
            if surface is None:
                raise card.fault(f"there is no surface {shown(fields[0])}", line, path)
            value = inp_cards.need_number(card, path, line, fields[2], "pressure")
            for elements, label in surface.parts:
                self._loaded(card, path, line, elements)
                if label[0] == "S" and label[1:].isdigit():
                    self._add_sides(elements, int(label[1]) - 1, value)
                else:
                    # A pressure acts into the surface: on SPOS against z'.
                    self._faces.add(elements, 0, -value if label == "SPOS" else value)
