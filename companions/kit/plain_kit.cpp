#include "kit/make_kit.h"

namespace morlen {

std::unique_ptr<SolverKit> MakeKit()
{
  return std::make_unique<SolverKit>();
}

}  // namespace morlen
