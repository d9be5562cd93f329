"""Bases of classes whose objects cannot be changed."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any

import numpy as np

from . import _core


class ReadOnlyArrays:
    """A base of classes with arrays: those out of a pickle cannot be written to either."""

    def __setstate__(self, state: dict[str, Any]) -> None:
        for name, value in state.items():
            vars(self)[name] = _core.read_only(value) if isinstance(value, np.ndarray) else value


class Fixed:
    """Public attributes are those of the class: another name, such as a misspelt one, raises.

    The keywords of the constructor are the public attributes that each object has by itself. Names
    with an underscore belong to the package.
    """

    def __init__(self, **public: object) -> None:
        vars(self).update(public)

    if not TYPE_CHECKING:  # mypy takes a class with this method to accept every name

        def __setattr__(self, name, value):
            if not name.startswith("_"):
                raise AttributeError(f"{type(self).__name__} has no attribute {name!r} that can be set")
            super().__setattr__(name, value)
