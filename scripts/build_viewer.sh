#!/bin/sh
# Builds the page of the reports anew, companions/report/viewer/dist/report.html, from its sources
# beside it. Needs npm; everything else in this repository builds without it.
set -eu
cd "$(dirname "$0")/../companions/report/viewer"
npm ci --no-audit --no-fund
npm run build
