#include "base/processor.h"

Processor ThisProcessor()
{
  return Processor::kPlain;
}
