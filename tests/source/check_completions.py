#!/usr/bin/env python3
"""Checks the completions of the command lines and the "see also" lists of the manual pages.

    check_completions.py TOP PROGRAM...

Every program with a manual page has a completion for bash, zsh and fish, with exactly the options of its --help. For
programs that are not given or have no --help these are the options of the manual page. zsh and fish are asked where
they are installed.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys

TOP = pathlib.Path(sys.argv[1])
PROGRAMS = {pathlib.Path(name).name: name for name in sys.argv[2:]}
COMMON = {"-h", "--help", "--version"}
FOLDER = TOP / "completions"
PAGES = {page.stem: page.read_text(encoding="utf-8") for page in (TOP / "man").glob("*.1")}


def require(condition, *what):
    if not condition:
        sys.exit("check_completions: " + " ".join(str(part) for part in what))


def output_of(*command):
    environment = os.environ | {"PYTHONPATH": str(TOP / "python")}  # of morlen-import
    run = subprocess.run([str(word) for word in command], capture_output=True, text=True, check=False, env=environment)
    require(run.returncode == 0 and not run.stderr, *command, "ends with", run.returncode, run.stderr)
    return run.stdout


def options_of_page(name):
    """The options that begin a paragraph: .B, .BI or .BR after .TP."""
    heads = re.findall(r"^\.TP\n(\.B[IR]? .*)$", PAGES[name], re.M)
    return {option for head in heads for option in re.findall(r"(?<![\w-])--?\w[\w-]*", head.replace("\\-", "-"))}


def options_of_help(program):
    command = [program, "--help"]
    if pathlib.Path(program).read_bytes()[:2] == b"#!":  # morlen-import, without the packages that it needs
        command = [sys.executable, "-c", "from morlen_import.command_line import main; main(['--help'])"]
    text = output_of(*command)
    heads = re.findall(r"^  (-.*?)(?:  |$)", text, re.M)
    return {option for head in heads for option in re.findall(r"(?<![\w-])--?[A-Za-z][\w-]*", head)}


def options_of(name):
    if name == "morlen-mpi":
        return options_of_page(name) | options_of_page("morlen")
    if name == "morlen":
        return options_of_page(name)
    if name not in PROGRAMS:
        return options_of_page(name) | COMMON
    options = options_of_help(PROGRAMS[name])
    require("--help" in options, name, "has the options", options)
    missing = options - options_of_page(name)
    require(not missing - COMMON, "the page of", name, "lacks", missing)
    return options


def options_in_bash(name):
    script = f"source '{FOLDER / name}'; COMP_WORDS=({name} -); COMP_CWORD=1; "
    function = "_" + name.replace("-", "_")
    return output_of("bash", "-c", script + function + ' && printf "%s\\n" "${COMPREPLY[@]}"').split()


def options_in_zsh(name):
    """The options that the file declares to _arguments, after zsh has expanded it."""
    file = FOLDER / f"_{name}"
    require(file.read_text().startswith(f"#compdef {name}\n"), file, "is for another program")
    declared = output_of("zsh", "-f", "-c", f'_arguments() {{ print -rl -- "$@" }}; source "{file}"')
    return re.findall(r"^(?:\([^)]*\))?\*?(--?[\w-]+)\[", declared, re.M)


def options_in_fish(name):
    found = []
    for typed in ("-", "--"):
        script = f"complete -e -c {name}; source '{FOLDER / name}.fish'; complete -C '{name} {typed}'"
        found += [line.split("\t")[0] for line in output_of("fish", "--no-config", "-c", script).splitlines()]
    return found


def check_completions(name):
    options = options_of(name)
    require(options, name, "has no options")
    for shell, read in (("bash", options_in_bash), ("zsh", options_in_zsh), ("fish", options_in_fish)):
        file = FOLDER / {"bash": name, "zsh": f"_{name}", "fish": f"{name}.fish"}[shell]
        require(file.exists(), file, "is missing")
        if shutil.which(shell):
            found = set(read(name))
            require(found == options, f"{file} has {sorted(found)}, and {name} has {sorted(options)}")
        else:
            print(f"{name}: {shell} is not installed")


def check_see_also(name):
    section = PAGES[name].split(".SH SEE ALSO", 1)[-1]
    listed = re.findall(r"^\.BR (morlen[\w-]*) \(1\)", section.replace("\\-", "-"), re.M)
    require(listed == sorted(PAGES.keys() - {name}), "the page of", name, "lists", listed)


def main():
    require(len(PAGES) >= 7, "the pages are", list(PAGES))
    for name in sorted(PAGES):
        check_see_also(name)
        check_completions(name)


if __name__ == "__main__":
    main()
