"""Symbols of object files, as nm lists them."""

import os
import re
import subprocess
import sys
from typing import NamedTuple


class Symbol(NamedTuple):
    """One line of nm. `kind` is its letter: U undefined, T code, D data, lower case when local."""

    name: str
    kind: str
    section: str

    @property
    def undefined(self):
        return self.kind == "U" or (self.kind in "wv" and self.section in ("", "*UND*"))

    @property
    def external(self):
        """True when other objects can use the definition."""
        return not self.undefined and (self.kind.isupper() or self.kind == "u")


def read_symbols(nm, objects):
    """{object: [Symbol, ...]} of all objects."""
    run = subprocess.run([nm, "--format=sysv", *objects], capture_output=True, text=True)
    if run.returncode != 0:
        sys.exit(f"{run.stderr}nm cannot read the objects: build everything first")
    symbols = {path: [] for path in objects}
    path = objects[0]
    for line in run.stdout.splitlines():
        heading = re.fullmatch(r"(?:Symbols|Undefined symbols) from (.*):", line)
        # name | value | class | type | size | line | section
        row = [field.strip() for field in line.split("|")]
        if heading:
            path = heading.group(1)
        elif len(row) == 7 and row[2] != "Class":
            symbols[path].append(Symbol(row[0], row[2], row[6]))
    return symbols


def demangled(nm, names):
    """{mangled: readable} by c++filt, which is beside nm; the mangled name where it is missing."""
    names = sorted(set(names))
    tool = re.sub(r"nm$", "c++filt", os.path.realpath(nm))
    tool = tool if os.path.exists(tool) else "c++filt"
    try:
        listing = subprocess.run([tool], input="\n".join(names), capture_output=True, text=True)
    except OSError:
        return {name: name for name in names}
    return dict(zip(names, listing.stdout.splitlines()))


def layer_of(path):
    """Folder of an object's source below the folder of its target: base, run, report ..."""
    inner = re.split(r"\.dir[/\\]", path)[-1]
    if "morlen_direct.dir" in path:
        return "direct"
    return re.sub(r"^src/", "", inner).split("/")[0]


def read_list(file):
    """The paths in a file, one a line."""
    with open(file, encoding="utf-8") as lines:
        return [line.strip() for line in lines if line.strip()]
