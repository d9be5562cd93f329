#include "dgemm.h"

double DgemmRate()
{
  return 0.0;
}
