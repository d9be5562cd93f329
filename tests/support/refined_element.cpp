#include "support/refined_element.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "assembly/refined_triangle.h"
#include "support/eigenvalues.h"

namespace morlen {

namespace {

template <class Shell>
Shell SetUp(const RefinedElement& e)
{
  Shell shell;
  shell.SetSection(e.section);
  EXPECT_TRUE(shell.Set(e.x.data(), e.y.data(), e.shares.data()));
  return shell;
}

template <class Shell>
DenseRows StiffnessOf(const RefinedElement& e)
{
  ShellStiffness<Shell::kNodes> stiffness;
  SetUp<Shell>(e).CalcStiffness(stiffness);
  DenseRows K = DenseZero(6 * Shell::kNodes);
  for (int i = 0; i < Shell::kNodes; ++i) {
    for (int j = 0; j < Shell::kNodes; ++j) {
      double block[36];
      stiffness.CopyBlock(i, j, block);
      for (int k = 0; k < 36; ++k)
        K[6 * i + k / 6][6 * j + k % 6] = block[k];
    }
  }
  return K;
}

}  // namespace

DenseRows RefinedElement::Stiffness() const
{
  return Nodes() == 3 ? StiffnessOf<ThreeNodeShell>(*this) : StiffnessOf<SixNodeShell>(*this);
}

DenseRows RefinedElement::StiffnessByForces() const
{
  const int n = 6 * Nodes();
  DenseRows columns;
  for (int j = 0; j < n; ++j) {
    std::vector<double> unit(n, 0.0);
    unit[j] = 1.0;
    columns.push_back(Forces(unit));
  }
  return Transposed(columns);
}

std::vector<double> RefinedElement::Forces(const std::vector<double>& displacements) const
{
  std::vector<double> forces(displacements.size());
  if (Nodes() == 3)
    SetUp<ThreeNodeShell>(*this).CalcForces(displacements.data(), forces.data());
  else
    SetUp<SixNodeShell>(*this).CalcForces(displacements.data(), forces.data());
  return forces;
}

std::vector<double> RefinedElement::Strengths(int point,
                                              const std::vector<double>& displacements) const
{
  std::vector<double> strengths(8);
  if (Nodes() == 3)
    SetUp<ThreeNodeShell>(*this).CalcStrengths(point, displacements.data(), strengths.data());
  else
    SetUp<SixNodeShell>(*this).CalcStrengths(point, displacements.data(), strengths.data());
  return strengths;
}

ShellSection IsotropicSection(double E, double nu, double t)
{
  const double G = E / (2.0 * (1.0 + nu));
  return OrthotropicSection({E, E, nu, nu, G, G, G}, t);
}

ShellSection OrthotropicSection(const Orthotropic& m, double t)
{
  const double f = t / (1.0 - m.nuXY * m.nuYX);
  ShellSection section = {{{f * m.Ex, f * m.Ex * m.nuXY, 0.0},
                           {f * m.Ey * m.nuYX, f * m.Ey, 0.0},
                           {0.0, 0.0, t * m.Gxy}},
                          {},
                          {{5.0 / 6.0 * t * m.Gxz, 0.0}, {0.0, 5.0 / 6.0 * t * m.Gyz}},
                          t};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j)
      section.Db[i][j] = t * t / 12.0 * section.Dm[i][j];
  }
  return section;
}

ShellSection IsotropicExample()
{
  return IsotropicSection(200000.0, 0.3, 0.1);
}

ShellSection OrthotropicExample()
{
  return OrthotropicSection({100000.0, 10000.0, 0.03, 0.3, 6000.0, 5000.0, 2000.0}, 0.1);
}

RefinedElement Example(int nodes, const ShellSection& section)
{
  RefinedElement e{{0.0, 2.0, 0.5, 1.02, 1.25, 0.25},
                   {0.0, 0.3, 1.4, 0.1, 0.85, 0.7},
                   {1.0, 0.5, 0.2, 0.7, 1.0, 0.4},
                   section};
  for (std::vector<double>* values : {&e.x, &e.y, &e.shares})
    values->resize(static_cast<std::size_t>(nodes));
  return e;
}

int ComponentIndex(std::string_view name)
{
  static constexpr std::string_view kNames[] = {"u", "v", "w", "rx", "ry", "rz"};
  const std::string_view component = name.substr(0, name.size() - 1);
  const auto* found = std::find(std::begin(kNames), std::end(kNames), component);
  return 6 * (name.back() - '1') + static_cast<int>(found - kNames);
}

std::vector<double> RigidMotionOf(const RefinedElement& e, const std::vector<double>& motion)
{
  std::vector<double> u;
  for (int i = 0; i < e.Nodes(); ++i) {
    const double x = e.x[i];
    const double y = e.y[i];
    u.insert(u.end(), {motion[0] - motion[5] * y, motion[1] + motion[5] * x,
                       motion[2] + motion[3] * y - motion[4] * x, motion[3], motion[4], motion[5]});
  }
  return u;
}

double FrobeniusNorm(const DenseRows& K)
{
  double sum = 0.0;
  for (const std::vector<double>& row : K) {
    for (const double value : row)
      sum += value * value;
  }
  return std::sqrt(sum);
}

void ExpectDigits(double actual, double expected, int digits)
{
  const double unit = std::pow(10.0, std::floor(std::log10(std::fabs(expected))) - digits + 1);
  EXPECT_NEAR(actual, expected, 0.5001 * unit);
}

void ExpectSixZeroEigenvalues(const DenseRows& K)
{
  const std::vector<double> values = EigenvaluesOf(K);
  EXPECT_LT(std::max(std::fabs(values[0]), values[5]), 1e-14 * values.back());  // rounding
  EXPECT_GT(values[6], 1e-9 * values.back());  // bending of a thin plate: about (t/h)²/12
}

}  // namespace morlen
