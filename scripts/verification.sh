#!/bin/sh
# Computes the tables of docs/verification.md again and writes them there.
#     scripts/verification.sh [build/release]
set -eu
cd "$(dirname "$0")/.."
MORLEN_WRITE_VERIFICATION=1 "${1:-build/release}/tests/morlen_tests" --gtest_brief=1 \
  --gtest_filter='Verification.*'
