#!/usr/bin/env python3
"""Fails on findings of clang-tidy, by .clang-tidy, in the C++ sources that changed.

    check_tidy.py SOURCE BUILD WORK [ALL]

SOURCE is the top folder of the repository, BUILD has compile_commands.json, WORK is a folder to
use. Sources have changed when they differ from the main branch; on that branch itself, from the
last tag, or from the commit before where there is none. MORLEN_TIDY_BASE names another commit.
A header counts as its source. At most MOST sources are read, those of the last commit first, and
none is begun after SECONDS; with ALL, all sources of the repository are read. Status 77 (skipped) without
clang-tidy or git, or when nothing changed.
"""

import concurrent.futures
import json
import os
import re
import shutil
import subprocess
import sys
import time

MOST = 20
SECONDS = 240
SKIPPED = 77
FOLDERS = ("src/", "direct/", "mpi/", "companions/", "bench/", "tests/")


def git(source, *arguments):
    """What git prints, or "" when it fails."""
    # The folder may belong to someone else, as in a container.
    command = ["git", "-c", "safe.directory=*", "-C", source, *arguments]
    run = subprocess.run(command, capture_output=True, text=True)
    return run.stdout.strip() if run.returncode == 0 else ""


def base_commit(source):
    """The commit that the sources are compared with, or ""."""
    named = os.environ.get("MORLEN_TIDY_BASE")
    if named:
        return git(source, "rev-parse", "--verify", named)
    head = git(source, "rev-parse", "HEAD")
    for main in ("origin/main", "main"):
        base = git(source, "merge-base", "HEAD", main)
        if base and base != head:
            return base
    tag = git(source, "describe", "--tags", "--abbrev=0", "HEAD^")
    return git(source, "rev-parse", "--verify", "--quiet", tag + "^{commit}" if tag else "HEAD^")


def changed_since(source, commit):
    """C++ files, relative to SOURCE, that differ from a commit, committed or not."""
    names = git(source, "diff", "--name-only", "--diff-filter=d", commit).splitlines()
    names += git(source, "ls-files", "--others", "--exclude-standard").splitlines()
    return [name for name in names if name.startswith(FOLDERS) and name.endswith((".h", ".cpp"))]


def changed_files(source):
    """The files that changed since the base, those of the last commit first."""
    base = base_commit(source)
    if not base:
        return []
    names = changed_since(source, "HEAD^") if git(source, "rev-parse", "--quiet", "HEAD^") else []
    return names + changed_since(source, base)


def commands_for_clang(build):
    """{source: entry of compile_commands.json}, without the other compiler's precompiled headers."""
    with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as file:
        entries = json.load(file)
    for entry in entries:
        entry["command"] = re.sub(
            r" (-Winvalid-pch|-include \S*cmake_pch\.hxx)(?= )", "", entry["command"]
        )
    return {os.path.realpath(entry["file"]): entry for entry in entries}


def sources_to_read(source, commands, everything):
    """The compiled sources among the changed files and beside the changed headers."""
    top = os.path.realpath(source)
    if everything:
        paths = sorted(os.path.relpath(path, top) for path in commands)
    else:
        paths = [re.sub(r"\.h$", ".cpp", name) for name in changed_files(source)]
    paths = [path for path in dict.fromkeys(paths) if path.startswith(FOLDERS)]
    return [path for path in paths if os.path.join(top, path) in commands]


class Reader:
    """Runs clang-tidy on one source at a time, until the end of its time."""

    def __init__(self, tool, source, commands, seconds):
        self.tool = tool
        self.source = source
        self.commands = commands  # the folder of compile_commands.json
        self.end = time.monotonic() + seconds

    def read(self, path):
        """The findings in a source, "" for none; None when the time is over."""
        if time.monotonic() > self.end:
            return None
        file = os.path.join(self.source, path)
        run = subprocess.run(
            [self.tool, "--quiet", "-p", self.commands, file], capture_output=True, text=True
        )
        return "" if run.returncode == 0 else run.stdout or run.stderr


def main(source, build, work, everything=""):
    tool = shutil.which("clang-tidy-14") or shutil.which("clang-tidy")
    if not tool or not shutil.which("git"):
        print("skipped: no clang-tidy or no git")
        return SKIPPED
    source = os.path.realpath(source)
    commands = commands_for_clang(build)
    paths = sources_to_read(source, commands, everything)
    if not paths:
        print("skipped: no source has changed, or there is no commit to compare with")
        return SKIPPED
    os.makedirs(work, exist_ok=True)
    with open(os.path.join(work, "compile_commands.json"), "w", encoding="utf-8") as file:
        json.dump(list(commands.values()), file)
    reader = Reader(tool, source, work, float("inf") if everything else SECONDS)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        results = list(pool.map(reader.read, paths if everything else paths[:MOST]))
    findings = [result for result in results if result]
    read = len(results) - results.count(None)
    print(f"{read} of {len(paths)} sources, {len(findings)} with findings")
    print("\n".join(findings))
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
