#include "solvers/system_matrix.h"

#include "base/errorwriter.h"

namespace morlen {

void SystemMatrix::MultiplyTwo(const double* const x[2], double* const y[2]) const
{
  for (int v = 0; v < 2; ++v)
    mult(x[v], y[v]);
}

std::size_t SystemMatrix::StorageBytes() const
{
  return static_cast<std::size_t>(GiveSlots()) * (sizeof(double) + sizeof(int)) +
         static_cast<std::size_t>(n) * sizeof(int);
}

void SystemMatrix::RequireInside(int i, int j) const
{
  if (!IsInside(i, j))
    OutOfBounds();
}

std::ostream& operator<<(std::ostream& out, const SystemMatrix& matrix)
{
  matrix.PrintTo(out);
  return out;
}

void OutOfBounds()
{
  Fatal("Sparse Matrix accessing exception -- out of bounds.");
}

void NotInStructure(int i, int j)
{
  Fatal("Sparse Matrix element (", i, ",", j, ") not in sparse structure -- cannot assign.");
}

void RowIsFull(int i, int slots)
{
  Fatal("Wrong Row ", i, " definition: Row length ", slots);
}

}  // namespace morlen
