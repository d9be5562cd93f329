#!/bin/sh
# Measures the speed of the program: builds it optimised with the benchmarks, generates models
# into build/bench/models, and runs
#   scripts/bench.sh           all that follows
#   scripts/bench.sh kernels   the kernels
#   scripts/bench.sh stages    whole runs, stage by stage
set -eu
cd "$(dirname "$0")/.."
part="${1:-all}"
case "$part" in
  all | kernels | stages) ;;
  *)
    echo "usage: scripts/bench.sh [kernels|stages]" >&2
    exit 2
    ;;
esac

# Below and above the number of equations from which the sparse solver is chosen.
models="frame3d 5 5 68
portal2d 49 98
frame3d 7 7 51
frame3d 32 32 30
block 36
block10 18"

scripts/install_tools.sh g++ cmake make python3 libbenchmark-dev
cmake --preset release -DMORLEN_TESTS=OFF -DMORLEN_BENCH=ON -B build/bench >/dev/null
cmake --build build/bench --target morlen_bench morlen_stages --parallel "$(nproc)"

if [ "$part" != stages ]; then
  # By itself, because the peak of memory counts what was held before.
  build/bench/bench/morlen_bench --benchmark_filter=SparseRun
  build/bench/bench/morlen_bench --benchmark_filter=-SparseRun
fi
if [ "$part" != kernels ]; then
  mkdir -p build/bench/models
  echo "$models" | while read -r family numbers; do
    file="build/bench/models/${family}_$(echo "$numbers" | tr ' ' '_').dat"
    # shellcheck disable=SC2086  # one word per number
    bench/generate_models.py "$family" $numbers >"$file"
    build/bench/bench/morlen_stages "$file"
  done
fi
