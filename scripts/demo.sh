#!/bin/sh
# Builds the programs optimised, and checks, solves and reports an example (a multi-storey space
# frame) by morlen-run. The programs are those that the tutorials call.
set -eu
cd "$(dirname "$0")/.."

scripts/install_tools.sh g++ cmake make libcli11-dev nlohmann-json3-dev libpugixml-dev \
  libtomlplusplus-dev libmumps-seq-dev libmetis-dev libopenblas-serial-dev python3-numpy
cmake --preset release -DMORLEN_TESTS=OFF -DMORLEN_COMPANIONS=ON -DMORLEN_DIRECT=ON -B build/demo >/dev/null
cmake --build build/demo --target morlen morlen-run morlen-check morlen-cases \
  morlen-export morlen-report --parallel "$(nproc)"

mkdir -p build/demo/results
cp examples/space_frame.dat build/demo/results/
cd build/demo/results
../companions/morlen-run space_frame.dat

build=$(dirname "$PWD")
echo
echo "Displacements, end forces and reactions: $PWD/space_frame.txt"
echo "Diagrams for the post-processor:         $PWD/space_frame.morlen.res"
echo "Report, for the browser:                 $PWD/space_frame.html"
echo "The programs, for this terminal:         export PATH=\"$build:$build/companions:\$PATH\""
