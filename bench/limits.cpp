// What this machine could do at most, on one thread, as a line of JSON:
//
//   morlen_limits
//
// "dgemm": floating point operations a second in a product of large matrices by OpenBLAS, 0
// when that was not there to build with; "read_bandwidth": bytes a second of a loop that only
// reads.

#include <cstdio>

#include "dgemm.h"
#include "measure.h"

using namespace morlen;

int main()
{
  std::printf("{\"dgemm\": %.6g, \"read_bandwidth\": %.6g}\n", DgemmRate(), ReadBandwidth());
  return 0;
}
