// Stiffness and stresses of random elements against a plain computation with full strain matrices,
// K = Σ w·Bᵀ·D·B by loops and Cramer's rule for the inverse of the Jacobian.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "assembly/shell.h"
#include "assembly/solid.h"
#include "base/stprintf.h"
#include "model/elem.h"
#include "model/node.h"
#include "model/shape_functions.h"
#include "numeric/reavecv.h"
#include "support/dense.h"
#include "support/shell_model.h"
#include "support/solid_model.h"

namespace morlen {

namespace {

constexpr int kElements = 20;

using Doubles = std::vector<double>;
using Rows = std::vector<Doubles>;

Rows Zeros(std::size_t rows, std::size_t columns)
{
  return Rows(rows, Doubles(columns, 0.0));
}

Doubles Times(const Rows& A, const Doubles& x)
{
  Doubles y;
  for (const Doubles& row : A) {
    y.push_back(0.0);
    for (std::size_t c = 0; c < x.size(); ++c)
      y.back() += row[c] * x[c];
  }
  return y;
}

void AddStiffness(const Rows& B, const Rows& D, double weight, Rows& K)
{
  for (std::size_t a = 0; a < K.size(); ++a) {
    for (std::size_t b = 0; b < K.size(); ++b) {
      for (std::size_t r = 0; r < B.size(); ++r) {
        for (std::size_t s = 0; s < B.size(); ++s)
          K[a][b] += weight * B[r][a] * D[r][s] * B[s][b];
      }
    }
  }
}

// The results of the plain computation for an element.
struct Reference
{
  Rows K;
  Doubles stresses;  ///< of the displacements u
};

double Det3(const double (&m)[3][3])
{
  return m[0][0] * m[1][1] * m[2][2] + m[0][1] * m[1][2] * m[2][0] + m[0][2] * m[1][0] * m[2][1] -
         m[0][2] * m[1][1] * m[2][0] - m[0][1] * m[1][0] * m[2][2] - m[0][0] * m[1][2] * m[2][1];
}

// Computes the gradients g of the shape functions from their slopes by the natural coordinates:
// J·g = slopes. Returns the determinant of J.
double Gradients(const std::vector<Vector3>& nodes, const std::vector<Vector3>& slopes,
                 std::vector<Vector3>& gradients)
{
  double J[3][3] = {};
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    for (int a = 0; a < 3; ++a) {
      for (int k = 0; k < 3; ++k)
        J[a][k] += slopes[i][a] * nodes[i][k];
    }
  }
  const double det = Det3(J);
  for (const Vector3& slope : slopes) {
    Vector3 gradient;
    for (int k = 0; k < 3; ++k) {
      double replaced[3][3];
      for (int a = 0; a < 3; ++a) {
        for (int c = 0; c < 3; ++c)
          replaced[a][c] = c == k ? slope[a] : J[a][c];
      }
      gradient[k] = Det3(replaced) / det;
    }
    gradients.push_back(gradient);
  }
  return det;
}

std::vector<Vector3> SolidSlopes(int nnode, const TetraPoint& at)
{
  if (nnode == 4)
    return {{-1, -1, -1}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  std::vector<Vector3> slopes(10);
  for (int i = 0; i < 10; ++i) {
    for (int a = 0; a < 3; ++a)
      slopes[i][a] = GiveDerN10nod(i + 1, at.xi, at.eta, at.zeta, a + 1);
  }
  return slopes;
}

Rows IsotropicD(double E, double nu)
{
  const double G = E / (2.0 * (1.0 + nu));
  const double lambda = 2.0 * G * nu / (1.0 - 2.0 * nu);
  Rows D = Zeros(6, 6);
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j)
      D[i][j] = lambda + (i == j ? 2.0 * G : 0.0);
    D[i + 3][i + 3] = G;
  }
  return D;
}

Reference SolidReference(const std::vector<Vector3>& nodes, const Rows& D, const Doubles& u)
{
  const int nnode = static_cast<int>(nodes.size());
  Reference reference{Zeros(u.size(), u.size()), {}};
  for (const TetraPoint& at : kTetraPoints) {
    std::vector<Vector3> gradients;
    const double det = Gradients(nodes, SolidSlopes(nnode, at), gradients);
    Rows B = Zeros(6, u.size());
    for (int i = 0; i < nnode; ++i) {
      const auto [x, y, z] = gradients[i];
      B[0][3 * i] = B[3][3 * i + 1] = B[4][3 * i + 2] = x;
      B[1][3 * i + 1] = B[3][3 * i] = B[5][3 * i + 2] = y;
      B[2][3 * i + 2] = B[4][3 * i] = B[5][3 * i + 1] = z;
    }
    AddStiffness(B, D, det / (nnode == 4 ? 6.0 : 24.0), reference.K);
    const Doubles stresses = Times(D, Times(B, u));
    reference.stresses.insert(reference.stresses.end(), stresses.begin(), stresses.end());
    if (nnode == 4)
      break;
  }
  return reference;
}

// The slopes by the natural coordinates and the value of each node at a point.
std::vector<Vector3> ShellNumbers(int nnode, const TrianglePoint& at)
{
  if (nnode == 3)
    return {{-1, -1, 1 / 3.0}, {1, 0, 1 / 3.0}, {0, 1, 1 / 3.0}};
  std::vector<Vector3> numbers;
  for (int i = 1; i <= 6; ++i)
    numbers.push_back({GiveDerN6nod(i, at.xi, at.eta, 1), GiveDerN6nod(i, at.xi, at.eta, 2),
                       GiveN6nod(i, at.xi, at.eta)});
  return numbers;
}

// Works in the axes of the element, in which the nodes are at x, y. D: 8×8.
Reference ShellReference(int nnode, const double* x, const double* y, const Rows& D,
                         const Doubles& u)
{
  Reference reference{Zeros(u.size(), u.size()), {}};
  for (const TrianglePoint& at : kMidEdgePoints) {
    const std::vector<Vector3> numbers = ShellNumbers(nnode, at);
    double xXi = 0, xEta = 0, yXi = 0, yEta = 0;
    for (int i = 0; i < nnode; ++i) {
      xXi += numbers[i][0] * x[i];
      xEta += numbers[i][1] * x[i];
      yXi += numbers[i][0] * y[i];
      yEta += numbers[i][1] * y[i];
    }
    const double det = xXi * yEta - xEta * yXi;
    Rows B = Zeros(8, u.size());
    for (int i = 0; i < nnode; ++i) {
      const double Nx = (numbers[i][0] * yEta - numbers[i][1] * yXi) / det;
      const double Ny = (numbers[i][1] * xXi - numbers[i][0] * xEta) / det;
      const double N = numbers[i][2];
      // u, v, w, r_x, r_y; the slopes are -r_y and r_x.
      const int c = 6 * i;
      B[0][c] = B[2][c + 1] = Nx;
      B[1][c + 1] = B[2][c] = Ny;
      B[3][c + 4] = Nx;
      B[4][c + 3] = -Ny;
      B[5][c + 4] = Ny;
      B[5][c + 3] = -Nx;
      B[6][c + 2] = Nx;
      B[6][c + 4] = N;
      B[7][c + 2] = Ny;
      B[7][c + 3] = -N;
    }
    AddStiffness(B, D, det / (nnode == 3 ? 2.0 : 6.0), reference.K);
    const Doubles forces = Times(D, Times(B, u));
    reference.stresses.insert(reference.stresses.end(), forces.begin(), forces.end());
    if (nnode == 3)
      break;
  }
  return reference;
}

struct ShellMaterial
{
  double E1, E2, nuXY, nuYX, Gxy, Gxz, Gyz, t;

  std::string Text() const
  {
    std::ostringstream out;
    stprintf(out, "Ex=%.17g Ey=%.17g nuXY=%.17g nuYX=%.17g Gxy=%.17g Gxz=%.17g Gyz=%.17g t=%.17g",
             E1, E2, nuXY, nuYX, Gxy, Gxz, Gyz, t);
    return out.str();
  }

  // Membrane, bending, shear on the diagonal.
  Rows D() const
  {
    const double f = t / (1.0 - nuXY * nuYX);
    Rows all = Zeros(8, 8);
    for (int part = 0; part < 2; ++part) {
      const double factor = part == 0 ? 1.0 : t * t / 12.0;
      const int k = 3 * part;
      all[k][k] = factor * f * E1;
      all[k][k + 1] = factor * f * nuXY * E1;
      all[k + 1][k] = factor * f * nuYX * E2;
      all[k + 1][k + 1] = factor * f * E2;
      all[k + 2][k + 2] = factor * t * Gxy;
    }
    all[6][6] = 5.0 / 6.0 * t * Gxz;
    all[7][7] = 5.0 / 6.0 * t * Gyz;
    return all;
  }
};

class Random
{
public:
  double operator()(double low, double high)
  {
    return std::uniform_real_distribution<double>(low, high)(engine);
  }
  Vector3 Place(double size)
  {
    return {(*this)(-size, size), (*this)(-size, size), (*this)(-size, size)};
  }
  Doubles Vector(std::size_t n)
  {
    Doubles u(n);
    for (double& value : u)
      value = (*this)(-1.0, 1.0);
    return u;
  }

  ShellMaterial Isotropic()
  {
    const double E = (*this)(100, 1000), nu = (*this)(0.0, 0.45), G = E / (2.0 * (1.0 + nu));
    return {E, E, nu, nu, G, G, G, (*this)(0.05, 0.5)};
  }
  // Ex·nuXY must be Ey·nuYX exactly.
  ShellMaterial Orthotropic()
  {
    const double ratio = std::ldexp(1.0, static_cast<int>((*this)(-2.0, 3.0)));
    const double E = (*this)(100, 1000), nu = (*this)(0.0, 0.2);
    return {E,
            E / ratio,
            nu,
            nu * ratio,
            (*this)(50, 400),
            (*this)(50, 400),
            (*this)(50, 400),
            (*this)(0.05, 0.5)};
  }

private:
  std::mt19937 engine{5};
};

void Block(const SolidEvaluator& element, int i, int j, Matriu& K)
{
  element.CalcStiffness(i, j, K.Data());
}

void Block(const ShellEvaluator& element, int i, int j, Matriu& K)
{
  element.CalcStiffness(i, j, K);
}

template <class Evaluator>
Rows Stiffness(const Evaluator& element, int nnode, int components)
{
  Rows all = Zeros(nnode * components, nnode * components);
  Matriu K(components, components);
  for (int i = 0; i < nnode; ++i) {
    for (int j = 0; j < nnode; ++j) {
      Block(element, i, j, K);
      for (int a = 0; a < components; ++a) {
        for (int b = 0; b < components; ++b)
          all[i * components + a][j * components + b] = K(a + 1, b + 1);
      }
    }
  }
  return all;
}

Doubles Flat(const Rows& rows)
{
  Doubles all;
  for (const Doubles& row : rows)
    all.insert(all.end(), row.begin(), row.end());
  return all;
}

template <class Evaluator>
void ExpectEqual(const Evaluator& element, int nnode, int components, const Doubles& u,
                 const Reference& reference)
{
  ExpectValues(Flat(Stiffness(element, nnode, components)), Flat(reference.K), 1e-12);
  ReaVecV res(static_cast<int>(reference.stresses.size()));
  res = 0.0;
  element.AddStrengths(u.data(), res, 0);
  ExpectValues(Values(res), reference.stresses, 1e-12);
}

}  // namespace

class ElementReference : public testing::TestWithParam<int>
{
};

using SolidReferenceOfNodes = ElementReference;
INSTANTIATE_TEST_SUITE_P(Nodes, SolidReferenceOfNodes, testing::Values(4, 10),
                         [](const auto& instance) { return std::to_string(instance.param); });

TEST_P(SolidReferenceOfNodes, StiffnessAndStressesAreThoseOfThePlainComputation)
{
  Random random;
  SolidEvaluator solid;                            // one for all elements
  std::vector<std::unique_ptr<Project>> projects;  // keep the materials of all elements
  for (int k = 0; k < kElements; ++k) {
    std::vector<Vector3> corners = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (Vector3& corner : corners)
      corner = corner + random.Place(0.2);
    SolidModel model = OneSolid(corners, GetParam());
    for (std::size_t i = 4; i < model.nodes.size(); ++i)
      model.nodes[i] = model.nodes[i] + random.Place(0.02);
    const double E = random(100, 1000), nu = random(0.0, 0.45);
    std::ostringstream material;
    stprintf(material, "E %.17g nu %.17g", E, nu);
    model.material = material.str();
    const Project& project = *projects.emplace_back(ReadProject(model.Text()));
    const Elem& elem = *project.GiveElem(1);
    const Doubles u = random.Vector(3 * model.nodes.size());
    solid.Evaluate(elem, project.problem.RequireMaterial(elem));
    std::vector<Vector3> nodes;
    for (int i = 0; i < elem.Nnode(); ++i)
      nodes.push_back({(*elem(i))(1), (*elem(i))(2), (*elem(i))(3)});
    ExpectEqual(solid, GetParam(), 3, u, SolidReference(nodes, IsotropicD(E, nu), u));
  }
}

using ShellReferenceOfNodes = ElementReference;
INSTANTIATE_TEST_SUITE_P(Nodes, ShellReferenceOfNodes, testing::Values(3, 6),
                         [](const auto& instance) { return std::to_string(instance.param); });

TEST_P(ShellReferenceOfNodes, StiffnessAndForcesAreThoseOfThePlainComputation)
{
  Random random;
  ShellEvaluator shell;
  std::vector<std::unique_ptr<Project>> projects;
  for (int k = 0; k < 2 * kElements; ++k) {
    ShellModel model;
    model.triangles = {{1, 2, 3}};
    model.nodes = {{0, 0, 0}, {1.5, 0, 0.5}, {0, 1, 0.75}};
    for (Vector3& corner : model.nodes)
      corner = corner + random.Place(0.25);
    if (GetParam() == 6) {
      model = WithMidSideNodes(model);
      for (std::size_t i = 3; i < 6; ++i)
        model.nodes[i] = model.nodes[i] + random.Place(0.03);
    }
    const ShellMaterial material = k % 2 == 0 ? random.Isotropic() : random.Orthotropic();
    model.material = material.Text();
    const Project& project = *projects.emplace_back(ReadProject(model.Text()));
    const Elem& elem = *project.GiveElem(1);
    shell.Evaluate(elem, project.problem.RequireMaterial(elem));
    double x[6], y[6];
    CalcLocalCoordinates(elem, shell.Frame(), x, y);
    const Doubles u = random.Vector(6 * model.nodes.size());
    ExpectEqual(shell, GetParam(), 6, u, ShellReference(GetParam(), x, y, material.D(), u));
  }
}

}  // namespace morlen
