"""Writes the problem file and its cases, and runs morlen-check on them.

The files are made in a temporary folder beside their targets, checked there, and moved to their names when they have
no errors.
"""

import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
from pathlib import Path

from morlen_import.case_writer import cases_text
from morlen_import.fault import Fault, finish_output, warn
from morlen_import.writer import problem_text

# A step of an .inp file is a case that no combination uses: no reason for a warning.
_UNUSED_CASE = ": warning: nothing uses the case "
_NO_CASES = "this program has been built without files of load cases"
# Elements and nodes in messages; 'node 2 of the element' is a place in an element.
_NUMBERS = re.compile(
    r"\b(element|node|neighbour)s? (\d+)\b(?: and (\d+)\b)?(?! of the element)", re.IGNORECASE
)
_MOST_NUMBERS = 6


STANDARD_OUTPUT = ("-", "/dev/stdout", "/dev/fd/1", "/proc/self/fd/1")


def write(output, model, cases, programs, inputs=()):
    """Writes and checks the files. After success it ignores SIGINT: an interrupt comes too late.

    The standard output, pipes and devices get the problem file once it is checked.

    `programs` are folders to look for morlen-check in, before those of PATH; None: no check. None of the `inputs` is
    written over.
    """
    path = Path(output)
    if output in STANDARD_OUTPUT or (path.exists() and not path.is_file() and not path.is_dir()):
        _write_stream(output, model, cases, programs)
        return
    texts = {path: problem_text(model)}
    if cases:
        case_path = path.with_suffix(".cases")
        if case_path == path:
            raise Fault(output, "the problem file needs another ending: its cases are written to this name")
        texts[case_path] = cases_text(path.name, model, cases)
    targets = {name: _target(name, inputs) for name in texts}
    if len({target.parent for target in targets.values()}) > 1:
        raise Fault(output, "links of the problem file and of its cases lead to different folders")
    try:
        with tempfile.TemporaryDirectory(
            prefix=f".{path.name}.", suffix=".morlen-tmp", dir=targets[path].parent
        ) as folder:
            made = {name: Path(folder) / name.name for name in texts}
            for name, text in texts.items():
                _write_file(made[name], text, targets[name])
            if programs is not None:
                _check(made, model, programs)
            signal.signal(signal.SIGINT, signal.SIG_IGN)
            for name in texts:
                os.replace(made[name], targets[name])
    except OSError as error:
        raise Fault(output, f"cannot be written: {error.strerror or error}") from None
    for name in texts:
        finish_output(f"wrote {name}\n")


def _write_stream(output, model, cases, programs):
    """Writes the problem file into the standard output, a pipe or a device."""
    text = problem_text(model)
    if cases:
        raise Fault(output, "the model has load cases, which need a second file: give the name of a file")
    if programs is not None:
        with tempfile.TemporaryDirectory() as folder:
            file = Path(folder) / "model.dat"
            file.write_text(text, encoding="utf-8")
            _check({Path(output): file}, model, programs)
    if output in STANDARD_OUTPUT:
        finish_output(text)
        return
    try:
        with open(output, "w", encoding="utf-8") as file:
            file.write(text)
    except OSError as error:
        raise Fault(output, f"cannot be written: {error.strerror or error}") from None
    finish_output(f"wrote {output}\n")


def _target(path, inputs):
    """The file of a name, with links followed. Folders are not replaced."""
    target = Path(os.path.realpath(path))
    if target.exists() and not target.is_file():
        raise Fault(path, "this is no regular file")
    for name in inputs:
        if os.path.realpath(name) == str(target) or (
            target.exists() and os.path.exists(name) and target.samefile(name)
        ):
            raise Fault(path, f"{name} would be written over")
    return target


def _write_file(path, text, target):
    """Writes a file with the rights of the one that it replaces."""
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)
        file.flush()
        os.fsync(file.fileno())
    if target.exists():
        os.chmod(path, target.stat().st_mode & 0o777)


def _find_check(programs):
    for folder in programs:
        found = shutil.which("morlen-check", path=str(folder))
        if found:
            return found
    return shutil.which("morlen-check")


def _check(made, model, programs):
    """Runs morlen-check on every file; its errors are those of the import, its warnings are passed on."""
    program = _find_check(programs)
    if not program:
        warn(next(iter(made)), "not checked: morlen-check is neither beside this program nor on PATH")
        return
    for path, file in made.items():
        run = subprocess.run(
            [program, "--quick", f"./{file.name}"],
            cwd=file.parent,
            capture_output=True,
            encoding="utf-8",
            errors="surrogateescape",
            check=False,
        )
        # The check names files without their folders.
        lines = [_with_folder(line, made) for line in run.stderr.splitlines() if _UNUSED_CASE not in line]
        _judge(path, model, run, lines)


def _with_folder(line, paths):
    for path in paths:
        for name in (f"./{path.name}:", f"{path.name}:"):
            if line.startswith(name):
                return f"{path}:{line.removeprefix(name)}"
    return line


def _judge(path, model, run, lines):
    """Raises the fault of a file with errors; prints warnings. `lines` are the messages of the check."""
    if run.returncode and _NO_CASES in run.stderr:
        warn(path, "not checked: this morlen-check has been built without files of load cases")
        return
    if run.returncode == 0:
        if lines:
            print("\n".join(lines), file=sys.stderr)
        return
    fault = Fault(path, "morlen-check finds errors in the model, and no file is written")
    fault.lines = lines + fault.lines + _numbers_in_mesh(lines, model)
    fault.lines.append("hint: --no-check writes the file, which has the lines and numbers of these errors")
    raise fault


def _numbers_in_mesh(lines, model):
    """A hint with the numbers that the elements and nodes of messages have in the mesh, where they are others."""
    if model.numbers is None:
        return []
    elements = {}
    for part in model.parts:
        elements.update(enumerate(part.numbers.tolist(), part.first))
    nodes = dict(enumerate(model.numbers.tolist(), 1))
    found = {}
    for line in lines:
        for what, *words in _NUMBERS.findall(line):
            what = "node" if what.lower() == "node" else "element"
            for number in map(int, filter(None, words)):
                own = (nodes if what == "node" else elements).get(number, number)
                if own != number:
                    found[f"{what} {number} is {own}"] = None
    if not found:
        return []
    more = ", ..." if len(found) > _MOST_NUMBERS else ""
    return [f"hint: in {model.source}: {', '.join(list(found)[:_MOST_NUMBERS])}{more}"]
