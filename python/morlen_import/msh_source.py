"""The contents of a `.msh` file as lines or as bytes, with the place of every fault."""

import numpy as np

from morlen_import import numbers
from morlen_import.fault import Fault, count_of, shown


class Lines:
    """A text, line by line, and blocks of lines as columns of numbers."""

    is_binary = False

    def __init__(self, path, data, first_line=1):
        self.path = path
        self._data = data
        ends = np.flatnonzero(np.frombuffer(data, dtype=np.uint8) == 10)
        self._starts = np.concatenate([[0], ends + 1])
        if self._starts[-1] == len(data):
            self._starts = self._starts[:-1]
        self._first = first_line
        self._next = 0
        self.section = None

    @property
    def mark(self):
        """The number of the line that was read last."""
        return self._first + self._next - 1

    def fault(self, text, hint=None):
        """A fault at the line that was read last."""
        return Fault(self.path, text, line=max(self.mark, 1), hint=hint)

    def at_end(self):
        """True when no line is left."""
        return self._next >= len(self._starts)

    def line(self):
        """The next line, without white space at its ends."""
        if self.at_end():
            raise self._ended()
        self._next += 1
        return self._chunk(self._next - 1, self._next).decode("utf-8", "replace").strip()

    def whole_numbers(self, count, what):
        """The next line, which has `count` whole numbers."""
        words = self.line().split()
        if len(words) != count:
            raise self.fault(f"{what}: {count_of(count, 'whole number')} needed, not {len(words)}")
        return [numbers.require_whole(self.path, self.mark, word, what) for word in words]

    def count(self, what):
        """The next line, a count that the rest of the file has room for."""
        (count,) = self.whole_numbers(1, what)
        self.require_room(count, what)
        return count

    def require_room(self, count, what):
        """Refuses a count of lines that is negative, or more than the file has."""
        if count < 0:
            raise self.fault(f"{what}: {count} is negative")
        if self._next + count > len(self._starts):
            self._next = len(self._starts)
            raise self._ended()

    def rows(self, count, columns, whole, what):
        """The next `count` lines of `columns` numbers, of which the first `whole` are whole; their line numbers."""
        self.require_room(count, what)
        first = self._next
        text = self._chunk(first, first + count)
        run = numbers.parse_run(text, np.int64 if whole == columns else np.float64)
        words, _ = numbers.words_per_line(text)
        good = run is not None and run.size == count * columns and (words == columns).all()
        if good:
            table = run.reshape(count, columns)
            named = table[:, :whole]
            good = bool((np.abs(named) < numbers.LARGEST).all() and (named == np.trunc(named)).all())
        if not good:
            numbers.check_rows(self.path, self._first + first, text, columns, whole, what)
        self._next += count
        return table, np.arange(first, first + count) + self._first

    def ragged(self, count, what, dtype=np.int64):
        """The next `count` lines of numbers: all of them, the place of each line's first, counts, line numbers."""
        self.require_room(count, what)
        first = self._next
        text = self._chunk(first, first + count)
        run = numbers.parse_run(text, dtype)
        words, until = numbers.words_per_line(text)
        is_whole = dtype is np.int64
        if run is None or run.size != words.sum() or (is_whole and (np.abs(run) >= numbers.LARGEST).any()):
            require = numbers.require_whole if is_whole else numbers.require_number
            for i, row in enumerate(text.split(b"\n")):
                row_words = row.decode("utf-8", "replace").split()
                numbers.refuse_end(self.path, self._first + first + i, row_words)
                for word in row_words:
                    require(self.path, self._first + first + i, word, what)
            raise Fault(self.path, f"{what}: the numbers cannot be read", line=self._first + first)
        self._next += count
        return run, until - words, words, np.arange(first, first + count) + self._first

    def end_section(self):
        """The line that ends the section."""
        line = self.line()
        if line != "$End" + self.section:
            raise self.fault(f"$End{self.section} is needed here, not '{shown(line)}'")

    def skip_section(self):
        """Passes over all lines up to the end of the section."""
        while self.line() != "$End" + self.section:
            pass

    def _chunk(self, first, last):
        begin = self._starts[first] if first < len(self._starts) else len(self._data)
        return self._data[begin : self._starts[last] if last < len(self._starts) else len(self._data)]

    def _ended(self):
        inside = f" inside ${self.section}" if self.section else ""
        return Fault(
            self.path, f"the file ends early{inside}", line=max(self._first + len(self._starts) - 1, 1)
        )


class Bytes:
    """Binary data with lines of text between its sections."""

    is_binary = True

    def __init__(self, path, data):
        self.path = path
        self.data = data
        self.place = 0
        self.order = "<"
        self.section = None

    @property
    def mark(self):
        """The offset that is read next."""
        return self.place

    def fault(self, text, hint=None):
        """A fault at the present offset."""
        return Fault(self.path, text, offset=self.place, hint=hint)

    def at_end(self):
        """True when nothing but white space is left."""
        return not self.data[self.place :].strip()

    def line(self):
        """The rest of the present line, without white space at its ends."""
        if self.place >= len(self.data):
            raise self._ended()
        end = self.data.find(b"\n", self.place)
        end = len(self.data) if end < 0 else end
        text = self.data[self.place : end].decode("utf-8", "replace").strip()
        self.place = end + 1
        return text

    def whole_numbers(self, count, what):
        """The next line, which has `count` whole numbers as text."""
        begin = self.place
        words = self.line().split()
        values = [numbers.whole_of(word) for word in words]
        if len(values) != count or None in values:
            self.place = begin
            raise self.fault(
                f"{what}: {count_of(count, 'whole number')} needed, not '{shown(' '.join(words))}'"
            )
        return values

    def array(self, dtype, count, what):
        """The next `count` values."""
        dtype = np.dtype(dtype).newbyteorder(self.order)
        if count < 0:
            raise self.fault(f"{what}: the count {count} is negative")
        if count * dtype.itemsize > len(self.data) - self.place:
            raise self._ended()
        values = np.frombuffer(self.data, dtype, count, self.place)
        self.place += count * dtype.itemsize
        return values

    def end_section(self):
        """The line that ends the section, perhaps after white space."""
        begin = self.place
        while self.place < len(self.data) and self.data[self.place : self.place + 1].isspace():
            self.place += 1
        line = self.line()
        if line != "$End" + self.section:
            self.place = begin
            raise self.fault(f"$End{self.section} is needed here")

    def skip_section(self):
        """Passes over everything up to the end of the section."""
        end = self.data.find(b"$End" + self.section.encode("utf-8", "replace"), self.place)
        if end < 0:
            raise self._ended()
        self.place = end
        self.line()

    def _ended(self):
        inside = f" inside ${self.section}" if self.section else ""
        return Fault(self.path, f"the file ends early{inside}", offset=len(self.data))
