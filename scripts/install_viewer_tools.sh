#!/bin/sh
# Installs the packages of companions/report/viewer/package-lock.json, unless they are there.
set -eu
cd "$(dirname "$0")/../companions/report/viewer"
cmp -s package-lock.json node_modules/.installed && exit 0
npm ci --no-audit --no-fund --loglevel=error
cp package-lock.json node_modules/.installed
