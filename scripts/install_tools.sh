#!/bin/sh
# Installs those of the Debian packages named as arguments that are missing; with sudo unless root.
set -eu

missing=""
for package in "$@"; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "ok installed" ||
    missing="$missing $package"
done
[ -z "$missing" ] && exit 0

if ! command -v apt-get >/dev/null 2>&1; then
  echo "Please install:$missing" >&2
  exit 1
fi
as_root=""
[ "$(id -u)" -eq 0 ] || as_root="sudo"
echo "Installing$missing"
$as_root apt-get update -qq
# shellcheck disable=SC2086  # one word per package
DEBIAN_FRONTEND=noninteractive $as_root apt-get install -y -qq --no-install-recommends $missing >/dev/null
