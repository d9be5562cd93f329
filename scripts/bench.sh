#!/bin/sh
# Measures the speed of the program: builds it optimised with the benchmarks and prints tables
# of figures, targets and ratios.
#   scripts/bench.sh kernels     every stage of the program, and the kernels by themselves
#   scripts/bench.sh whole       whole runs compared with CalculiX, where `ccx` is installed
#   scripts/bench.sh cholmod     the skyline solver compared with CHOLMOD on the same matrices
#   scripts/bench.sh choice      the automatic choice of the solver compared with each solver
#   scripts/bench.sh direct      the sparse direct solver compared with the skyline and CalculiX
#   scripts/bench.sh refinement  the part of the refinement in direct runs
#   scripts/bench.sh shells      refined shells compared with standard ones, element by element
#   scripts/bench.sh growth      growth with the number of equations
#   scripts/bench.sh linear      growth with the length of the input
#   scripts/bench.sh cases       many load cases, combinations and envelopes
#   scripts/bench.sh             all of these
# Models and measurements are left in build/bench.
set -eu
cd "$(dirname "$0")/.."
part="${1:-all}"
case "$part" in
  all | kernels | whole | cholmod | choice | direct | refinement | shells | growth | linear | cases) ;;
  *)
    echo "usage: scripts/bench.sh" \
      "[kernels|whole|cholmod|choice|direct|refinement|shells|growth|linear|cases]" >&2
    exit 2
    ;;
esac

# Models below and above 15000 equations, from which the sparse solver may be chosen.
direct_models="block 16
block10 8
plate 48
roof 48
frame3d 5 5 68
portal2d 49 98"
sparse_models="block 40
block10 20
plate 90
frame3d 15 15 130
portal2d 199 332"
growing_models="block 8
block 12
block 16
block 24
block 40
block 54
block10 4
block10 6
block10 8
block10 12
block10 20
block10 27
plate 16
plate 32
plate 48
plate 90
plate 130
plate 181
frame3d 10 10 68
frame3d 15 15 130
frame3d 20 20 188"
peer_models="$direct_models
block 24
block 40
block 54
block10 12
block10 20
block10 27
plate 90
plate 181
frame3d 10 10 68
frame3d 15 15 130"
# Further models of the comparison with the peer: up to 500,000 equations in every family.
further_peer_models="roof 90
plate6 90
roof6 90
roof 181
portal2d 199 332
plate 287
roof 287
plate6 143
roof6 143
frame3d 20 20 188
portal2d 333 500"
# Models with targets of the sparse direct solver.
target_models="roof 181
plate 181
portal2d 199 332
block 24
roof 500"

# Models for which both solvers take about as long, and families that favour one of them.
further_models="roof 70
sheet 90
plate6 40
plate 56
portal2d 20 400
portal2d 60 110
frame3d 4 4 120
frame3d 8 8 50
frame3d 30 30 3"

bin=build/bench/bench
models=build/bench/models

# Generates the models of a list, one a line, and prints their files. The second argument, if any,
# is the solver of the models, a line of their settings.
generate() {
  mkdir -p "$models"
  echo "$1" | while read -r family numbers; do
    file="$models/${family}_$(echo "$numbers" | tr ' ' '_')${2:+_$2}.dat"
    # shellcheck disable=SC2086  # one word per number
    [ -s "$file" ] || bench/generate_models.py ${2:+--setting "Solver $2"} "$family" $numbers >"$file"
    echo "$file"
  done
}

scripts/install_tools.sh g++ cmake make python3 libbenchmark-dev libmumps-seq-dev libmetis-dev \
  libopenblas-serial-dev
if [ "$part" = cholmod ] || [ "$part" = all ]; then
  scripts/install_tools.sh libsuitesparse-dev libopenblas-dev
fi
cmake --preset release -DMORLEN_TESTS=OFF -DMORLEN_BENCH=ON -B build/bench >/dev/null
cmake --build build/bench --parallel "$(nproc)"

if [ "$part" = kernels ] || [ "$part" = all ]; then
  files=$(generate "$direct_models
$sparse_models")
  "$bin"/morlen_limits >build/bench/limits.json
  # shellcheck disable=SC2086  # one word per file
  "$bin"/morlen_stages $files >build/bench/stages.json
  bench/report.py stages build/bench/stages.json
  bench/report.py kernels build/bench/stages.json build/bench/limits.json
  # Separately, because the peak of memory includes memory held before.
  "$bin"/morlen_bench --benchmark_filter=SparseRun
  "$bin"/morlen_bench --benchmark_filter=-SparseRun
fi
if [ "$part" = whole ] || [ "$part" = all ]; then
  printf '%s\n%s' "$peer_models" "$further_peer_models" | tr '\n' '\0' |
    xargs -0 bench/whole_runs.py --folder build/bench build/bench/morlen >build/bench/whole.json
  bench/report.py whole build/bench/whole.json
fi
if [ "$part" = cholmod ] || [ "$part" = all ]; then
  files=$(generate "$direct_models")
  # shellcheck disable=SC2086  # one word per file
  "$bin"/morlen_cholmod $files >build/bench/cholmod.json
  bench/report.py cholmod build/bench/cholmod.json
fi
if [ "$part" = choice ] || [ "$part" = all ]; then
  printf '%s\n%s' "$peer_models" "$further_models" | tr '\n' '\0' |
    xargs -0 bench/choice_runs.py --folder build/bench build/bench/morlen >build/bench/choice.json
  bench/report.py choice build/bench/choice.json
fi
if [ "$part" = direct ] || [ "$part" = all ]; then
  files=$(generate "$target_models" Direct)
  echo "$target_models" | tr '\n' '\0' |
    xargs -0 bench/direct_runs.py -n 3 --folder build/bench build/bench/morlen >build/bench/direct.json
  # shellcheck disable=SC2086  # one word per file
  "$bin"/morlen_direct_phases -n 3 $files >build/bench/direct_phases.json
  bench/report.py direct build/bench/direct.json build/bench/direct_phases.json
fi
if [ "$part" = refinement ] || [ "$part" = all ]; then
  files=$(generate "$direct_models
$further_models
plate 90
frame3d 10 10 68" SkyLine)
  # shellcheck disable=SC2086  # one word per file
  "$bin"/morlen_stages $files >build/bench/refinement.json
  bench/report.py refinement build/bench/refinement.json
fi
if [ "$part" = shells ] || [ "$part" = all ]; then
  files=$(generate "plate 224
plate6 224
roof 224
roof6 224")
  # shellcheck disable=SC2086  # one word per file
  "$bin"/morlen_shells $files >build/bench/shells.json
  bench/report.py shells build/bench/shells.json
fi
if [ "$part" = growth ] || [ "$part" = all ]; then
  files=$(generate "$growing_models")
  # shellcheck disable=SC2086  # one word per file
  "$bin"/morlen_stages -n 3 $files >build/bench/growth.json
  bench/report.py growth build/bench/growth.json
fi
if [ "$part" = linear ] || [ "$part" = all ]; then
  bench/linear_time.py build/bench/morlen
fi
if [ "$part" = cases ] || [ "$part" = all ]; then
  files=$(generate "frame3d 5 5 68
plate 48" SkyLine)
  # shellcheck disable=SC2086  # one word per file
  "$bin"/morlen_case_stages $files
  [ ! -x build/bench/companions/morlen-cases ] ||
    bench/case_runs.py --folder build/bench build/bench/morlen build/bench/companions/morlen-cases
fi
