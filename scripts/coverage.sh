#!/bin/sh
# Counts the lines that the tests run, in build/coverage. Prints the figures of the readers of the
# problem file and of everything; build/coverage/uncovered.txt lists the lines that no test runs.
set -eu
cd "$(dirname "$0")/.."
scripts/install_tools.sh g++ cmake make libgtest-dev gcovr

build=build/coverage
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DMORLEN_COVERAGE=ON >/dev/null
cmake --build "$build" --parallel "$(nproc)" --target morlen morlen_tests
find "$build" -name '*.gcda' -delete
# Without the tests of full disks, closed streams and failing allocations: these would also hit the
# files of the counts.
"$build/tests/morlen_tests" --gtest_brief=1 --gtest_filter='-Faults*:Allocations*'

report() { gcovr --root . --filter src/ "$@" "$build"; }
report --json -o "$build/coverage.json"
gcovr --root . -a "$build/coverage.json" --txt -o "$build/uncovered.txt"
readers='src/(problem/.*reader|model/.*reader|base/(textscan|number_text)|problem/(elem_loads|hinges|pressure_load|references)|model/units)\.cpp'
echo "Readers:"
gcovr --root . -a "$build/coverage.json" --filter "$readers" --txt | tail -n 3 | grep TOTAL
echo "Everything:"
grep TOTAL "$build/uncovered.txt"
