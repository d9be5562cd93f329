"""Writes the problem file and its cases, and runs morlen-check on it."""

import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

from morlen_import.case_writer import cases_text
from morlen_import.fault import Fault, warn
from morlen_import.writer import problem_text


def write(output, model, cases, programs, inputs=()):
    """Writes the files under temporary names, checks the problem file, and renames them.

    `programs` are folders to look for morlen-check in, before those of PATH; None: no check. None of the `inputs` is
    written over.
    """
    path = Path(output)
    texts = {path: problem_text(model)}
    if cases:
        case_path = path.with_suffix(".cases")
        if case_path == path:
            raise Fault(output, "the problem file needs another ending: its cases are written to this name")
        texts[case_path] = cases_text(path.name, model, cases)
    targets = {name: _target(name, inputs) for name in texts}
    temporary = {}
    try:
        for name, text in texts.items():
            temporary[name] = _write_temporary(targets[name], text)
        if programs is not None:
            _check(path, temporary[path], programs)
        for name, made in temporary.items():
            os.replace(made, targets[name])
    except OSError as error:
        raise Fault(output, f"cannot be written: {error.strerror or error}") from None
    finally:
        for made in temporary.values():
            if os.path.exists(made):
                os.unlink(made)
    for name in texts:
        print(f"wrote {name}")


def _target(path, inputs):
    """The file of a name, with links followed. Only regular files are replaced."""
    target = Path(os.path.realpath(path))
    if target.exists() and not target.is_file():
        raise Fault(path, "this is no regular file")
    for name in inputs:
        if os.path.realpath(name) == str(target) or (
            target.exists() and os.path.exists(name) and target.samefile(name)
        ):
            raise Fault(path, f"{name} would be written over")
    return target


def _write_temporary(path, text):
    handle, name = tempfile.mkstemp(prefix=f".{path.name}.", suffix=".morlen-tmp", dir=path.parent)
    try:
        with os.fdopen(handle, "w", encoding="utf-8") as file:
            file.write(text)
            file.flush()
            os.fsync(file.fileno())
        mask = os.umask(0)
        os.umask(mask)
        os.chmod(name, path.stat().st_mode & 0o777 if path.exists() else 0o666 & ~mask)
    except BaseException:
        os.unlink(name)
        raise
    return name


def _find_check(programs):
    for folder in programs:
        found = shutil.which("morlen-check", path=str(folder))
        if found:
            return found
    return shutil.which("morlen-check")


def _check(path, temporary, programs):
    """Runs morlen-check; its errors are those of the import, its warnings are passed on."""
    program = _find_check(programs)
    if not program:
        warn(path, "not checked: morlen-check is neither beside this program nor on PATH")
        return
    run = subprocess.run([program, temporary], capture_output=True, text=True, errors="replace", check=False)
    messages = re.sub(re.escape(temporary), lambda _: str(path), run.stderr).rstrip()
    if run.returncode == 0:
        if messages:
            print(messages, file=sys.stderr)
        return
    fault = Fault(path, "morlen-check finds errors in the model, and no file is written")
    fault.lines = ([messages] if messages else []) + fault.lines
    fault.lines.append("hint: --no-check writes the file, which has the lines and numbers of these errors")
    raise fault
