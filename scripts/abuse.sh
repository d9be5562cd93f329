#!/bin/sh
# Runs the program on hostile input and injected faults made from the examples and the problem
# files of the tests. Arguments go to tests/abuse/abuse.py:
#     scripts/abuse.sh [build/release/morlen] [--scale 0.1] [--budget 300] ...
# For a build with sanitizers: --asan --time 60
set -eu
cd "$(dirname "$0")/.."
program="build/release/morlen"
case "${1:-}" in '' | -*) ;; *) program="$1" && shift ;; esac
# Not the largest example: its thousands of variants would take hours.
seeds=$(ls examples/*.dat tests/runs/*/*.dat | grep -v connecting_rod)
exec python3 tests/abuse/abuse.py --keep build/abuse "$@" "$program" $seeds
