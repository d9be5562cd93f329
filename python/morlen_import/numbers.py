"""Columns of numbers from text, in one call for any number of lines.

A block is parsed as one run of numbers. It is accepted when the count of words on every line is the wanted one; else
a slower pass over its lines names the first that is wrong.
"""

import re
import warnings

import numpy as np

from morlen_import.fault import Fault, count_of, shown

LARGEST = 2**53
_NUMBER = re.compile(r"[+-]?(\d+(\.\d*)?|\.\d+)([eE][+-]?\d+)?\Z")
_WHOLE = re.compile(r"[+-]?\d+\Z")


def parse_run(text, dtype=np.float64):
    """All numbers of a text that has nothing but numbers and white space, or None."""
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        try:
            run = np.fromstring(text, dtype=dtype, sep=" ")
        except (DeprecationWarning, ValueError):
            return None
    if dtype is np.float64 and not np.isfinite(run).all():
        return None
    return run


def words_per_line(text):
    """The count of words on every line of the text (bytes), and the words in all before each line's end."""
    codes = np.frombuffer(text, dtype=np.uint8)
    inside = codes > 32
    begins = inside.copy()
    begins[1:] &= ~inside[:-1]
    ends = np.flatnonzero(codes == 10)
    if len(codes) and (not len(ends) or ends[-1] != len(codes) - 1):
        ends = np.append(ends, len(codes) - 1)
    total = np.cumsum(begins)
    before_end = total[ends] if len(ends) else np.zeros(0, dtype=np.int64)
    return np.diff(before_end, prepend=0), before_end


def number_of(word):
    """The value of a word, or None when it is no finite number."""
    if not _NUMBER.match(word):
        return None
    value = float(word)
    return value if np.isfinite(value) else None


def whole_of(word):
    """The value of a word, or None when it is no whole number of usual size."""
    if not _WHOLE.match(word):
        return None
    value = int(word)
    return value if abs(value) < LARGEST else None


def require_whole(path, line, word, what):
    """The whole number that a word is, or a fault that says what it should be."""
    value = whole_of(word)
    if value is None:
        raise Fault(path, f"'{shown(word)}' is no whole number ({what})", line=line)
    return value


def require_number(path, line, word, what):
    """The finite number that a word is, or a fault that says what it should be."""
    value = number_of(word)
    if value is None:
        raise Fault(path, f"'{shown(word)}' is no number ({what})", line=line)
    return value


def refuse_end(path, line, words):
    """Raises a fault when a section ends where a row of numbers should be."""
    if words and words[0].startswith("$"):
        raise Fault(path, f"{shown(words[0])} comes before all lines that the section should have", line=line)


def check_rows(path, first_line, text, columns, whole, what):
    """Raises a fault for the first line that does not have `columns` numbers, of which the first `whole` are whole."""
    for i, row in enumerate(text.split(b"\n")[: text.count(b"\n") or 1]):
        words = row.decode("utf-8", "replace").split()
        line = first_line + i
        refuse_end(path, line, words)
        if len(words) != columns:
            raise Fault(path, f"{what}: {count_of(columns, 'number')} needed, not {len(words)}", line=line)
        for k, word in enumerate(words):
            if k < whole:
                require_whole(path, line, word, what)
            else:
                require_number(path, line, word, what)
    raise Fault(path, f"{what}: the numbers cannot be read", line=first_line)
