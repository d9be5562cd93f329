#include "base/processor.h"

namespace morlen {

Processor ThisProcessor()
{
  return Processor::kPlain;
}

}  // namespace morlen
