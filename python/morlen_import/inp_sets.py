"""Sets of nodes or elements: numbers, ranges, and other sets."""

import numpy as np

from morlen_import import inp_cards, numbers
from morlen_import.fault import Fault, shown

_LARGEST_SET = 50_000_000


class Sets:
    """Sets by their names in any case. They are resolved when all cards are read."""

    def __init__(self, what):
        self._what = what
        self._items = {}
        self._shown = {}
        self._resolved = {}

    def names(self):
        """The names as the file first has them, in the order of the file."""
        return list(self._shown.values())

    def __contains__(self, name):
        return name.upper() in self._items

    def add(self, name, values, path, line):
        """Adds numbers (an array) or the name of another set."""
        key = name.upper()
        self._shown.setdefault(key, name)
        self._items.setdefault(key, []).append((values, path, line))

    def read(self, card, name):
        """Adds the data of a card."""
        self.add(name, np.zeros(0, dtype=np.int64), card.path, card.line)
        if "GENERATE" in card.parameters:
            for path, line, fields in card.rows():
                self.add(name, self._range(card, path, line, fields), path, line)
            return
        for chunk in card.data:
            found = inp_cards.plain_numbers(chunk)
            if (
                found
                and np.array_equal(found[0], np.trunc(found[0]))
                and (np.abs(found[0]) < numbers.LARGEST).all()
            ):
                run, counts, lines, _ = found
                self.add(name, run.astype(np.int64), chunk.path, np.repeat(lines, counts))
                continue
            for line, fields, _ in chunk.rows():
                for word in inp_cards.without_empty_end(fields):
                    self._add_word(card, name, word, chunk.path, line)

    def _add_word(self, card, name, word, path, line):
        if not word:
            raise card.fault("a field is empty", line, path)
        whole = numbers.whole_of(word)
        if whole is not None:
            self.add(name, np.array([whole]), path, line)
        elif word[0] in "+-.0123456789":
            raise card.fault(f"'{shown(word)}' is no whole number", line, path)
        else:
            self.add(name, word.strip('"'), path, line)

    def _range(self, card, path, line, fields):
        if len(fields) not in (2, 3):
            raise card.fault("GENERATE needs the first and the last number, and perhaps a step", line, path)
        values = [inp_cards.need_whole(card, path, line, word, "GENERATE") for word in fields]
        first, last, step = (*values, 1)[:3]
        if step <= 0 or last < first:
            raise card.fault(f"no numbers from {first} to {last} in steps of {step}", line, path)
        if (last - first) // step >= _LARGEST_SET:
            raise card.fault("the range is too large", line, path)
        return np.arange(first, last + 1, step)

    def members(self, name, finder):
        """Indices of the members of a set, each once; `finder` turns numbers into indices, -1 for unknown ones."""
        return self._members(name.upper(), finder, [])

    def _members(self, key, finder, outer):
        if key in self._resolved:
            return self._resolved[key]
        parts = [np.zeros(0, dtype=np.int64)]
        for values, path, line in self._items[key]:
            if isinstance(values, str):
                inner = values.upper()
                if inner not in self._items:
                    raise Fault(path, f"there is no set {shown(values)} of {self._what}", line=line)
                if inner in (*outer, key):
                    raise Fault(path, f"the set {shown(values)} contains itself", line=line)
                if len(outer) > 50:
                    raise Fault(path, "sets contain each other too deeply", line=line)
                parts.append(self._members(inner, finder, [*outer, key]))
                continue
            indices = finder(values)
            wrong = np.flatnonzero(indices < 0)
            if len(wrong):
                at = line if np.isscalar(line) else int(line[wrong[0]])
                raise Fault(
                    path,
                    f"the set {shown(self._shown[key])} has {values[wrong[0]]}, which is not among the"
                    f" {self._what}",
                    line=at,
                )
            parts.append(indices)
        self._resolved[key] = np.unique(np.concatenate(parts))
        return self._resolved[key]
