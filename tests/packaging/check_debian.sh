#!/bin/sh
# Packs the build into Debian packages and looks into them: contents, fields, a run.
# Usage: check_debian.sh <build folder> <folder to use> <program that must be there> ...
# MORLEN_PYTHON_PACKAGE: the Python that the package python3-morlen is for; empty without one.
set -eu
build=$1
work=$2
shift 2

fail()
{
  echo "check_debian: $1" >&2
  exit 1
}

rm -rf "$work"
mkdir -p "$work"
# Compressing takes as long as everything else, and is not looked at here.
cpack --config "$build/CPackConfig.cmake" -B "$work" -D CPACK_DEBIAN_COMPRESSION_TYPE=none \
  >"$work/log" 2>&1 || fail "$(cat "$work/log")"
packages="morlen libmorlen-dev"
[ -z "${MORLEN_PYTHON_PACKAGE:-}" ] || packages="$packages python3-morlen"
for package in $packages; do
  file=$(find "$work" -maxdepth 1 -name "${package}_*.deb")
  [ -n "$file" ] || fail "no package $package"
  [ "$(dpkg-deb -f "$file" Package)" = "$package" ] || fail "name of $file"
  mkdir "$work/$package"
  dpkg-deb -x "$file" "$work/$package"
  [ -f "$work/$package/usr/share/doc/$package/copyright" ] || fail "$package has no copyright file"
done

file=$(find "$work" -maxdepth 1 -name "morlen_*.deb")
dpkg-deb -f "$file" Depends | grep -q "libc6 (>=" || fail "dependencies: $(dpkg-deb -f "$file" Depends)"
for program in "$@"; do
  [ -x "$work/morlen/usr/bin/$program" ] || fail "no $program"
  page=$(find "$work/morlen/usr/share/man/man1" -name "$program.1*")
  [ -n "$page" ] || fail "no manual page of $program"
done
find "$work/libmorlen-dev" -name morlenConfig.cmake | grep -q . || fail "no package for CMake"
[ -z "$(find "$work/morlen" -name '*.h' -o -name '*.a')" ] || fail "headers among the programs"

case " $* " in
  *" morlen-import "*) "$work/morlen/usr/bin/morlen-import" --version >/dev/null || fail "morlen-import does not start" ;;
esac

cp "$work/morlen/usr/share/doc/morlen/examples/portal_frame.dat" "$work"
(cd "$work" && morlen/usr/bin/morlen portal_frame.dat portal_frame.txt)
grep -q "^2  0.00912" "$work/portal_frame.txt" || fail "the packed program computes something else"
if grep -q "^morlen_build_direct" "$build/direct.txt" 2>/dev/null; then
  sed '1,/^[^#]/s/^\(problem type.*\)/\1\nSolver Direct/' "$work/portal_frame.dat" >"$work/direct.dat"
  (cd "$work" && morlen/usr/bin/morlen direct.dat direct.txt)
  grep -q "^2  0.00912" "$work/direct.txt" || fail "the packed program has no Solver Direct"
  [ -f "$work/morlen/usr/share/doc/morlen/LICENSE.third-party" ] || fail "no third licences"
  dpkg-deb -f "$file" Depends | grep -Eq "blas|mumps|mpi" && fail "dependencies of the solver"
fi
if [ -n "${MORLEN_PYTHON_PACKAGE:-}" ]; then
  file=$(find "$work" -maxdepth 1 -name "python3-morlen_*.deb")
  dpkg-deb -f "$file" Depends | grep -q "python3-numpy" || fail "dependencies of python3-morlen"
  folder=$(dirname "$(find "$work/python3-morlen" -name py.typed)")
  # The place is one of those where this Python looks.
  "$MORLEN_PYTHON_PACKAGE" -c "import site, sys; sys.exit(sys.argv[1] not in site.getsitepackages())" \
    "$(dirname "${folder#"$work"/python3-morlen}")" || fail "python3-morlen is in $folder"
  sway=$(PYTHONPATH="$folder/.." "$MORLEN_PYTHON_PACKAGE" -c \
    "import morlen; print(morlen.read('$work/portal_frame.dat').solve().displacements[1, 0])")
  case "$sway" in 0.00912*) ;; *) fail "the packed Python package computes $sway" ;; esac
fi
rm -rf "$work"
