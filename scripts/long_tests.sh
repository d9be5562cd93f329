#!/bin/sh
# Runs the tests of large models with every set of instructions, also without vector instructions,
# which scripts/test.sh leaves out.
set -eu
cd "$(dirname "$0")/.."
cmake --preset release -DMORLEN_LONG_TESTS=ON -B build/long >/dev/null
cmake --build build/long --parallel "$(nproc)" --target morlen_tests
ctest --test-dir build/long --output-on-failure --parallel "$(nproc)" -L large
