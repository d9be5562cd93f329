// The limits of this machine on one thread, as a line of JSON:
//
//   morlen_limits
//
// "dgemm": floating point operations per second in a product of large matrices by OpenBLAS; 0 when
// the benchmarks were built without it.
// "read_bandwidth": bytes per second of a loop that only reads.

#include <cstdio>

#include "dgemm.h"
#include "measure.h"

using namespace morlen;

int main()
{
  std::printf("{\"dgemm\": %.6g, \"read_bandwidth\": %.6g}\n", DgemmRate(), ReadBandwidth());
  return 0;
}
