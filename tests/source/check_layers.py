#!/usr/bin/env python3
"""Fails when a lower layer needs a higher one, by an include or by a symbol that only it defines.

    check_layers.py SOURCE [NM OBJECTS]

SOURCE is the top folder of the repository, OBJECTS a file with the paths of the object files.
Without NM and OBJECTS only the include lines are read.
"""

import collections
import os
import re
import sys

from object_symbols import demangled, layer_of, read_list, read_symbols

# Each layer, and the layers that it may use beside itself. A layer is a folder of src/
# or companions/, or direct/.
CORE = "base numeric model solvers problem assembly results cases run"
MAY_USE = {
    "base": "",
    "numeric": "base",
    "model": "base numeric",
    "solvers": "base numeric",
    "problem": "base numeric model",
    "assembly": "base numeric model solvers problem",
    "results": "base numeric model solvers problem assembly",
    "cases": "base numeric model solvers problem assembly results",
    "run": "base numeric model solvers problem assembly results",
    "direct": CORE,
    "common": CORE,
    "kit": CORE + " direct",
    "check": CORE + " common",
    "export": CORE + " common",
    "case_file": CORE + " common check export kit",
    "check_program": CORE + " common check case_file",
    "report": CORE + " common check case_file kit",
    "run_program": CORE + " common check export case_file kit report",
}
ALLOWED = {layer: set(others.split()) | {layer} for layer, others in MAY_USE.items()}


def source_files(source):
    """(path, layer) of every header and source of the core, the direct solver and the companions."""
    for top, base in (("src", "src"), ("direct", ""), ("companions", "companions")):
        for folder, _, names in sorted(os.walk(os.path.join(source, top))):
            layer = os.path.relpath(folder, os.path.join(source, base)).split(os.sep)[0]
            for name in sorted(names):
                if name.endswith((".h", ".cpp")):
                    yield os.path.join(folder, name), layer


def is_upward(layer, line):
    """True for an include line that leads out of what the layer may use.

    A name in quotes is a file of the project. A name in angle brackets is one when its first folder
    is a layer. The components "." and ".." are refused: they hide the layer.
    """
    include = re.match(r'\s*#\s*include\s*([<"])([^>"]+)[>"]', line)
    if not include:
        return False
    quote, name = include.groups()
    folders = name.split("/")[:-1]
    if "." in folders or ".." in folders:
        return True
    if not folders or (quote == "<" and folders[0] not in ALLOWED):
        return False
    return folders[0] not in ALLOWED[layer]


def upward_includes(source):
    """(number of files, messages) of the include lines."""
    faults = []
    count = 0
    for path, layer in source_files(source):
        count += 1
        with open(path, encoding="utf-8") as lines:
            for line in lines:
                if is_upward(layer, line):
                    faults.append(f"{os.path.relpath(path, source)} ({layer}): {line.strip()}")
    return count, faults


def upward_links(nm, objects):
    """(number of symbols looked up, messages): symbols that no permitted layer defines.

    An inline function is defined, weakly, in every object that uses it, so it never counts as a
    link to the layer of its header; the include lines cover those.
    """
    symbols = read_symbols(nm, objects)
    defined_in = collections.defaultdict(set)
    for path in objects:
        for symbol in symbols[path]:
            if symbol.external:
                defined_in[symbol.name].add(layer_of(path))
    count = 0
    links = []
    for path in objects:
        for symbol in symbols[path]:
            owners = defined_in.get(symbol.name)
            if symbol.undefined and owners:
                count += 1
                if not owners & ALLOWED[layer_of(path)]:
                    links.append((path, symbol.name, "/".join(sorted(owners))))
    names = demangled(nm, [name for _, name, _ in links])
    return count, [
        f"{os.path.basename(path)} ({layer_of(path)}) -> {names[name]} ({owner})"
        for path, name, owner in links
    ]


def main(source, nm="", list_of_objects=""):
    count, faults = upward_includes(source)
    if count == 0:
        sys.exit(f"no sources under {source}")
    print(f"{count} files, {len(faults)} includes against the layers")
    if nm:
        objects = read_list(list_of_objects)
        count, links = upward_links(nm, objects)
        if count == 0:
            sys.exit(f"{list_of_objects}: no links between the objects")
        print(f"{len(objects)} objects, {count} links, {len(links)} against the layers")
        faults += links
    else:
        print("without nm: only the includes are checked")
    print("\n".join(faults))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
