"""Materials and sections of an `.inp` file.

A beam section has two directions, n1 and n2 = t x n1 with the tangent t. They become y' and z' of the beam: the width
along n1 is that along y', the second moment of area I11 (bending about n1) is Iy.
"""

import math
from dataclasses import dataclass, field

import numpy as np

from morlen_import import inp_cards
from morlen_import.fault import Fault, count_of, shown
from morlen_import.model import Material
from morlen_import.writer import number_text

SECTION_TYPES = {
    "SOLID SECTION": ("C3D4", "C3D10"),
    "SHELL SECTION": ("S3", "S6"),
    "BEAM SECTION": ("B31", "B31R", "B32", "B32R"),
}
_BEAM_VALUES = {
    "RECT": ("two widths", 2),
    "CIRC": ("two diameters", 2),
    "PIPE": ("the outer radius and the wall", 2),
    "GENERAL": ("A, I11, I12, I22 and the torsion constant", 5),
}
_SHAPE_WORDS = {
    "RECT": "RECT, {} along y', {} along z'",
    "CIRC": "CIRC, diameter {}",
    "PIPE": "PIPE, outer radius {}, wall {}",
    "GENERAL": "GENERAL",
}
_PARALLEL = 1e-6


@dataclass
class Substance:
    """A material of the file."""

    name: str
    path: str
    line: int
    E: float = None
    nu: float = None
    density: float = None


@dataclass
class Section:
    """A section: its card, its material, and the values of the problem file that its shape gives.

    `words` tells the shape of beams with its measures, for a comment: the values alone do not show the widths.
    """

    card: object
    substance: Substance
    shape: dict = field(default_factory=dict)
    n1: tuple = (0.0, 0.0, -1.0)
    words: str = ""

    def title(self):
        """The comment of its material in the problem file."""
        title = f"{self.card.keyword.capitalize()} of {self.card.parameters['ELSET']}: {self.substance.name}"
        return f"{title}; {self.words}" if self.words else title

    def mass_factor(self):
        """Volume per size of the element: 1 for solids, the thickness of shells, the area of beams."""
        if self.card.keyword == "SHELL SECTION":
            return self.shape["t"]
        if self.card.keyword == "BEAM SECTION":
            return self.shape["A"]
        return 1.0

    def values(self):
        """Keys of a material record, without local axes and weight."""
        E, nu = self.substance.E, self.substance.nu
        if self.card.keyword == "SOLID SECTION":
            return {"E": E, "nu": nu}
        shear = E / (2.0 * (1.0 + nu))
        if self.card.keyword == "SHELL SECTION":
            return {"E": E, "nu": nu, "G": shear, **self.shape}
        return {"E": E, "G": shear, **self.shape}


class SectionReader:
    """Reads the cards of materials and sections."""

    def __init__(self):
        self._substances = {}
        self._last = None
        self.sections = []
        self.readers = {
            "MATERIAL": self._material,
            "ELASTIC": self._elastic,
            "DENSITY": self._density,
            **{keyword: self._section for keyword in SECTION_TYPES},
        }

    def _material(self, card):
        card.check_parameters()
        name = card.need("NAME")
        if name.upper() in self._substances:
            raise card.fault(f"the material {shown(name)} is given twice")
        if card.data:
            raise card.fault("it has no data", next(card.rows())[1])
        self._last = self._substances[name.upper()] = Substance(name, card.path, card.line)

    def _of_material(self, card, attribute):
        if self._last is None:
            raise card.fault("*MATERIAL is missing before it")
        if getattr(self._last, attribute) is not None:
            raise card.fault(f"the material {shown(self._last.name)} has it already")

    def _elastic(self, card):
        card.check_parameters()
        self._of_material(card, "E")
        if card.parameters.get("TYPE", "ISO").upper() not in ("ISO", "ISOTROPIC"):
            raise card.fault("only TYPE=ISO is read")
        self._last.E, self._last.nu = _one_row(card, 2, "Young's modulus and Poisson's ratio")
        if not self._last.E > 0:
            raise card.fault("Young's modulus is not positive", next(card.rows())[1])
        if not self._last.nu > -1:
            raise card.fault("Poisson's ratio is not above -1", next(card.rows())[1])

    def _density(self, card):
        card.check_parameters()
        self._of_material(card, "density")
        (self._last.density,) = _one_row(card, 1, "the density")
        if not self._last.density > 0:
            raise card.fault("the density is not positive", next(card.rows())[1])

    def _section(self, card):
        card.check_parameters()
        card.need("ELSET")
        # The material may come later in the file.
        section = Section(card, card.need("MATERIAL"))
        if card.keyword == "SOLID SECTION":
            for path, line, fields in card.rows():
                # The thickness of plane elements may be here, which tetrahedra do not have.
                if any(fields) and (len(fields) > 1 or inp_cards.value_of(fields[0]) is None):
                    raise card.fault("a section of tetrahedra has no data", line, path)
        elif card.keyword == "SHELL SECTION":
            section.shape = {"t": _thickness(card)}
        else:
            section.shape, section.words, n1 = _beam_shape(card)
            section.n1 = n1 or section.n1
        self.sections.append(section)

    def finish(self):
        """The sections with their materials."""
        for section in self.sections:
            name = section.substance
            substance = self._substances.get(name.upper())
            if substance is None:
                raise section.card.fault(f"there is no material {shown(name)}")
            if substance.E is None:
                raise Fault(
                    substance.path, f"*MATERIAL: {shown(substance.name)} has no *ELASTIC", line=substance.line
                )
            section.substance = substance
        return self.sections


def _one_row(card, count, what):
    rows = list(card.rows())
    if len(rows) != 1:
        raise card.fault(
            f"one line is needed: {what}",
            rows[1][1] if rows else None,
            hint="values by temperature are not read" if rows else None,
        )
    path, line, fields = rows[0]
    if len(fields) != count:
        raise card.fault(f"{count_of(count, 'number')} needed: {what}", line, path)
    return [inp_cards.need_number(card, path, line, word, what) for word in fields]


def _thickness(card):
    rows = list(card.rows())
    if len(rows) != 1 or len(rows[0][2]) not in (1, 2):
        raise card.fault(
            "one line is needed: the thickness, and perhaps the count of points",
            rows[-1][1] if rows else None,
        )
    path, line, fields = rows[0]
    thickness = inp_cards.need_number(card, path, line, fields[0], "thickness")
    if not thickness > 0:
        raise card.fault("the thickness is not positive", line, path)
    if len(fields) == 2:
        inp_cards.need_whole(card, path, line, fields[1], "points over the thickness")
    return thickness


def _beam_shape(card):
    """Values of the section's shape, its words, and n1 if it is given."""
    name = card.need("SECTION").upper()
    if name not in _BEAM_VALUES:
        raise card.fault(f"SECTION={shown(name)} is not read, only {', '.join(_BEAM_VALUES)}")
    what, count = _BEAM_VALUES[name]
    rows = list(card.rows())
    if not 1 <= len(rows) <= 2:
        raise card.fault(f"one or two lines are needed: {what}; n1", rows[2][1] if rows else None)
    path, line, fields = rows[0]
    if len(fields) != count:
        raise card.fault(f"{count_of(count, 'number')} needed: {what}", line, path)
    values = [inp_cards.need_number(card, path, line, word, what) for word in fields]
    shape, fault = _SHAPES[name](*values)
    if fault:
        raise card.fault(fault, line, path)
    words = _SHAPE_WORDS[name].format(*map(number_text, values))
    return shape, words, _direction(card, *rows[1]) if len(rows) == 2 else None


def _direction(card, path, line, fields):
    if len(fields) != 3:
        raise card.fault("n1 has three components", line, path)
    n1 = tuple(inp_cards.need_number(card, path, line, word, "n1") for word in fields)
    if not any(n1):
        raise card.fault("n1 is 0", line, path)
    return n1


def _rectangle(along_n1, along_n2):
    if min(along_n1, along_n2) <= 0:
        return {}, "a width is not positive"
    area = along_n1 * along_n2
    constants = {
        "A": area,
        "Iy": area * along_n2**2 / 12.0,
        "Iz": area * along_n1**2 / 12.0,
        "J": _rectangle_torsion(max(along_n1, along_n2), min(along_n1, along_n2)),
    }
    return constants, ""


def _rectangle_torsion(long, short):
    """The torsion constant of a rectangle (S. P. Timoshenko, J. N. Goodier, Theory of Elasticity, 1951, chapter 11)."""
    ratio = long / short
    # Term n is below 1/n^5: those that are left out change the sum by less than 1e-9.
    series = sum(math.tanh(0.5 * n * math.pi * ratio) / n**5 for n in range(1, 200, 2))
    return long * short**3 / 3.0 * (1.0 - 192.0 / math.pi**5 / ratio * series)


def _circle(first, second):
    if first <= 0:
        return {}, "the diameter is not positive"
    if first != second:
        return {}, "the two diameters differ: ellipses are not read"
    radius = 0.5 * first
    return _round(math.pi * radius**2, 0.25 * math.pi * radius**4), ""


def _pipe(radius, wall):
    if not 0 < wall <= radius:
        return {}, "the wall is not between 0 and the outer radius"
    inner = radius - wall
    return _round(math.pi * (radius**2 - inner**2), 0.25 * math.pi * (radius**4 - inner**4)), ""


def _round(area, second_moment):
    return {"A": area, "Iy": second_moment, "Iz": second_moment, "J": 2.0 * second_moment}


def _general(area, i11, i12, i22, torsion):
    if i12 != 0:
        return {}, "I12 is not 0: turn the section to its principal axes"
    if min(area, i11, i22, torsion) <= 0:
        return {}, "A, I11, I22 and the torsion constant must be positive"
    return {"A": area, "Iy": i11, "Iz": i22, "J": torsion}, ""


_SHAPES = {"RECT": _rectangle, "CIRC": _circle, "PIPE": _pipe, "GENERAL": _general}


def beam_axes(section, tangents, numbers):
    """Local axes (rows x', y', z') of beams with the given unit tangents; y' is n1 less its part along the beam."""
    n1 = np.array(section.n1) / np.linalg.norm(section.n1)
    across = n1 - tangents * (tangents @ n1)[:, None]
    length = np.linalg.norm(across, axis=1)
    wrong = np.flatnonzero(length < _PARALLEL)
    if len(wrong):
        default = "" if len(list(section.card.rows())) == 2 else " (the default 0, 0, -1)"
        raise section.card.fault(f"n1{default} is along element {numbers[wrong[0]]}")
    y = across / length[:, None]
    return np.stack([tangents, y, np.cross(tangents, y)], axis=1)


def default_axes(tangents):
    """Axes that beams in space have without Euler angles: y' horizontal, z' upwards; y' along X in vertical beams."""
    lean = np.hypot(tangents[:, 0], tangents[:, 1])
    with np.errstate(invalid="ignore", divide="ignore"):
        y = np.column_stack([-tangents[:, 1], tangents[:, 0], np.zeros(len(tangents))]) / lean[:, None]
        upright = np.array([1.0, 0.0, 0.0]) - tangents * tangents[:, :1]
        upright /= np.linalg.norm(upright, axis=1)[:, None]
    y = np.where((lean <= 1e-6)[:, None], upright, y)
    return np.stack([tangents, y, np.cross(tangents, y)], axis=1)


def euler_angles(axes):
    """Euler1, Euler2, Euler3 of rows of axes: turns about z, the new x and the new z."""
    x, y, z = axes[:, 0], axes[:, 1], axes[:, 2]
    sine = np.hypot(z[:, 0], z[:, 1])
    vertical = sine < 1e-9
    first = np.where(vertical, 0.0, np.arctan2(x[:, 2], -y[:, 2]))
    second = np.where(vertical, np.where(z[:, 2] > 0, 0.0, math.pi), np.arctan2(sine, z[:, 2]))
    third = np.where(vertical, np.arctan2(-x[:, 1], x[:, 0]), np.arctan2(z[:, 0], z[:, 1]))
    return np.column_stack([first, second, third]) + 0.0


class MaterialTable:
    """Materials of the problem file: one for each section, of beams one for each section and set of axes."""

    def __init__(self):
        self.materials = []
        self.sections = []

    def add(self, section, count):
        """Numbers for `count` elements of a section without local axes."""
        return np.full(count, self._append(section, {}))

    def add_beams(self, section, tangents, numbers):
        """Numbers for beams with the given tangents."""
        axes = beam_axes(section, tangents, numbers)
        as_usual = np.abs(axes - default_axes(tangents)).max(axis=(1, 2)) < 1e-12
        angles = np.where(as_usual[:, None], np.inf, euler_angles(axes))
        rounded = np.where(np.isfinite(angles), np.round(angles, 9), 99.0)
        _, first, group = np.unique(rounded, axis=0, return_index=True, return_inverse=True)
        made = np.zeros(len(first), dtype=np.int64)
        for k in np.argsort(first):
            own = angles[first[k]]
            keys = ("Euler1", "Euler2", "Euler3")
            made[k] = self._append(section, dict(zip(keys, own.tolist())) if np.isfinite(own).all() else {})
        return made[group.ravel()]

    def _append(self, section, angles):
        self.materials.append(Material(section.title(), {**section.values(), **angles}))
        self.sections.append(section)
        return len(self.materials)
