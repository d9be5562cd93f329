#include "assembly/shell_rows.h"

#include <algorithm>
#include <cstddef>

namespace morlen {

namespace {

// The components of a node that the two parts of an element work on.
constexpr int kMembrane[] = {0, 1, 5};
constexpr int kPlate[] = {3, 2, 4};

/// The displacements of one part, and the forces on them.
template <int N>
using PartVector = std::array<double, 3 * N>;

template <int N>
PartVector<N> PartOf(const double* displacements, const int (&components)[3])
{
  PartVector<N> part;
  for (int i = 0; i < N; ++i) {
    for (int k = 0; k < 3; ++k)
      part[k * N + i] = displacements[6 * i + components[k]];
  }
  return part;
}

template <int N>
void CopyPart(const PartVector<N>& part, const int (&components)[3], double* forces)
{
  for (int i = 0; i < N; ++i) {
    for (int k = 0; k < 3; ++k)
      forces[6 * i + components[k]] = part[k * N + i];
  }
}

template <std::size_t Columns>
double Product(const std::array<double, Columns>& row, const std::array<double, Columns>& u)
{
  double sum = 0.0;
  for (std::size_t c = 0; c < Columns; ++c)
    sum += row[c] * u[c];
  return sum;
}

template <std::size_t Columns>
void AddMultiple(double factor, const std::array<double, Columns>& row,
                 std::array<double, Columns>& sum)
{
  for (std::size_t c = 0; c < Columns; ++c)
    sum[c] += factor * row[c];
}

// Adds factor · rowsᵀ D rows to the upper half of K. spans: where the rows are not 0.
template <std::size_t Count, std::size_t Columns, class Spans>
void AddProduct(double factor, const double (&D)[Count][Count],
                const std::array<std::array<double, Columns>, Count>& rows, const Spans& spans,
                double (&K)[Columns][Columns])
{
  int last = 0;
  for (const auto& span : spans)
    last = std::max(last, span.last);
  for (std::size_t a = 0; a < Count; ++a) {
    std::array<double, Columns> stress{};
    for (std::size_t b = 0; b < Count; ++b) {
      const double part = factor * D[a][b];
      for (int c = spans[b].first; part != 0.0 && c < spans[b].last; ++c)
        stress[c] += part * rows[b][c];
    }
    for (int i = spans[a].first; i < spans[a].last; ++i) {
      for (int j = i; j < last; ++j)
        K[i][j] += rows[a][i] * stress[j];
    }
  }
}

// Adds factor · rowᵀ row to the upper half of K. Most entries of such a row are 0.
template <std::size_t Columns>
void AddSquare(double factor, const std::array<double, Columns>& row, double (&K)[Columns][Columns])
{
  if (factor == 0.0)
    return;
  std::size_t last = Columns;
  while (last > 0 && row[last - 1] == 0.0)
    --last;
  for (std::size_t i = 0; i < last; ++i) {
    const double scaled = factor * row[i];
    if (scaled == 0.0)
      continue;
    for (std::size_t j = i; j < last; ++j)
      K[i][j] += scaled * row[j];
  }
}

// Adds the forces factor · rowsᵀ D rows u.
template <std::size_t Count, std::size_t Columns>
void AddForces(double factor, const double (&D)[Count][Count],
               const std::array<std::array<double, Columns>, Count>& rows,
               const std::array<double, Columns>& u, std::array<double, Columns>& forces)
{
  double strain[Count];
  for (std::size_t a = 0; a < Count; ++a)
    strain[a] = Product(rows[a], u);
  for (std::size_t a = 0; a < Count; ++a) {
    double stress = 0.0;
    for (std::size_t b = 0; b < Count; ++b)
      stress += D[a][b] * strain[b];
    AddMultiple(factor * stress, rows[a], forces);
  }
}

// D rows u.
template <std::size_t Count, std::size_t Columns>
void CalcStress(const double (&D)[Count][Count],
                const std::array<std::array<double, Columns>, Count>& rows,
                const std::array<double, Columns>& u, double factor, double* stress)
{
  for (std::size_t a = 0; a < Count; ++a) {
    stress[a] = 0.0;
    for (std::size_t b = 0; b < Count; ++b)
      stress[a] += factor * D[a][b] * Product(rows[b], u);
  }
}

template <std::size_t Columns>
void CompleteLowerHalf(double (&K)[Columns][Columns])
{
  for (std::size_t i = 0; i < Columns; ++i) {
    for (std::size_t j = 0; j < i; ++j)
      K[i][j] = K[j][i];
  }
}

}  // namespace

template <int N>
void ShellStiffness<N>::Calc(const ShellRows<N>& rows)
{
  std::fill_n(&membrane[0][0], kColumns * kColumns, 0.0);
  std::fill_n(&plate[0][0], kColumns * kColumns, 0.0);
  for (std::size_t k = 0; k < rows.strain.size(); ++k)
    AddProduct(rows.strainWeight[k], rows.section.Dm, rows.strain[k], ShellRows<N>::kStrainSpans,
               membrane);
  for (std::size_t k = 0; k < rows.scalar.size(); ++k)
    AddSquare(rows.scalarStiffness[k], rows.scalar[k], membrane);
  for (std::size_t k = 0; k < rows.plate.size(); ++k) {
    AddProduct(rows.plateWeight[k], rows.section.Db, rows.plate[k].curvature,
               ShellRows<N>::kCurvatureSpans, plate);
    AddProduct(rows.plateWeight[k] * rows.shearFactor, rows.section.Ds, rows.plate[k].shear,
               ShellRows<N>::kShearSpans, plate);
  }
  CompleteLowerHalf(membrane);
  CompleteLowerHalf(plate);
}

template <int N>
void ShellStiffness<N>::CopyBlock(int i, int j, double* K) const
{
  std::fill_n(K, 36, 0.0);
  for (int a = 0; a < 3; ++a) {
    for (int b = 0; b < 3; ++b) {
      K[6 * kMembrane[a] + kMembrane[b]] = membrane[a * N + i][b * N + j];
      K[6 * kPlate[a] + kPlate[b]] = plate[a * N + i][b * N + j];
    }
  }
}

template <int N>
void CalcShellForces(const ShellRows<N>& rows, const double* displacements, double* forces)
{
  const PartVector<N> inPlane = PartOf<N>(displacements, kMembrane);
  PartVector<N> sum{};
  for (std::size_t k = 0; k < rows.strain.size(); ++k)
    AddForces(rows.strainWeight[k], rows.section.Dm, rows.strain[k], inPlane, sum);
  for (std::size_t k = 0; k < rows.scalar.size(); ++k)
    AddMultiple(rows.scalarStiffness[k] * Product(rows.scalar[k], inPlane), rows.scalar[k], sum);
  CopyPart<N>(sum, kMembrane, forces);
  const PartVector<N> across = PartOf<N>(displacements, kPlate);
  sum.fill(0.0);
  for (std::size_t k = 0; k < rows.plate.size(); ++k) {
    AddForces(rows.plateWeight[k], rows.section.Db, rows.plate[k].curvature, across, sum);
    AddForces(rows.plateWeight[k] * rows.shearFactor, rows.section.Ds, rows.plate[k].shear, across,
              sum);
  }
  CopyPart<N>(sum, kPlate, forces);
}

template <int N>
void CalcShellStrengths(const ShellRows<N>& rows,
                        const std::array<typename ShellRows<N>::Row, 3>& strain,
                        const typename ShellRows<N>::PlatePoint& plate, const double* displacements,
                        double* strengths)
{
  const PartVector<N> inPlane = PartOf<N>(displacements, kMembrane);
  const PartVector<N> across = PartOf<N>(displacements, kPlate);
  CalcStress(rows.section.Dm, strain, inPlane, 1.0, strengths);
  CalcStress(rows.section.Db, plate.curvature, across, 1.0, strengths + 3);
  CalcStress(rows.section.Ds, plate.shear, across, rows.shearFactor, strengths + 6);
}

template class ShellStiffness<3>;
template class ShellStiffness<6>;
template void CalcShellForces<3>(const ShellRows<3>&, const double*, double*);
template void CalcShellForces<6>(const ShellRows<6>&, const double*, double*);
template void CalcShellStrengths<3>(const ShellRows<3>&, const std::array<ShellRows<3>::Row, 3>&,
                                    const ShellRows<3>::PlatePoint&, const double*, double*);
template void CalcShellStrengths<6>(const ShellRows<6>&, const std::array<ShellRows<6>::Row, 3>&,
                                    const ShellRows<6>::PlatePoint&, const double*, double*);

}  // namespace morlen
