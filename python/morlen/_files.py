"""Files and texts for the module in C++."""

from __future__ import annotations

import os


def read_bytes(path: str | os.PathLike[str]) -> bytes:
    """The content of a file."""
    with open(path, "rb") as file:
        return file.read()


def to_bytes(text: str | bytes) -> bytes:
    """A text as the bytes of a file."""
    return text.encode("utf-8", "surrogateescape") if isinstance(text, str) else bytes(text)


def name_of(path: str | os.PathLike[str] | None) -> str | None:
    """The name of a file, or None."""
    return None if path is None else os.fspath(path)
