#include "model/nodal_load.h"

#include "base/stprintf.h"

namespace morlen {

void Load::AddValues(const double* given, int n, double forceFactor, double lengthFactor)
{
  for (int i = 0; i < n; ++i)
    values[i] += given[i] * (i < translations ? forceFactor : forceFactor * lengthFactor);
}

void Load::PrintTo(std::ostream& out, int n) const
{
  out << "values=";
  for (int i = 0; i < n; ++i)
    stprintf(out, i == 0 ? "%g" : " %g", values[i]);
  out << '\n';
}

}  // namespace morlen
