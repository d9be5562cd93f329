#include "direct/direct_kit.h"
#include "support/tested_solver.h"

namespace morlen {

const SolverKit& TestedKit()
{
  static const direct::DirectKit kit;
  return TestsDirect() ? kit : kPlainKit;
}

}  // namespace morlen
