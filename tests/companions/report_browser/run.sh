#!/bin/sh
# Tests the reports in a headless Chromium; status 77 (skipped) where it or Node.js is missing.
#
#     run.sh TEST [CHROMIUM] [NODE] ARGUMENT...
#
# TEST is one of the files here. It gets the arguments and the browser.
# With REPORT_PICTURES=folder it leaves the pictures of the pages there, to be looked at.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
find_one()
{
  for name in "$@"; do command -v "$name" 2>/dev/null && return; done
}
test="$1"
chromium=$(find_one "${2:-chromium}" chromium-browser google-chrome) || true
node=$(find_one "${3:-node}" nodejs) || true
if [ -z "$chromium" ] || [ -z "$node" ] ||
    [ "$("$node" -p 'Number(process.versions.node.split(".")[0]) >= 18' 2>/dev/null)" != true ]; then
  echo "skipped: the tests of the reports need Chromium and Node.js 18 or later"
  exit 77
fi
shift 3
exec "$node" "$here/$test" "$@" "$chromium" ${REPORT_PICTURES:+"$REPORT_PICTURES"}
