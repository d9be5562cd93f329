"""The exception of the package, and its warning."""

from __future__ import annotations


class Error(Exception):
    """A problem file or a model that the program refuses, or a file that cannot be written.

    message: the text of the program; line, column: the place in the problem file, from 1, or None;
    hint: an explanation, or None.
    """

    message: str
    line: int | None
    column: int | None
    hint: str | None

    def __init__(
        self,
        message: str,
        line: int | None = None,
        column: int | None = None,
        hint: str | None = None,
    ) -> None:
        hint = hint or None
        super().__init__(message, line, column, hint)
        self.message = message
        self.line = line
        self.column = column
        self.hint = hint

    def __str__(self) -> str:
        place = f"line {self.line}, column {self.column}: " if self.line else ""
        return place + self.message + (f" (hint: {self.hint})" if self.hint else "")


class ModelWarning(UserWarning):
    """The model was solved, but its results deserve a look."""
