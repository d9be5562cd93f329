#pragma once

#include "assembly/solver_kit.h"

namespace morlen {

/// Does a whole run, from the command line to the result files. Returns the exit status: 0, or 2
/// when the arguments are wrong. Every other error ends the process. kit: the solvers of the
/// program.
int RunMorlen(int argc, char** argv, const SolverKit& kit = kPlainKit);

}  // namespace morlen
