#include "support/tested_solver.h"

namespace morlen {

const SolverKit& TestedKit()
{
  return kPlainKit;
}

}  // namespace morlen
