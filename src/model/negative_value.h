#pragma once

#include "base/errorwriter.h"

namespace morlen {

/// The hint for a value of a material that must be above 0 and was given below 0. The messages say
/// "is 0" of all values that are not above 0. Other values get no hint. key: in problem files.
inline void ExplainNegative(double value, const char* key)
{
  if (value < 0.0)
    Explain(key, " is ", value, " in the units of the results; it must be above 0");
}

}  // namespace morlen
