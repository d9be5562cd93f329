#!/bin/sh
# Builds the program optimised and runs it on an example: a multi-storey space frame.
set -eu
cd "$(dirname "$0")/.."

scripts/install_tools.sh g++ cmake make
cmake --preset release -DMORLEN_TESTS=OFF -B build/demo >/dev/null
cmake --build build/demo --target morlen --parallel "$(nproc)"

mkdir -p build/demo/results
cp examples/space_frame.dat build/demo/results/
cd build/demo/results
../morlen -i - space_frame.dat space_frame.txt

echo
echo "Displacements, end forces and reactions: $PWD/space_frame.txt"
echo "Diagrams for the post-processor:         $PWD/space_frame.morlen.res"
echo "The program:                             $(dirname "$PWD")/morlen"
