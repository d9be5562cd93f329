"""The model that is written into a problem file.

Nodes have indices from 0 in the arrays of this module, elements their numbers in the file, from 1.
"""

from dataclasses import dataclass, field

import numpy as np


@dataclass
class Part:
    """One mesh of the file: elements of one type, their materials (from 1) and their numbers in the source."""

    element_type: str
    nodes: np.ndarray
    materials: np.ndarray
    numbers: np.ndarray
    first: int  # number of its first element


@dataclass
class Material:
    """A material: keys with values, and a line that explains it."""

    comment: str
    values: dict


@dataclass
class Supports:
    """Supported nodes in rising order: flags and values by component, Euler angles, and a label for each row."""

    nodes: np.ndarray
    flags: np.ndarray
    values: np.ndarray
    angles: np.ndarray
    labels: list


@dataclass
class NodalLoads:
    """Forces at nodes: one row of components a node."""

    label: str
    nodes: np.ndarray
    values: np.ndarray


@dataclass
class ElementLoads:
    """Records of one block of element loads: element and perhaps face, then three values."""

    block: str
    label: str
    places: np.ndarray
    values: np.ndarray


@dataclass
class Hinges:
    """Elements with one hinge code."""

    label: str
    elements: np.ndarray
    code: str


@dataclass
class Case:
    """A load case: loads and prescribed values in place of those of the model."""

    name: str
    title: str
    nodal: list = field(default_factory=list)
    elements: list = field(default_factory=list)
    prescribed: Supports = None
    gravity: bool = False


@dataclass
class Model:
    """All that a problem file says; `numbers` are those of the nodes in the source, or None."""

    source: str
    comments: list
    length: str
    force: str
    numbers: np.ndarray
    places: np.ndarray
    parts: list
    materials: list
    settings: list = field(default_factory=list)
    supports: Supports = None
    hinges: list = field(default_factory=list)
    nodal: list = field(default_factory=list)
    elements: list = field(default_factory=list)

    @property
    def components(self):
        """Components of a node: 3 in models of solids, else 6."""
        return 3 if self.parts[0].element_type == "Tetrahedra" else 6
