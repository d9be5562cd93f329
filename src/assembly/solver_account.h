#pragma once

#include <string>

namespace morlen {

/// How the equations have been solved.
struct SolverAccount
{
  std::string solver;  ///< by its name in problem files; empty for a method of the kit
  std::string reason;  ///< why this solver
  int iterations = 0;  ///< for the last load vector; 0 after a direct solution
};

}  // namespace morlen
