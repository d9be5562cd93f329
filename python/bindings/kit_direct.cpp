#include "direct/direct_kit.h"
#include "model.h"

namespace morlen::python {

const SolverKit& Kit()
{
  static const direct::DirectKit kit;
  return kit;
}

}  // namespace morlen::python
