#include "direct/direct_kit.h"

#include "kit/make_kit.h"

namespace morlen {

std::unique_ptr<SolverKit> MakeKit()
{
  return std::make_unique<direct::DirectKit>();
}

}  // namespace morlen
