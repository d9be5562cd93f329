#!/bin/sh
# Checks the JavaScript of the reports; status 77 (skipped) without node, npm or the packages that
# scripts/install_viewer_tools.sh installs.
#
#     check_viewer.sh style VIEWER       prettier and eslint
#     check_viewer.sh page VIEWER PAGE   dist/report.html is what the sources give; PAGE: a file to use
set -eu
check="$1"
cd "$2"

skip()
{
  echo "skipped: $1"
  exit 77
}
command -v node >/dev/null || skip "no node"
command -v npm >/dev/null || skip "no npm"
cmp -s package-lock.json node_modules/.installed ||
  skip "the packages are missing or old: scripts/install_viewer_tools.sh"

if [ "$check" = style ]; then
  exec npm run --silent style
fi
node build.mjs "$3"
cmp "$3" dist/report.html || {
  echo "dist/report.html is not what its sources give: run scripts/build_viewer.sh" >&2
  exit 1
}
rm "$3"
