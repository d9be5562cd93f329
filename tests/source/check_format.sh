#!/bin/sh
# Fails on C++ files that are not laid out by .clang-format; status 77 (skipped) without the
# clang-format that decides, version 14. Usage: check_format.sh <top folder of the repository>
set -eu
cd "$1"
version=14

for tool in "clang-format-$version" clang-format; do
  "$tool" --version 2>/dev/null | grep -q "version $version\." && break
  tool=""
done
if [ -z "$tool" ]; then
  echo "skipped: no clang-format $version"
  exit 77
fi

find src direct mpi companions python bench tests -name node_modules -prune -o -name '*.h' -print -o -name '*.cpp' -print |
  xargs "$tool" --dry-run --Werror --ferror-limit=3
