#!/usr/bin/env python3
"""Fails on variables of the core library that outlive a run and can be written.

    check_globals.py NM OBJECTS

OBJECTS is a file with the paths of the object files. Global variables, statics of classes and
functions, and variables of a thread count; constants do not.
"""

import os
import re
import sys

from object_symbols import demangled, layer_of, read_list, read_symbols

# (object, variable) as regular expressions: all that the core may keep from one run to the next.
PERMITTED = [
    (r"errorwriter\.cpp\.o", r"morlen::errorwriter"),
    (r"errorwriter\.cpp\.o", r"thread .*"),  # where a thread's fatal errors go
    (r".*", r"thread morlen::mxnod"),
    (r".*", r"thread morlen::interruptionTest"),
    (r".*", r"thread morlen::readObserver"),  # belongs to the end of a thread's run
    # Memory that all threads share: the pool is locked, the share is the thread's.
    (r".*", r"morlen::StaticPool<.*>::Pool\(\)::pool"),
    (r".*", r"thread morlen::StaticPool<.*>::share"),
    # Read by the handler of signals, and at the end of the process.
    (r"unfinished_files\.cpp\.o", r"morlen::\(anonymous namespace\)::unfinishedFiles"),
    (r".*", r"std::__ioinit"),  # the standard library's, in each object that includes <iostream>
]
# Made by the compiler: tables of exceptions, and marks of variables that are listed themselves.
COMPILERS_OWN = re.compile(r"DW\.ref\.|_ZGV|_ZGR|__tls_guard$")


def is_writable(section):
    return re.match(r"\.(data|bss|tdata|tbss)\b|\*COM\*", section) and not section.startswith(
        ".data.rel.ro"
    )


def variables(nm, objects):
    """(object, name) of each writable variable; names of thread-local ones begin with `thread`."""
    found = []
    for path, symbols in read_symbols(nm, objects).items():
        for symbol in symbols:
            if is_writable(symbol.section) and not COMPILERS_OWN.match(symbol.name):
                thread = re.match(r"\.t(data|bss)", symbol.section) is not None
                found.append((path, symbol.name, thread))
    names = demangled(nm, [name for _, name, _ in found])
    return [(path, ("thread " if thread else "") + names[name]) for path, name, thread in found]


def is_permitted(path, variable):
    return any(
        re.fullmatch(object_, os.path.basename(path)) and re.fullmatch(name, variable)
        for object_, name in PERMITTED
    )


def main(nm, list_of_objects):
    found = variables(nm, read_list(list_of_objects))
    if not any(variable == "morlen::errorwriter" for _, variable in found):
        sys.exit(f"{list_of_objects}: not even the error writer is found")
    faults = {}
    for path, variable in found:
        if not is_permitted(path, variable):
            faults.setdefault(variable, []).append(f"{layer_of(path)}/{os.path.basename(path)}")
    print(f"{len(faults)} writable variables too many")
    for variable, paths in sorted(faults.items()):
        print(f"{variable}: {', '.join(paths)}")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
