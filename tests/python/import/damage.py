#!/usr/bin/env python3
"""Imports damaged files: an error with a place and status 2, or a problem file and status 0; never a traceback.

    damage.py BUILD [--count 2000] [--seed 1]

The files are those of three models in all forms, their maps and three decks with sections. Each file is damaged by a
separate seed, and imported in a separate process with limits of time and memory.
"""

import argparse
import os
import re
import resource
import signal
import sys
import tempfile
from pathlib import Path

import numpy as np

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parents[2] / "python")]

WORDS = [
    b"-1",
    b"0",
    b"99999999999",
    b"1e999",
    b"nan",
    b"x",
    b"1.5",
    b"",
    b"-",
    b"1,5",
    b"\xff",
    b"2147483648",
    b'"',
    b"$End",
    b"*",
]
PLACE = re.compile(
    r"^[^:]+(:\d+(:\d+)?: error: |: error: (offset \d+: |[A-Za-z_.\"0-9-]+: |.*\b([Ee]lement|[Nn]ode)s? \d+))"
)
SECONDS = 60
MEMORY = 6 << 30


def cut(random, data):
    return data[: random.integers(len(data))]


def flip(random, data):
    data = bytearray(data)
    for place in random.integers(len(data), size=random.integers(1, 6)):
        data[place] = random.integers(256)
    return bytes(data)


def delete(random, data):
    begin = random.integers(len(data))
    return data[:begin] + data[begin + random.integers(1, 200) :]


def repeat(random, data):
    begin = random.integers(len(data))
    end = begin + random.integers(1, 200)
    return data[:end] + data[begin:]


def word(random, data):
    found = list(re.finditer(rb"[^\s,]+", data))
    place = found[random.integers(len(found))]
    return data[: place.start()] + WORDS[random.integers(len(WORDS))] + data[place.end() :]


def digit(random, data):
    found = list(re.finditer(rb"\d", data))
    place = found[random.integers(len(found))]
    return data[: place.start()] + b"%d" % random.integers(10) + data[place.end() :]


def lines(random, data):
    rows = data.split(b"\n")
    first, second = random.integers(len(rows), size=2)
    rows[first], rows[second] = rows[second], rows[first]
    if random.integers(2):
        del rows[first]
    return b"\n".join(rows)


def zeros(random, data):
    begin = random.integers(len(data))
    end = min(len(data), begin + int(random.integers(1, 100)))
    return data[:begin] + b"\0" * (end - begin) + data[end:]


def ends(random, data):
    return data + bytes(random.integers(256, size=random.integers(1, 50)).tolist())


DAMAGES = [cut, flip, delete, repeat, word, digit, lines, zeros, ends]


def make_sources(folder):
    """Pairs of a mesh and a map, or of a deck and None."""
    import gmsh_models
    from small_meshes import SHELL, SHELL_MAP, SOLID, SOLID_MAP
    from test_inp_frames import MATERIAL, RECT, cantilever, SHELL as SHELL_DECK
    from test_inp_rules import STEPS
    from test_msh import ENTITIES, PARAMETRIC, PLACES, parametric22

    sources = []
    for number in (0, 2, 8):
        model = gmsh_models.MODELS[number]
        own = folder / f"model{number}"
        own.mkdir()
        for form, path in gmsh_models.make_files(model, own).items():
            sources.append((path.name, path.read_bytes(), gmsh_models.map_text(model, form).encode()))
    sources.append(("small.msh", SOLID.encode(), SOLID_MAP.encode()))
    for number, mesh in enumerate((PARAMETRIC.encode(), parametric22(PLACES, ENTITIES))):
        sources.append((f"parametric{number}.msh", mesh, SOLID_MAP.encode()))
    sources.append(("shell.msh", SHELL.encode(), SHELL_MAP.encode()))
    decks = [
        STEPS,
        SHELL_DECK.format(
            kind="S3",
            middles="",
            elements="1, 1, 2, 3\n2, 1, 3, 4",
            material=MATERIAL,
            load="*DSLOAD\nABOVE, P, 0.002\n",
        ),
    ]
    decks.append(cantilever(RECT, (3, 4, 5), "B32", "0, 1, 0", "*DLOAD\nB, GRAV, 9810., 0, 0, -1\n"))
    sources += [("deck.inp", deck.encode(), None) for deck in decks]
    return sources


def damaged(seed, sources):
    """Name of the mesh, mesh, map, and what was done."""
    random = np.random.default_rng(seed)
    # Decks and maps are smaller than meshes: they come more often than by their number.
    name, mesh, own_map = sources[
        random.integers(len(sources)) if random.integers(4) else -1 - random.integers(2)
    ]
    damage = DAMAGES[random.integers(len(DAMAGES))]
    if own_map is not None and not random.integers(5):
        return name, mesh, damage(random, own_map), f"{damage.__name__} in the map of {name}"
    return name, damage(random, mesh), own_map, f"{damage.__name__} in {name}"


def import_one(folder, name, mesh, own_map, programs):
    """Exit status (negative: a signal), output and messages of one import."""
    for old in folder.iterdir():
        old.unlink()
    (folder / name).write_bytes(mesh)
    arguments = [name, "-o", "out.dat"]
    if own_map is None:
        arguments += ["--units", "mm,N"]
    else:
        (folder / "a.map").write_bytes(own_map)
        arguments.insert(1, "a.map")
    child = os.fork()
    if child == 0:
        os.chdir(folder)
        for stream, target in ((1, "stdout"), (2, "stderr")):
            os.dup2(os.open(target, os.O_WRONLY | os.O_CREAT | os.O_TRUNC), stream)
        sys.stdout, sys.stderr = os.fdopen(1, "w"), os.fdopen(2, "w", buffering=1)
        if "MORLEN_SANITIZED" not in os.environ:
            resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
        signal.alarm(SECONDS)
        status = 99
        try:
            from morlen_import.command_line import main

            status = main(arguments, programs=programs)
        except BaseException:
            import traceback

            traceback.print_exc()
        sys.stdout.flush()
        sys.stderr.flush()
        os._exit(status)
    _, code = os.waitpid(child, 0)
    out, err = ((folder / stream).read_text(errors="replace") for stream in ("stdout", "stderr"))
    return (os.WEXITSTATUS(code) if os.WIFEXITED(code) else -os.WTERMSIG(code)), out, err


def fault_of(name, folder, status, out, err):
    """What is wrong with the behaviour of an import; empty when it is as it should be."""
    if "Traceback" in err or "internal error" in err or status not in (0, 2):
        return f"status {status}"
    if (status == 0) != (folder / "out.dat").exists() or (status == 0) != out.startswith("wrote out.dat"):
        return f"status {status}, output {out!r}"
    if status == 0:
        return ""
    errors = [
        line for line in err.splitlines() if not line.startswith("hint: ") and ": warning: " not in line
    ]
    if not errors:
        return "no message"
    # meshio does not tell where in a file its errors are.
    is_foreign = not name.endswith((".msh", ".inp"))
    known = PLACE.match(errors[0]) or (is_foreign and errors[0].startswith(f"{name}: error: "))
    if "morlen-check finds errors" in errors[0] or not known:
        return f"no place: {errors[0]}"
    return ""


def run(build, folder, seeds, sources):
    """Faults of all seeds, and the counts of both exit statuses."""
    import morlen_import.apply_map  # noqa: F401  loaded before the processes are forked
    import morlen_import.foreign  # noqa: F401
    import morlen_import.inp_model  # noqa: F401
    import morlen_import.msh  # noqa: F401
    import morlen_import.result_files  # noqa: F401

    try:
        import h5py  # noqa: F401
        import meshio  # noqa: F401
    except ImportError:
        sources = [source for source in sources if source[0].endswith((".msh", ".inp"))]
    faults, counts = [], {0: 0, 2: 0}
    for seed in seeds:
        name, mesh, own_map, what = damaged(seed, sources)
        status, out, err = import_one(folder, name, mesh, own_map, [Path(build) / "companions"])
        counts[status] = counts.get(status, 0) + 1
        fault = fault_of(name, folder, status, out, err)
        if fault:
            faults.append(f"seed {seed}: {what}: {fault}\n{err}")
    return faults, counts


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build")
    parser.add_argument("--count", type=int, default=2000)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        sources = make_sources(Path(folder))
        work = Path(folder) / "work"
        work.mkdir()
        seeds = range(options.seed, options.seed + options.count)
        faults, counts = run(Path(options.build).resolve(), work, seeds, sources)
    print("\n".join(faults))
    print(f"{counts.get(2, 0)} refused, {counts.get(0, 0)} imported, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
