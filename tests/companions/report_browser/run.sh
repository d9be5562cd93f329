#!/bin/sh
# Tests the reports in a headless Chromium; status 77 (skipped) where it or Node.js is missing.
#
#     run.sh CHROMIUM NODE MORLEN MORLEN_EXPORT MORLEN_REPORT MORLEN_CASES EXAMPLES
#
# An empty CHROMIUM or NODE is looked for. REPORT_TESTS="report members" runs some files only.
# With REPORT_PICTURES=folder it leaves the pictures of the pages there, to be looked at.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
find_one()
{
  for name in "$@"; do command -v "$name" 2>/dev/null && return; done
}
chromium=$(find_one "${1:-chromium}" chromium-browser google-chrome) || true
node=$(find_one "${2:-node}" nodejs) || true
if [ -z "$chromium" ] || [ -z "$node" ] ||
    [ "$("$node" -p 'Number(process.versions.node.split(".")[0]) >= 18' 2>/dev/null)" != true ]; then
  echo "skipped: the tests of the reports need Chromium and Node.js 18 or later"
  exit 77
fi
shift 2
exec "$node" "$here/all_tests.mjs" "$@" "$chromium" ${REPORT_PICTURES:+"$REPORT_PICTURES"}
