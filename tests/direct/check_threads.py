#!/usr/bin/env python3
"""Fails when a run with Solver Direct has more than one thread.

    check_threads.py PROGRAM GENERATOR FOLDER

The environment asks BLAS for eight threads. The program must not be linked with a shared BLAS: it
may be one that starts them.
"""

import os
import pathlib
import subprocess
import sys


def threads_of(process):
    with open(f"/proc/{process}/status", encoding="ascii") as lines:
        for line in lines:
            if line.startswith("Threads:"):
                return int(line.split()[1])
    return 0


def main(program, generator, folder):
    folder = pathlib.Path(folder)
    folder.mkdir(exist_ok=True)
    with open(folder / "model.dat", "w", encoding="ascii") as out:
        subprocess.run([sys.executable, generator, "--setting", "Solver Direct", "roof", "90"],
                       stdout=out, check=True)
    environment = {**os.environ, "OPENBLAS_NUM_THREADS": "8", "OMP_NUM_THREADS": "8"}
    run = subprocess.Popen([program, "model.dat"], cwd=folder, env=environment)
    looks = 0
    most = 0
    while run.poll() is None:
        try:
            most = max(most, threads_of(run.pid))
        except OSError:
            break
        looks += 1
    shared = subprocess.run(["ldd", program], capture_output=True, text=True, check=True).stdout
    print(f"status {run.wait()}, {looks} looks, at most {most} threads")
    return 1 if run.returncode or looks < 10 or most != 1 or "blas" in shared else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
