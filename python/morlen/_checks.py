"""The findings of morlen-check."""

from __future__ import annotations

import os
from typing import NamedTuple

from . import _core
from ._files import name_of, read_bytes, to_bytes


class Finding(NamedTuple):
    """A fault of a problem file, or a warning of it."""

    severity: str
    """"error" (the program refuses the file, or loses data of it) or "warning"."""
    code: str
    """The kind, a stable name such as "unknown-keyword"."""
    line: int | None
    """From 1; None for a finding of the whole file."""
    column: int | None
    text: str
    hint: str | None


def check(path: str | os.PathLike[str]) -> list[Finding]:
    """All findings in a problem file, by place; those of the whole file come last."""
    return check_text(read_bytes(name_of(path)))


def check_text(text: str | bytes) -> list[Finding]:
    """All findings in the text of a problem file."""
    return [
        Finding(severity, code, line or None, column or None, message, hint or None)
        for severity, code, line, column, message, hint in _core.check(to_bytes(text))
    ]
