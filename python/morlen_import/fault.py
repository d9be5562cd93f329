"""Errors with a place in a file, and warnings."""

import difflib
import os
import sys

_NEAR = 0.75  # of 1: below it, words of other meanings are proposed


class Fault(Exception):
    """An error of the user's files: what is wrong, and where.

    The place is a line (from 1), an offset in bytes (from 0) or a key of a map. Without any of them the error is
    about the whole file.
    """

    def __init__(self, path, text, *, line=None, offset=None, key=None, hint=None):
        super().__init__(text)
        place = str(path)
        if line is not None:
            place += f":{line}"
        parts = [place, "error"]
        if offset is not None:
            parts.append(f"offset {offset}")
        if key is not None:
            parts.append(key)
        parts.append(text)
        self.lines = [": ".join(parts)]
        if hint:
            self.lines.append(f"hint: {hint}")


class Faults(Exception):
    """Several errors that one pass has found."""

    def __init__(self, faults):
        super().__init__("several faults")
        self.lines = [line for fault in faults for line in fault.lines]


def warn(path, text, line=None):
    """Writes a warning about a file to the standard error."""
    place = f"{path}:{line}" if line is not None else str(path)
    print(f"{place}: warning: {text}", file=sys.stderr)


def did_you_mean(word, known):
    """'; did you mean ...?', or nothing when no known word is near. Words with letters exchanged are near."""
    word = str(word).lower()
    lower = {str(k).lower(): k for k in known}
    near = difflib.get_close_matches(word, lower, n=1, cutoff=_NEAR)
    near += [other for other in lower if sorted(other) == sorted(word)]
    return f"; did you mean '{lower[near[0]]}'?" if near else ""


def shown(text, limit=60):
    """Any text of a file on one line, for messages."""
    clean = "".join(c if c.isprintable() else "?" for c in str(text))
    return clean if len(clean) <= limit else clean[: limit - 3] + "..."


def count_of(number, singular, plural=None):
    """'1 node', '3 nodes'."""
    return f"{number} {singular if number == 1 else plural or singular + 's'}"


def numbered(numbers, one, many):
    """'1 node is left out: 5', '3 nodes are left out: 5, 7-8'; `one` and `many` are the texts after the count."""
    return f"{count_of(len(numbers), one, many)}: {ranges(sorted(map(int, numbers)))}"


def ranges(numbers, limit=8):
    """Sorted numbers as '1-4, 7, 9-12'; the rest is counted after `limit` parts."""
    parts = []
    first = last = None
    for number in numbers:
        number = int(number)
        if last is not None and number == last + 1:
            last = number
            continue
        if last is not None:
            parts.append((first, last))
        if len(parts) == limit:
            return ", ".join(map(_range, parts)) + ", ..."
        first = last = number
    if last is not None:
        parts.append((first, last))
    return ", ".join(map(_range, parts))


def _range(pair):
    first, last = pair
    if first == last:
        return str(first)
    return f"{first}-{last}" if last > first + 1 else f"{first}, {last}"


class LostOutput(Exception):
    """Something printed on standard output is lost, for example because a disk is full."""


def finish_output(text):
    """Writes a text on standard output and empties its buffer. Raises LostOutput."""
    try:
        sys.stdout.write(text)
        sys.stdout.flush()
    except OSError as error:
        # Without another file Python would try again at the end, and print its own message.
        sys.stdout = open(os.devnull, "w", encoding="utf-8")
        raise LostOutput(error.strerror or error) from None
