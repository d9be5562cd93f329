#!/bin/sh
# Prints the table of badly scaled models of docs/verification.md from what the program computes.
#     scripts/rough_models.sh [build/release]
set -eu
cd "$(dirname "$0")/.."
"${1:-build/release}/tests/morlen_tests" --gtest_also_run_disabled_tests --gtest_brief=1 \
  --gtest_filter='RoughModels.DISABLED_Table' | grep '^|'
