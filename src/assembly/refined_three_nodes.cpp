// The refined shell triangle of three nodes: its stiffness, forces and strengths from the rows of
// membrane and plate (three_node_parts.cpp).

#include <algorithm>
#include <cmath>

#include "assembly/refined_triangle.h"
#include "assembly/three_node_parts.h"
#include "base/constants.h"

namespace morlen {

namespace {

constexpr int kNodes = ThreeNodeShell::kNodes;
constexpr int kColumns = ThreeNodeShell::kColumns;
using Row = ThreeNodeShell::Row;
using Part = ThreeNodeShell::Part;
using Square = double[3][3];

// m rows.
std::array<Row, 3> Product(const Square& m, const std::array<Row, 3>& rows)
{
  std::array<Row, 3> product;
  for (int k = 0; k < 3; ++k) {
    for (int c = 0; c < kColumns; ++c)
      product[k][c] = m[k][0] * rows[0][c] + m[k][1] * rows[1][c] + m[k][2] * rows[2][c];
  }
  return product;
}

void CalcPart(const Part& part, ShellStiffness<kNodes>::Part& K)
{
  const std::array<Row, 3> mean = Product(part.elastic, part.mean);
  const std::array<Row, 3> further = Product(part.furtherStiffness, part.further);
  for (int r = 0; r < kColumns; ++r) {
    Row row;
    for (int c = 0; c < kColumns; ++c)
      row[c] = part.mean[0][r] * mean[0][c] + part.mean[1][r] * mean[1][c] +
               part.mean[2][r] * mean[2][c] + part.further[0][r] * further[0][c] +
               part.further[1][r] * further[1][c] + part.further[2][r] * further[2][c];
    std::copy(row.begin(), row.end(), K[r]);
  }
}

// The displacements of the nodes that a part works on.
Row PartOf(const double* displacements, const int (&components)[3])
{
  Row u;
  for (int k = 0; k < 3; ++k) {
    for (int i = 0; i < kNodes; ++i)
      u[k * kNodes + i] = displacements[6 * i + components[k]];
  }
  return u;
}

void Apply(const std::array<Row, 3>& rows, const Row& u, double (&values)[3])
{
  for (int k = 0; k < 3; ++k) {
    values[k] = 0.0;
    for (int c = 0; c < kColumns; ++c)
      values[k] += rows[k][c] * u[c];
  }
}

// Adds rowsᵀ m rows u to the sum.
void AddForces(const Square& m, const std::array<Row, 3>& rows, const Row& u, Row& sum)
{
  double values[3];
  Apply(rows, u, values);
  for (int k = 0; k < 3; ++k) {
    const double force = m[k][0] * values[0] + m[k][1] * values[1] + m[k][2] * values[2];
    for (int c = 0; c < kColumns; ++c)
      sum[c] += force * rows[k][c];
  }
}

void CalcPartForces(const Part& part, const double* displacements, const int (&components)[3],
                    double* forces)
{
  const Row u = PartOf(displacements, components);
  Row sum{};
  AddForces(part.elastic, part.mean, u, sum);
  AddForces(part.furtherStiffness, part.further, u, sum);
  for (int k = 0; k < 3; ++k) {
    for (int i = 0; i < kNodes; ++i)
      forces[6 * i + components[k]] = sum[k * kNodes + i];
  }
}

void CalcMeanStress(const Part& part, const Square& D, const Row& u, double* stress)
{
  double strain[3];
  Apply(part.mean, u, strain);
  for (int k = 0; k < 3; ++k)
    stress[k] = D[k][0] * strain[0] + D[k][1] * strain[1] + D[k][2] * strain[2];
}

}  // namespace

void ThreeNodeShell::SetSection(const ShellSection& section_)
{
  section = section_;
  higher = HigherMembraneCoefficient(section.Dm);
}

bool ThreeNodeShell::Set(const double* x, const double* y, const double* shares)
{
  const CornerTriangle triangle(x, y);
  area = triangle.area;
  if (!ExceedsRounding(2.0 * area, std::sqrt(triangle.squares[0] * triangle.squares[2])))
    return false;
  SetMembrane(triangle, shares, section, higher, membrane);
  SetPlate(triangle, section, plate, shear);
  return true;
}

void ThreeNodeShell::CalcStiffness(ShellStiffness<kNodes>& stiffness) const
{
  CalcPart(membrane, stiffness.membrane);
  CalcPart(plate, stiffness.plate);
}

void ThreeNodeShell::CalcForces(const double* displacements, double* forces) const
{
  CalcPartForces(membrane, displacements, kMembraneComponents, forces);
  CalcPartForces(plate, displacements, kPlateComponents, forces);
}

void ThreeNodeShell::CalcStrengths(int, const double* displacements, double* strengths) const
{
  CalcMeanStress(membrane, section.Dm, PartOf(displacements, kMembraneComponents), strengths);
  const Row across = PartOf(displacements, kPlateComponents);
  CalcMeanStress(plate, section.Db, across, strengths + 3);
  double chords[3];
  Apply(plate.further, across, chords);
  for (int k = 0; k < 2; ++k)
    strengths[6 + k] = section.Ds[k][k] * (shear[k][0] * chords[0] + shear[k][1] * chords[1] +
                                           shear[k][2] * chords[2]);
}

double EdgeMoment(double normal, double length, double firstShare, double secondShare)
{
  return std::sqrt(firstShare * secondShare) * normal * length * length / 8.0;
}

}  // namespace morlen
