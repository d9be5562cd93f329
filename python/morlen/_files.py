"""Files and texts for the module in C++."""

from __future__ import annotations

import os


def name_of(path: str | os.PathLike[str]) -> str:
    """The name of a file. Raises TypeError for what is not a name, such as a file descriptor."""
    if isinstance(path, (str, os.PathLike)):
        name = os.fspath(path)
        if isinstance(name, str):
            return name
    raise TypeError(f"the name of a file is a str or a path, not {path!r}")


def encoded(name: str) -> bytes:
    """The name of a file as the system has it, with every byte."""
    return os.fsencode(name)


def read_bytes(name: str) -> bytes:
    """The content of a file."""
    with open(name, "rb") as file:
        return file.read()


def to_bytes(text: str | bytes | bytearray | memoryview) -> bytes:
    """A text as the bytes of a file."""
    if isinstance(text, str):
        return text.encode("utf-8", "surrogateescape")
    if isinstance(text, (bytes, bytearray, memoryview)):
        return bytes(text)
    raise TypeError(f"the text of a problem file is str or bytes, not {type(text).__name__}")
