#!/bin/sh
# Builds the page of the reports, companions/report/viewer/dist/report.html, from its sources in the
# same folder. Needs node and npm; everything else in this repository builds without it.
set -eu
cd "$(dirname "$0")"
./install_viewer_tools.sh
cd ../companions/report/viewer
npm run build
