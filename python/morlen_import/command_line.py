"""The program morlen-import: arguments, files, exit status."""

import argparse
import os
import re
import signal
import sys
from pathlib import Path

from morlen_import import units
from morlen_import.fault import Fault, Faults, LostOutput, finish_output

USAGE = "morlen-import MESH MAP -o FILE, or morlen-import MODEL.inp --units LENGTH,FORCE -o FILE"

INTERRUPTED = "morlen-import: interrupted"


class _Parser(argparse.ArgumentParser):
    def error(self, message):
        raise _Usage(message)


class _Usage(Exception):
    pass


def _parser():
    parser = _Parser(
        prog="morlen-import",
        usage=USAGE,
        add_help=False,
        allow_abbrev=False,
        description="Makes a problem file of morlen from a mesh and a map of its groups, or from an .inp file.",
    )
    parser.add_argument("mesh", metavar="MESH", help="a mesh (.msh, .inp, .med, .vtk, .vtu, ...)")
    parser.add_argument("map", metavar="MAP", nargs="?", help="what becomes of its groups, in TOML")
    parser.add_argument("-o", "--output", metavar="FILE", help="the problem file; - is standard output")
    parser.add_argument(
        "--groups", action="store_true", help="list the groups of the mesh, and write no file"
    )
    parser.add_argument(
        "--units", metavar="LENGTH,FORCE", help="the units of an .inp file with sections, such as mm,N"
    )
    parser.add_argument(
        "--skip", action="store_true", help="skip unknown keywords of an .inp file with a warning"
    )
    parser.add_argument("--no-check", action="store_true", help="do not run morlen-check on the result")
    parser.add_argument("-h", "--help", action="store_true", help="print this help")
    parser.add_argument("--version", action="store_true", help="print the version")
    return parser


def main(arguments=None, version="0.1.0", programs=()):
    """Runs the program; gives its exit status. `programs` are folders to look for morlen-check in."""
    arguments = sys.argv[1:] if arguments is None else arguments
    if hasattr(sys.stdout, "reconfigure"):
        sys.stdout.reconfigure(errors="surrogateescape")  # names of files may be any bytes
    parser = _parser()
    if "-h" in arguments or "--help" in arguments:
        print(parser.format_help(), end="")
        return 0
    if "--version" in arguments:
        print(f"morlen-import {version}")
        return 0
    try:
        options = parser.parse_args(arguments)
        _check_options(options)
    except _Usage as error:
        print(f"morlen-import: {error}\nusage: {USAGE}", file=sys.stderr)
        return 2
    interrupts = _note_interrupts()
    try:
        _run(options, programs)
        return 0
    except (Fault, Faults) as error:
        message = "\n".join(error.lines)
    except LostOutput as error:
        message = f"error: can't write to standard output\nhint: {error}"
    except MemoryError:
        message = f"{options.mesh}: error: there is not enough memory for it"
    except KeyboardInterrupt:
        message = INTERRUPTED
    except Exception as error:  # a fault of this program: still one message
        message = f"{options.mesh}: error: internal error, please report it: {type(error).__name__}: {error}"
    # An interrupt inside a library may come out of it as another error.
    print(INTERRUPTED if interrupts else message, file=sys.stderr)
    return 2


def _note_interrupts():
    """A list that every SIGINT is added to before it becomes a KeyboardInterrupt."""
    noted = []

    def note(number, _):
        noted.append(number)
        raise KeyboardInterrupt

    if signal.getsignal(signal.SIGINT) is signal.default_int_handler:
        signal.signal(signal.SIGINT, note)
    return noted


def _check_options(options):
    if options.groups:
        if options.map or options.output or options.units:
            raise _Usage("--groups takes a mesh only")
        return
    if not options.output:
        raise _Usage("the name of the problem file is missing: -o FILE")
    is_inp = options.mesh.lower().endswith(".inp")
    if options.map and options.units:
        raise _Usage("the map has the units: leave out --units")
    if not options.map and not (is_inp and options.units):
        raise _Usage(
            "--units LENGTH,FORCE is missing, or a map of the groups"
            if is_inp
            else "the map of the groups is missing (--groups lists them)"
        )
    if options.skip and not is_inp:
        raise _Usage("--skip is only for .inp files")
    if options.units:
        words = options.units.split(",")
        fault = units.fault_of(*words) if len(words) == 2 else "two units are needed, such as mm,N"
        if fault:
            raise _Usage(f"--units {options.units}: {fault}")


def read_file(name):
    """The bytes of a file."""
    try:
        if os.path.isdir(name):
            raise Fault(name, "this is a folder")
        return Path(name).read_bytes()
    except OSError as error:
        raise Fault(name, f"cannot be read: {error.strerror or error}") from None
    except ValueError:
        raise Fault(name.replace("\0", "?"), "no name of a file") from None


def _run(options, programs):
    from morlen_import import result_files  # numpy is loaded when there is work

    inputs = list(filter(None, (options.mesh, options.map)))

    def read(name):
        inputs.append(name)
        return read_file(name)

    if options.groups:
        for group in _read_mesh(options, read).groups:
            finish_output(group.text() + "\n")
        return
    cases = []
    if options.map:
        from morlen_import.apply_map import apply_map
        from morlen_import.group_map import read_map

        group_map = read_map(options.map, read(options.map))
        model = apply_map(_read_mesh(options, read), group_map)
    else:
        from morlen_import.inp_model import read_model

        model, cases = read_model(options.mesh, *options.units.split(","), options.skip, read)
    result_files.write(options.output, model, cases, None if options.no_check else programs, inputs)


def _read_mesh(options, read):
    name = options.mesh
    ending = re.sub(r".*\.", "", os.path.basename(name)).lower()
    if ending == "msh":
        from morlen_import.msh import read_msh

        return read_msh(name, read(name))
    if ending == "inp":
        from morlen_import.inp_mesh import read_mesh

        return read_mesh(name, options.skip, read)
    from morlen_import.foreign import read_foreign

    return read_foreign(name)
