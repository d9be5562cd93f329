#!/bin/sh
# Builds the program and runs all tests; the last line counts them.
# Arguments go to ctest, for example: scripts/test.sh -R Material
set -eu
cd "$(dirname "$0")/.."
preset="${MORLEN_PRESET:-release}"

# The companions and the tests that read their files need more than the program does. The last
# package is a BLAS with threads, which the program must not use.
scripts/install_tools.sh g++ cmake make libgtest-dev libcli11-dev nlohmann-json3-dev \
  libpugixml-dev libtomlplusplus-dev python3-vtk9 dpkg-dev gzip libmumps-seq-dev libmetis-dev \
  libopenblas-serial-dev libopenblas0-pthread
# The Python package, and what its tests use.
scripts/install_tools.sh pybind11-dev python3-dev python3-numpy python3-pytest || true
for package in python3-scipy python3-pandas python3-matplotlib python3-venv mypy; do
  scripts/install_tools.sh "$package" || true
done
# Those of morlen-import read meshes of gmsh and compare with CalculiX.
scripts/install_tools.sh python3-numpy python3-pytest || true
for package in python3-meshio python3-h5py gmsh calculix-ccx; do
  scripts/install_tools.sh "$package" || true
done
# Tests of the reports need a browser and node, those of the sources' style git, clang and npm,
# those of the completions zsh and fish.
# Where these cannot be installed, such tests are skipped.
for tool in chromium git clang-format clang-tidy npm zsh fish; do
  command -v "$tool" >/dev/null || scripts/install_tools.sh "$tool" || true
done
command -v node >/dev/null || scripts/install_tools.sh nodejs || true
scripts/install_viewer_tools.sh || true
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" --parallel "$(nproc)"

log="build/$preset/tests.log"
status=0
ctest --preset "$preset" --parallel "$(nproc)" "$@" >"$log" 2>&1 || status=$?
sed -n '/\*\*\*\|^[0-9]* tests\|tests passed\|^The following/,$p' "$log" | tail -n 60

# ctest: "98% tests passed, 2 tests failed out of 123"
summary=$(grep -E 'tests passed, [0-9]+ tests? failed out of [0-9]+' "$log" || true)
failed=$(echo "$summary" | sed -n 's/.*, \([0-9]*\) tests\{0,1\} failed.*/\1/p')
total=$(echo "$summary" | sed -n 's/.*out of \([0-9]*\).*/\1/p')
if [ -z "$total" ] || [ "$total" -eq 0 ]; then
  cat "$log"
  echo "no test was run" >&2
  exit 1
fi
echo "$((total - failed)) passed, $failed failed"
exit "$status"
