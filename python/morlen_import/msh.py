"""Reader of `.msh` files of the formats 2.2 and 4.1, as text and binary.

A file is a row of sections, `$Name` to `$EndName`. Groups are the physical groups: in 2.2 a tag of every element, in
4.1 tags of the geometric entity that a block of elements belongs to.
"""

import re

import numpy as np

from morlen_import import msh2, msh4, numbers
from morlen_import.fault import Fault, shown
from morlen_import.mesh import MeshBuilder
from morlen_import.msh_source import Bytes, Lines

_NAME = re.compile(r'(\d+)\s+(-?\d+)\s+"(.*)"\s*\Z')
_HINT = "save the mesh in the format 2.2 or 4.1"


def read_msh(path, data):
    """The mesh in the contents of a file."""
    source, version = _open(path, data)
    reader = {"2.2": msh2.Reader, "4.1": msh4.Reader}[version](source, MeshBuilder(path))
    names = {}
    done = set()
    while not source.at_end():
        source.section = None
        begin = source.mark
        line = source.line()
        if not line:
            continue
        if not line.startswith("$") or line.startswith("$End"):
            raise _at(path, source, begin, f"a section is needed here, not '{shown(line)}'")
        source.section = line[1:]
        kind = "Nodes" if source.section == "ParametricNodes" else source.section
        if kind in ("Nodes", "Elements", "Entities", "PhysicalNames") and kind in done:
            raise _at(path, source, begin, f"a second section {line}")
        done.add(kind)
        _read_section(source, reader, names)
    source.section = None
    for section in ("Nodes", "Elements"):
        if section not in done:
            raise source.fault(f"the file ends without a section ${section}")
    return reader.builder.finish(names)


def _at(path, source, begin, text):
    return Fault(path, text, offset=begin) if source.is_binary else source.fault(text)


def _open(path, data):
    """The source of a file whose head is read, and the version."""
    text = Lines(path, data[: data.find(b"\n", 14) + 1] if data.find(b"\n", 14) >= 0 else data)
    text.section = "MeshFormat"
    if text.at_end() or text.line() != "$MeshFormat":
        raise Fault(path, "the file does not begin with $MeshFormat", line=1, hint=_HINT)
    words = text.line().split()
    if len(words) != 3:
        raise text.fault("version, kind and size are needed here", hint=_HINT)
    version = words[0]
    if version not in ("2.2", "4.1"):
        raise text.fault(f"the format {shown(version)} is not read", hint=_HINT)
    if words[1] not in ("0", "1"):
        raise text.fault(f"the kind of file is 0 or 1, not '{shown(words[1])}'")
    if words[2] != "8":
        raise text.fault(f"numbers of {shown(words[2])} bytes are not read, only of 8")
    if words[1] == "0":
        source = Lines(path, data)
        source.section = "MeshFormat"
        source.line()
        source.line()
    else:
        source = _binary(path, data)
    source.end_section()
    return source, version


def _binary(path, data):
    source = Bytes(path, data)
    source.section = "MeshFormat"
    source.line()
    source.line()
    begin = source.place
    one = source.array(np.int32, 1, "the number one")[0]
    if one != 1:
        source.order = ">"
        source.place = begin
        if source.array(np.int32, 1, "the number one")[0] != 1:
            source.place = begin
            raise source.fault("the number 1 is needed here, which shows the order of bytes")
    return source


def _read_section(source, reader, names):
    section = source.section
    if section == "PhysicalNames":
        names.update(_read_names(source))
    elif section in reader.sections:
        reader.sections[section]()
    elif section in ("PartitionedEntities", "ParametricNodes", "GhostElements"):
        raise source.fault(f"${section}: meshes in parts, or with parameters, are not read")
    else:
        source.skip_section()
        return
    source.end_section()


def _read_names(source):
    names = {}
    (count,) = source.whole_numbers(1, "count of names")
    if count < 0:
        raise source.fault("the count of names is negative")
    for _ in range(count):
        begin = source.mark
        line = source.line()
        match = _NAME.match(line)
        if not match or numbers.whole_of(match.group(2)) is None or int(match.group(1)) > 3:
            raise _at(
                source.path,
                source,
                begin,
                f"a dimension, a number and a name in \" are needed, not '{shown(line)}'",
            )
        key = int(match.group(1)), int(match.group(2))
        if key in names:
            raise _at(source.path, source, begin, f"group {key[0]}:{key[1]} has two names")
        names[key] = match.group(3)
    return names
