#include <algorithm>

#include "base/stprintf.h"
#include "numeric/matriu.h"
#include "solvers/skymatriu.h"

namespace morlen {

void SkyMatriu::CopyFromYouToMat(Matriu& m) const
{
  m.redimension(n, n);
  for (int i = 1; i <= n; ++i)
    for (int j = 1; j <= n; ++j)
      m(i, j) = Value(i, j);
}

void SkyMatriu::PrintInfoMem(std::FILE* info) const
{
  const std::size_t bytes = StorageBytes();
  const std::size_t positions = bytes / sizeof(double);
  Progress(info,
           "\nINFORMATION ABOUT STIFFNESS MATRIX\n"
           "Sky matrix storage with Txolesky\n"
           "Degrees of freedom= %i\n"
           "Average column size= %zu\n"
           "Total number of positions= %zu\n"
           "Amount of memory= %.1lfMb\n\n",
           n, positions / static_cast<std::size_t>(std::max(n, 1)), positions,
           static_cast<double>(bytes) / (1024.0 * 1024.0));
}

void SkyMatriu::PrintTo(std::ofstream& out) const
{
  out << "\nprinting SkyLine Matrix size=" << n << "x" << n << "\n";
  for (int i = 1; i <= n; ++i)
    PrintRowTo(out, i);
}

void SkyMatriu::PrintRowTo(std::ostream& out, int i) const
{
  out << "row=" << i;
  if (!rows[i - 1]) {
    out << " NONE\n";
    return;
  }
  const int first = i - heights[i - 1] + 1;
  out << " from " << first << " to " << i;
  for (int j = first; j <= i; ++j)
    stprintf(out, "%7g ", Value(i, j));
  out << "\n";
}

void SkyMatriu::PrintToFull(std::ostream& out) const
{
  out << "\nprinting SkyLine Matrix\n   ";
  for (int j = 1; j <= n; ++j)
    stprintf(out, "%7i ", j);
  out << "\n";
  for (int i = 1; i <= n; ++i) {
    stprintf(out, "%2i ", i);
    for (int j = 1; j <= n; ++j)
      stprintf(out, "%7g ", Value(i, j));
    out << "\n";
  }
}

namespace {

/// The four corners of the cell of row r and column c (from 0), x down and y to the left.
void WriteCellNodes(std::ostream& mesh, long long firstNode, int r, int c)
{
  const struct
  {
    int x, y;
  } corners[] = {{r, -c}, {r + 1, -c}, {r + 1, -(c + 1)}, {r, -(c + 1)}};
  for (const auto& corner : corners)
    mesh << firstNode++ << " " << corner.x << " " << static_cast<double>(corner.y) << "\n";
}

/// Writes a mesh of n×n cells, row by row; each cell has its own four nodes.
void WriteCells(std::ostream& mesh, int n)
{
  const long long cells = static_cast<long long>(n) * n;
  mesh << "NumElems NumNodes ElemType\n" << cells << " " << 4 * cells << " 4\n";
  mesh << "node x y z\n";
  for (int r = 0; r < n; ++r)
    for (int c = 0; c < n; ++c)
      WriteCellNodes(mesh, 4 * (static_cast<long long>(n) * r + c) + 1, r, c);
  mesh << "element node1 node2\n";
  for (long long cell = 0; cell < cells; ++cell)
    mesh << cell + 1 << " " << 4 * cell + 1 << " " << 4 * cell + 2 << " " << 4 * cell + 3 << " "
         << 4 * cell + 4 << "\n";
}

}  // namespace

void SkyMatriu::WriteForKiv(std::ofstream& mesh, std::ofstream& res) const
{
  WriteCells(mesh, n);
  res << "value          4 1.0 Estatic 1 1 0\n";
  long long node = 0;
  for (int i = 1; i <= n; ++i)
    for (int j = 1; j <= n; ++j)
      for (int corner = 0; corner < 4; ++corner)
        res << ++node << " " << Value(i, j) << "\n";
}

}  // namespace morlen
