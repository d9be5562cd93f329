#!/usr/bin/env python3
"""Lists the public functions of the library that the program `morlen` does not use, by header.

    scripts/unused_by_run.py [--build build/unused] [FOLDER ...]

FOLDER: a folder of src/, such as numeric; all folders when none is named. Prints a table in Markdown and, on
standard error, the part of the library's code that the program leaves out.

The program is built with one section for each function and without optimisation, so that no call is inlined. The
linker leaves out every section that nothing refers to. A function is unused when its header declares it and the
program has no symbol of it. Functions for constant expressions (constexpr) leave no symbol and are not listed.
"""

import argparse
import collections
import os
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
SOURCE = ROOT / "src"

# Headers of inner loops, which are not for callers.
INNER = {"block_kernel_loops.h", "ldlt_tiles.h", "matriu_kernels.h", "vector_loops.h"}
# The classes of a concept: its templates can only be used by them.
CONCEPTS = {
    "DenseVector": {"ReaVec", "ReaVecV", "ReaVecVT", "Node"},
    "MatrixOperand": {"Matriu", "MatriuT", "Transpose"},
}
NUMBERS = {"int", "double"}
NO_MATCH = -1000

# owner: the class, or "" in the namespace; words: those of parameters and qualifiers, to tell overloads apart.
Function = collections.namedtuple("Function", "owner name count words")


def words(text):
    """The words of a list of parameters, names included: those of a symbol are compared with them."""
    return frozenset(re.findall(r"\w+|&&|\*", text)) - {"morlen", "std"}


def without(pairs, text):
    """The text without everything between these pairs of brackets."""
    kept, depth = [], 0
    for i, c in enumerate(text):
        operators = {"<": ("operator", "operator<"), ">": ("operator", "operator>", "operator-")}
        is_operator = text[:i].endswith(operators.get(c, ()))
        depth += not is_operator and c in pairs[0]
        if depth == 0:
            kept.append(c)
        depth -= not is_operator and depth > 0 and c in pairs[1]
    return "".join(kept)


def function(text, owner=""):
    """The function of a declaration or of a demangled symbol; None when there is none."""
    text = without("<>", without("{}", text))
    found = re.search(r"\)( const)?( ?&{1,2})?$", text)
    if not found:
        return None
    begin, depth = found.start(), 1
    while begin and depth:
        begin -= 1
        depth += (text[begin] == ")") - (text[begin] == "(")
    parameters = text[begin + 1:found.start()]
    name = re.search(r"((?:\w+::)*)(operator *\(\)|operator[^(]+|~?\w+)$", text[:begin].strip())
    if not name:
        return None
    path = "::".join(part for part in name[1].split("::") if part and part != "morlen")
    if path and owner:
        return None
    count = without("()", parameters).count(",") + 1 if parameters.strip() else 0
    return Function(path or owner, name[2].strip(), count, words(parameters + found.group()))


def statements(text):
    """The declarations of a header: pairs of the enclosing class and a statement, of public ones only."""
    text = re.sub(r"//[^\n]*|^#[^\n]*", "", text, flags=re.M)
    scopes, start, depth = [], 0, 0  # scopes: [name of the class or "", public]
    for at in re.finditer(r"[{};]|\b(?:public|protected|private):(?!:)", text):
        mark = at.group()
        statement = " ".join(text[start:at.start()].split())
        if depth == 0 and mark in "{;" and all(public for _, public in scopes):
            yield "::".join(name for name, _ in scopes if name), statement
        if mark == "{":
            opened = re.match(r"(?:template <.*> )?(namespace|class|struct)\b(?: (\w+))?", statement)
            if depth or not opened:
                depth += 1
            else:
                scopes.append(["" if opened[1] == "namespace" else opened[2], opened[1] != "class"])
        elif mark == "}":
            if depth:
                depth -= 1
            elif scopes:
                scopes.pop()
        elif mark != ";" and not depth:
            scopes[-1][1] = mark == "public:"
        start = at.end()


def declared(header):
    """The functions of a header, and their parameters as written; not those that leave no symbol."""
    for owner, statement in statements(header.read_text()):
        statement = re.sub(r"\)([^():]*) :(?!:).*$", r")\1", statement)  # initialisers of members
        statement = re.sub(r" (noexcept|override|final)\b", "", statement)
        if re.search(r"always_inline|\b(constexpr|consteval|friend|using|concept|static_assert|return)\b|^,"
                     r"|= ?(0|default|delete)$|^[^(]* = ", statement):
            continue
        item = function(statement, owner)
        if item and item.owner == owner:
            concepts = words(statement) & CONCEPTS.keys()
            parameters = re.search(r"\(([^()]*)\)[^()]*$", statement)
            yield item._replace(words=item.words | concepts), parameters[1] if parameters else ""


def built(folder):
    """The program and the library, built unoptimised with sections that can be dropped."""
    flags = "-O0 -ffunction-sections"
    subprocess.run(["cmake", "-S", ROOT, "-B", folder, "-DCMAKE_BUILD_TYPE=None", f"-DCMAKE_CXX_FLAGS={flags}",
                    "-DCMAKE_EXE_LINKER_FLAGS=-Wl,--gc-sections", "-DMORLEN_COMPANIONS=OFF", "-DMORLEN_TESTS=OFF"],
                   check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", folder, "--target", "morlen", "--parallel", str(os.cpu_count())],
                   check=True, stdout=subprocess.DEVNULL)
    return folder / "morlen", folder / "libmorlen_core.a"


def symbols(file):
    """The functions of a program or a library, demangled, and their sizes in bytes."""
    lines = subprocess.run(["nm", "-CS", "--defined-only", file], check=True, capture_output=True, text=True).stdout
    return {found[2]: int(found[1], 16)
            for found in re.finditer(r"^\w+ (\w+) [tTwWu] (.*)$", lines, flags=re.M) if "morlen::" in found[2]}


def used_functions(names):
    """The functions of the program by class, name and number of parameters."""
    used = collections.defaultdict(list)
    for name in names:
        if item := function(name):
            used[item[:3]].append(item.words)
    return used


def classes(names):
    """Those of the words that may be names of classes of the library."""
    return {name for name in names - CONCEPTS.keys() if re.match(r"[A-Z]\w", name)}


def likeness(name, declaration, is_operator):
    """How well the words of a symbol fit those of a declaration; NO_MATCH when they do not."""
    if any(not name & CONCEPTS[concept] for concept in declaration & CONCEPTS.keys()):
        return NO_MATCH
    if is_operator and classes(name) and classes(declaration) and not classes(name) & classes(declaration):
        return NO_MATCH
    return len(name & declaration) - len((name ^ declaration) & NUMBERS) - len(name ^ declaration) / 100


def unused(header, used):
    """The functions of a header that the program lacks, each with its parameters; and the names that it has."""
    groups = collections.defaultdict(list)
    for item, parameters in declared(header):
        groups[item[:3]].append((item, parameters))
    missing, names = [], set()
    for key, group in groups.items():
        taken = set()
        for name in used.get(key, ()):
            match = [likeness(name, item.words, item.name.startswith("operator")) for item, _ in group]
            if max(match) > NO_MATCH:
                taken.add(match.index(max(match)))
        names |= {key[:2]} if taken else set()
        missing += [pair for i, pair in enumerate(group) if i not in taken]
    return missing, names


def row(header, used):
    """The functions of a header that are not used, class by class; with parameters where an overload is used."""
    missing, names = unused(header, used)
    by_class = collections.defaultdict(list)
    for item, parameters in missing:
        text = f"`{item.name}({parameters})`" if (item.owner, item.name) in names else f"`{item.name}`"
        if text not in by_class[item.owner]:
            by_class[item.owner].append(text)
    used_classes = {owner for owner, _, _ in used if owner}
    parts = []
    for owner, functions in by_class.items():
        if owner and owner not in used_classes:
            parts.append(f"all of `{owner}`")
        else:
            parts.append((f"`{owner}`: " if owner else "") + ", ".join(functions))
    return "; ".join(parts)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", type=pathlib.Path, default=ROOT / "build" / "unused")
    parser.add_argument("folders", nargs="*")
    arguments = parser.parse_args()
    program, library = (symbols(file) for file in built(arguments.build))
    used = used_functions(program)
    print("| header | functions |\n|---|---|")
    for header in sorted(SOURCE.glob("*/*.h")):
        if header.name in INNER or arguments.folders and header.parent.name not in arguments.folders:
            continue
        if functions := row(header, used):
            print(f"| `{header.relative_to(SOURCE)}` | {functions.replace('|', chr(92) + '|')} |")
    left_out = sum(size for name, size in library.items() if name not in program)
    print(f"{100 * left_out / sum(library.values()):.0f} % of the code", file=sys.stderr)


main()
