#!/bin/sh
# Computes the last column of the table of badly scaled models in docs/verification.md again and
# writes it there. Prints the models that have no line in the table.
#     scripts/rough_models.sh [build/release]
set -eu
cd "$(dirname "$0")/.."
results=$(mktemp)
trap 'rm -f "$results" "$results.md"' EXIT
"${1:-build/release}/tests/morlen_tests" --gtest_also_run_disabled_tests --gtest_brief=1 \
  --gtest_filter='RoughModels.DISABLED_Table' | grep '^|' >"$results"
awk -F'|' -v OFS='|' '
  NR == FNR { error[$2] = $4; line[$2] = $0; next }
  $2 in error { $5 = error[$2]; delete line[$2] }
  { print }
  END { for (model in line) print line[model] >"/dev/stderr" }' \
  "$results" docs/verification.md >"$results.md"
cat "$results.md" >docs/verification.md
