#include "model.h"

namespace morlen::python {

const SolverKit& Kit()
{
  return kPlainKit;
}

}  // namespace morlen::python
