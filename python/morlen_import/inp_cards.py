"""An `.inp` file as cards: a keyword with its parameters, and the lines of data after it.

Lines that begin with `**` are comments. A keyword line that ends with a comma continues on the next line when that line
has parameters of the keyword; before other lines the comma has no meaning. *INCLUDE puts another file in its place, which
may hold cards, or data of the card before it.
"""

import codecs
import os
import re
from dataclasses import dataclass, field

import numpy as np

from morlen_import import numbers
from morlen_import.fault import Fault, shown

_STAR = re.compile(rb"^[ \t]*\*.*$", re.MULTILINE)
_WHITE = bytes.maketrans(b"\t\r\f\v", b"    ")
_EXPONENT = bytes.maketrans(b"dD", b"ee")
_PLAIN = re.compile(rb"[0-9+\-.eEdD, \n]*\Z")
_LETTER_AT_BEGIN = re.compile(rb"(?:^|[ ,\n])[eEdD]")
_DEEPEST = 10
# The parameters of all keywords that are read.
_SET = ("GENERATE", "INTERNAL", "UNSORTED")
_PARAMETERS = {
    "HEADING": (),
    "INCLUDE": ("INPUT",),
    "NODE": ("NSET",),
    "ELEMENT": ("TYPE", "ELSET"),
    "NSET": ("NSET", "ELSET", *_SET),
    "ELSET": ("ELSET", *_SET),
    "SURFACE": ("NAME", "TYPE", "INTERNAL"),
    "MATERIAL": ("NAME",),
    "ELASTIC": ("TYPE",),
    "DENSITY": (),
    "SOLID SECTION": ("ELSET", "MATERIAL"),
    "SHELL SECTION": ("ELSET", "MATERIAL"),
    # TEMPERATURE says how temperatures are given, which are not read.
    "BEAM SECTION": ("ELSET", "MATERIAL", "SECTION", "TEMPERATURE"),
    "BOUNDARY": ("OP", "TYPE"),
    "STEP": ("NLGEOM", "NAME", "INC", "AMPLITUDE", "UNSYMM", "PERTURBATION"),
    "STATIC": ("SOLVER", "DIRECT"),
    "CLOAD": ("OP",),
    "DLOAD": ("OP",),
    "DSLOAD": ("OP",),
    "END STEP": (),
}


@dataclass
class Chunk:
    """Lines of data in one file; comments are blank."""

    path: str
    line: int  # number of the first
    text: bytes

    def rows(self):
        """Lines with data: number and fields. A comma at the end adds no field; the third item tells of it."""
        for k, raw in enumerate(self.text.split(b"\n")):
            row = raw.decode("utf-8", "replace").strip()
            if row:
                fields = [part.strip() for part in row.split(",")]
                open_end = len(fields) > 1 and not fields[-1]
                yield self.line + k, fields[:-1] if open_end else fields, open_end


@dataclass
class Card:
    """A keyword in capitals, its parameters by their names in capitals, its data."""

    keyword: str
    parameters: dict
    path: str
    line: int
    data: list = field(default_factory=list)

    def fault(self, text, line=None, path=None, hint=None):
        """A fault at a line of the card, at its first if none is given."""
        return Fault(path or self.path, f"*{self.keyword}: {text}", line=line or self.line, hint=hint)

    def rows(self):
        """All lines with data: file, number, fields. Empty fields at the end, such as a spreadsheet writes, are no data."""
        for chunk in self.data:
            for line, fields, _ in chunk.rows():
                yield chunk.path, line, without_empty_end(fields)

    def check_parameters(self):
        """Refuses parameters that the keyword does not have here."""
        for name in self.parameters:
            if name not in _PARAMETERS[self.keyword]:
                raise self.fault(f"the parameter {shown(name)} is not read")

    def need(self, name):
        """The value of a parameter that must be there."""
        value = self.parameters.get(name)
        if not value:
            raise self.fault(f"{name}= is missing")
        return value


def without_empty_end(fields):
    """The fields up to the last that is not empty; the first in any case."""
    count = len(fields)
    while count > 1 and not fields[count - 1]:
        count -= 1
    return fields[:count]


def read_cards(path, read_file):
    """All cards of a file and of the files that it includes."""
    cards = []
    _read_into(cards, str(path), read_file, [])
    if not cards:
        raise Fault(path, "the file has no keyword", line=1)
    return cards


def _read_into(cards, path, read_file, outer):
    data = read_file(path).removeprefix(codecs.BOM_UTF8)
    marks = list(_STAR.finditer(data))
    text = bytearray(data.translate(_WHITE))
    for mark in marks:
        if mark.group().strip().startswith(b"**"):
            text[mark.start() : mark.end()] = b" " * (mark.end() - mark.start())
    starts = np.concatenate([[0], np.flatnonzero(np.frombuffer(data, dtype=np.uint8) == 10) + 1])
    keywords = [mark.start() for mark in marks if not mark.group().strip().startswith(b"**")]
    begin = 0
    line = 1
    for place in [*keywords, len(data)]:
        _add_data(cards, path, line, bytes(text[begin:place]))
        if place == len(data):
            break
        line = int(np.searchsorted(starts, place, "right"))
        begin, next_line, words = _keyword_lines(path, text, place, line)
        card = _card(path, line, words)
        line = next_line
        if card.keyword == "INCLUDE":
            _include(cards, card, path, read_file, outer)
        else:
            cards.append(card)


def _add_data(cards, path, line, text):
    if not text.strip():
        return
    if not cards:
        first = next(k for k, row in enumerate(text.split(b"\n")) if row.strip())
        raise Fault(path, "data before the first keyword", line=line + first)
    cards[-1].data.append(Chunk(path, line, text))


def _keyword_lines(path, text, place, line):
    """The words of a keyword line with its continuations: where the data begin, and their line."""
    words, place = _line_at(text, place)
    line += 1
    keyword = _keyword_of(words)
    while words.endswith(","):
        begin, next_line = _next_text(text, place, line)
        more, end = _line_at(text, begin)
        if not _continues(path, keyword, more, next_line):
            words = words[:-1]
            break
        words += more
        place, line = end, next_line + 1
    return place, line, words


def _line_at(text, place):
    """A line without white space at its ends, and where the next begins."""
    end = text.find(b"\n", place)
    end = len(text) if end < 0 else end
    return bytes(text[place:end]).decode("utf-8", "replace").strip(), min(end + 1, len(text))


def _next_text(text, place, line):
    """Where the next line that is not blank begins, and its number. Comments are blank here."""
    while place < len(text):
        words, end = _line_at(text, place)
        if words:
            break
        place, line = end, line + 1
    return place, line


def _continues(path, keyword, words, line):
    """True when a line after a comma has parameters of the keyword, false when it has data."""
    known = _PARAMETERS.get(keyword)
    if not known or not words or words.startswith("*"):
        return False
    parts = [part.strip() for part in _split(words.removesuffix(","))]
    is_known = [_name_of(part) in known for part in parts]
    has_value = ["=" in part and not part.startswith('"') for part in parts]
    if not any(is_known) and not any(has_value):
        return False
    if any(is_known) and all(k or v for k, v in zip(is_known, has_value)):
        return True
    if all(has_value):
        text = f"the parameter {shown(_name_of(parts[0]))} is not read"
    else:
        text = "after a comma this line can be data, or parameters of the keyword"
    raise Fault(
        path,
        f"*{shown(keyword)}: {text}",
        line=line,
        hint="without the comma at the end of the keyword line this line is data",
    )


def _name_of(part):
    """The name of a parameter in capitals."""
    return " ".join(part.partition("=")[0].upper().split())


def _keyword_of(words):
    return " ".join(_split(words)[0].lstrip(" *").upper().split())


def _card(path, line, words):
    keyword = _keyword_of(words)
    if not keyword:
        raise Fault(path, "a keyword is missing after *", line=line)
    parameters = {}
    for part in _split(words)[1:]:
        _, equals, value = part.partition("=")
        name = _name_of(part)
        if not name:
            raise Fault(path, f"*{shown(keyword)}: a parameter is missing between commas", line=line)
        if name in parameters:
            raise Fault(path, f"*{shown(keyword)}: the parameter {shown(name)} is given twice", line=line)
        parameters[name] = value.strip().strip('"') if equals else ""
    return Card(keyword, parameters, path, line)


def _split(words):
    """Parts between commas that are not in quotation marks."""
    parts = [""]
    quoted = False
    for letter in words:
        quoted ^= letter == '"'
        if letter == "," and not quoted:
            parts.append("")
        else:
            parts[-1] += letter
    return parts


def _include(cards, card, path, read_file, outer):
    card.check_parameters()
    name = card.need("INPUT")
    target = os.path.join(os.path.dirname(path), name)
    chain = [*outer, os.path.realpath(path)]
    if os.path.realpath(target) in chain:
        raise card.fault(f"{shown(name)} includes itself")
    if len(chain) > _DEEPEST:
        raise card.fault("files are included too deeply")
    if not os.path.isfile(target):
        raise card.fault(f"there is no file {shown(target)}")
    _read_into(cards, target, read_file, chain)


def plain_numbers(chunk):
    """The numbers of a chunk with nothing but numbers: all of them, counts by line, line numbers, open ends.

    None when there are other words, empty fields or blanks in place of commas: such lines are read one by one.
    """
    text = chunk.text
    if not _PLAIN.match(text) or _LETTER_AT_BEGIN.search(text):
        return None
    codes = np.frombuffer(text, dtype=np.uint8)
    inside = (codes > 32) & (codes != 44)
    begins = inside.copy()
    begins[1:] &= ~inside[:-1]
    # Words are 1, commas 2, ends of lines 3: the order of these events tells whether all fields are filled.
    events = np.where(begins, 1, np.where(codes == 44, 2, np.where(codes == 10, 3, 0)))
    order = events[events > 0]
    pairs = order[:-1] * 4 + order[1:]
    if len(order) and (order[0] == 2 or np.isin(pairs, (1 * 4 + 1, 2 * 4 + 2, 3 * 4 + 2)).any()):
        return None
    run = numbers.parse_run(text.replace(b",", b" ").translate(_EXPONENT))
    if run is None or run.size != int((order == 1).sum()):
        return None
    row = np.cumsum(order == 3) - (order == 3)
    rows = int(row[-1]) + 1 if len(row) else 0
    counts = np.bincount(row[order == 1], minlength=rows)
    is_last_comma = (order == 2) & np.append(order[1:] == 3, True)
    open_ends = np.zeros(rows, dtype=bool)
    open_ends[row[is_last_comma]] = True
    used = counts > 0
    return run, counts[used], (chunk.line + np.arange(rows))[used], open_ends[used]


def value_of(word):
    """A number as such files have it: 1.d0 and 1.D0 are 1; None for other words."""
    return numbers.number_of(word.replace("d", "e").replace("D", "e"))


def need_number(card, path, line, word, what):
    """The number that a word is, or a fault."""
    value = value_of(word)
    if value is None:
        raise card.fault(f"'{shown(word)}' is no number ({what})", line, path)
    return value


def need_whole(card, path, line, word, what):
    """The whole number that a word is, or a fault."""
    value = numbers.whole_of(word)
    if value is None:
        raise card.fault(f"'{shown(word)}' is no whole number ({what})", line, path)
    return value
