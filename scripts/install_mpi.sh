#!/bin/sh
# Installs what morlen-mpi needs: OpenMPI, MUMPS, METIS, OpenBLAS, PETSc.
set -eu
cd "$(dirname "$0")/.."
exec scripts/install_tools.sh pkg-config libopenmpi-dev openmpi-bin libmumps-dev libmetis-dev \
  libopenblas-dev petsc-dev
