// Forces of elements from given displacements, against the assembled matrix and for rigid motions.

#include "assembly/internal_forces.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "assembly/element_assembly.h"
#include "model/constraint.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "run/element_families.h"
#include "solvers/skymatriu.h"
#include "support/refined_model.h"
#include "support/shell_model.h"
#include "support/solid_model.h"
#include "support/solved.h"
#include "support/sparse.h"

namespace morlen {

namespace {

/// A model with merged hinges and coplanarity marks, as the forces of its elements need them.
struct Prepared
{
  explicit Prepared(const std::string& problem) : project(ReadProject(problem))
  {
    if (project->problem.hasHinges)
      project->CalcElemsRotules();
    if (project->problem.meshes.front()->GiveElemType() == Triangle)
      project->CalcCoplanarityVector();
    equations = project->problem.Equations();
    project->solution.displacements.resize(equations, 0.0);
  }

  ReaVecV ForcesOf(const SplitView& u, InternalForces::Elements which) const
  {
    InternalForces forces({u}, equations, project->problem.components.count, which);
    AddForces(project->problem, FamiliesOf(project->problem), forces);
    return std::move(forces.Forces(0));
  }

  std::unique_ptr<Project> project;
  int equations;
};

ReaVecV VectorOf(const std::vector<double>& values)
{
  ReaVecV v(static_cast<int>(values.size()));
  std::copy(values.begin(), values.end(), v.Data());
  return v;
}

/// The assembled matrix of all meshes times u, in global axes.
ReaVecV ByMatrix(const Prepared& model, const ReaVecV& u)
{
  const Problem& problem = model.project->problem;
  SkyMatriu matrix(model.equations);
  for (int node = 1; node <= problem.numNodes; ++node)
    matrix.EnterMaxDiff(1, node, problem.components.count);
  matrix.Create(problem.components.count);
  for (const auto& mesh : problem.meshes)
    FamiliesOf(problem).Of(*mesh).addStiffness(problem, *mesh, kInGlobalAxes, matrix);
  ReaVecV product(model.equations);
  for (int i = 1; i <= model.equations; ++i)
    product(i) = matrix.ReturnRowPerVector(i, u);
  return product;
}

double LargestOf(const ReaVecV& v)
{
  double largest = 0.0;
  for (int i = 1; i <= v.Size(); ++i)
    largest = std::max(largest, std::fabs(v(i)));
  return largest;
}

/// The displacements of a rotation about an axis through a point, small against 1; nodes with
/// rotations turn with it.
ReaVecV RigidMotion(const Prepared& model, const Vector3& turn, const Vector3& shift)
{
  const Project& project = *model.project;
  ReaVecV u;
  u.resize(model.equations, 0.0);
  for (const Node& node : Each<Node>(project.problem.GiveNodes())) {
    const Vector3 x = {node(1), node(2), node.Size() == 3 ? node(3) : 0.0};
    const Vector3 v = shift + Cross(turn, x);
    const int first = project.Equation(node, 1);
    for (int k = 0; k < project.problem.components.translations; ++k)
      u(first + k) = v[k];
    if (project.problem.components.count == 3 && project.problem.components.translations == 2)
      u(first + 2) = turn[2];
    for (int k = 0; k < 3 && project.problem.components.count == 6; ++k)
      u(first + 3 + k) = turn[k];
  }
  return u;
}

const std::string kHinged =
    "problem type 3d\n"
    "mesh dimension = 3 elemtype Linear nnode = 2\n"
    "coordinates\n1 0 0 0\n2 2 1 0\n3 4 1 1\n4 6 0 1\n5 7 3 2\n6 8 5 1\n7 9 6 3\nend coordinates\n"
    "elements\n1 1 2 1\n2 2 3 1\n3 3 4 1\n4 4 5 1\n5 5 6 1\n6 6 7 1\nend elements\n"
    "materials\n1 E=200 G=80 A=2 Iy=1 Iz=3 J=1\nend materials\n"
    "constraints\n1 111111 0 0 0 0 0 0 Euler1=0.3 Euler2=0.2 Euler3=0.1\nend constraints\n"
    "elem_rotules\n2 10\n3 01\n4 00\nend\n";

const std::string kPlaneHinged =
    "problem type 2d\n"
    "mesh dimension = 2 elemtype Linear nnode = 2\n"
    "coordinates\n1 0 0\n2 2 1\n3 4 1\n4 6 0\n5 7 3\n6 8 5\n7 9 6\nend coordinates\n"
    "elements\n1 1 2 1\n2 2 3 1\n3 3 4 1\n4 4 5 1\n5 5 6 1\n6 6 7 1\nend elements\n"
    "materials\n1 E=200 A=2 Iz=3\nend materials\n"
    "constraints\n1 111 0 0 0\nend constraints\n"
    "elem_rotules\n2 10\n3 01\n4 00\nend\n";

/// A strip with a plane end, where the ground resists rotations about the normal, and a curved end,
/// where it does not.
ShellModel Strip()
{
  ShellModel model = GridShell(4, 2, [](double u, double v) {
    return Vector3{3.0 * u, 2.0 * v, std::max(0.0, u - 0.5) * std::max(0.0, u - 0.5)};
  });
  model.Hold(1, "111111");
  model.Hold(6, "111000");
  return model;
}

std::vector<std::string> Problems()
{
  std::vector<std::string> problems = {kHinged,
                                       kPlaneHinged,
                                       Strip().Text(),
                                       WithMidSideNodes(Strip()).Text(),
                                       Refined(Strip()).Text(),
                                       Refined(WithMidSideNodes(Strip())).Text()};
  for (const int nnode : {4, 10}) {
    SolidModel model = SolidBlock({3, 1, 1}, {3.0, 1.0, 1.0}, nnode);
    model.Map(Rotated);
    model.supports[1] = {};
    problems.push_back(model.Text());
  }
  return problems;
}

// True when the ground resists rotations of some shells about their normals.
bool HoldsRotations(const Problem& problem)
{
  return !problem.coplanarity.empty() && problem.shellFormulation == ShellFormulation::Standard;
}

// True when the ground resists the rotation of the node about the normal.
bool IsHeldByTheGround(const Prepared& model, const Node& node)
{
  const Problem& problem = model.project->problem;
  return HoldsRotations(problem) && problem.coplanarity[node.number - 1] == 1;
}

}  // namespace

TEST(InternalForces, AreTheProductWithTheMatrix)
{
  for (const std::string& problem : Problems()) {
    const Prepared model(problem);
    const ReaVecV u = VectorOf(RandomVector(model.equations, 1));
    const ReaVecV rest = VectorOf(RandomVector(model.equations, 2));
    ReaVecV sum(model.equations);
    for (int i = 1; i <= model.equations; ++i)
      sum(i) = u(i) + rest(i);
    const ReaVecV expected = ByMatrix(model, sum);
    const ReaVecV forces = model.ForcesOf({u, rest}, InternalForces::Elements::All);
    for (int i = 1; i <= model.equations; ++i)
      EXPECT_NEAR(forces(i), expected(i), 1e-13 * LargestOf(expected)) << i;  // rounding
  }
}

TEST(InternalForces, RigidMotionsNeedNone)
{
  for (const std::string& problem : Problems()) {
    const Prepared model(problem);
    const bool plane = model.project->problem.problemType == kPlane;
    const Vector3 turn = plane ? Vector3{0, 0, 0.7} : Vector3{0.3, -0.5, 0.7};
    const Vector3 shift = plane ? Vector3{1e6, -1e6, 0} : Vector3{1e6, -1e6, 1e6};
    const ReaVecV u = RigidMotion(model, turn, shift);
    const ReaVecV forces = model.ForcesOf(u, InternalForces::Elements::All);
    for (const Node& node : Each<Node>(model.project->problem.GiveNodes())) {
      const int first = model.project->Equation(node, 1);
      for (int k = 0; k < model.project->problem.components.count; ++k) {
        if (k >= 3 && IsHeldByTheGround(model, node))
          continue;
        // The last digit of displacements of 1e6 is 1e-10, so that the rotation loses digits.
        EXPECT_NEAR(forces(first + k), 0.0, 1e-6) << node.number << " " << k;
      }
    }
  }
}

// The second part of the displacements keeps all digits despite a large rigid motion.
TEST(InternalForces, RestCountsBesideLargeDisplacements)
{
  for (const std::string& problem : Problems()) {
    const Prepared model(problem);
    if (HoldsRotations(model.project->problem))
      continue;
    const bool plane = model.project->problem.problemType == kPlane;
    const ReaVecV large = RigidMotion(model, plane ? Vector3{0, 0, 1} : Vector3{1, 2, 3}, {});
    const ReaVecV base = model.ForcesOf(large, InternalForces::Elements::All);
    ReaVecV rest = VectorOf(RandomVector(model.equations, 3));
    for (int i = 1; i <= model.equations; ++i)
      rest(i) *= 1e-17;
    const ReaVecV expected = ByMatrix(model, rest);
    const ReaVecV forces = model.ForcesOf({large, rest}, InternalForces::Elements::All);
    for (int i = 1; i <= model.equations; ++i) {
      // The differences of the rigid motion leave about 1e-16, which rounds the rest to 1e-32.
      EXPECT_NEAR(forces(i) - base(i), expected(i), 1e-9 * LargestOf(expected)) << i;
    }
  }
}

TEST(InternalForces, OfElementsAtSupportsAreThoseOfTheSupports)
{
  for (const std::string& problem : Problems()) {
    const Prepared model(problem);
    const ReaVecV u = VectorOf(RandomVector(model.equations, 4));
    const ReaVecV all = model.ForcesOf(u, InternalForces::Elements::All);
    const ReaVecV some = model.ForcesOf(u, InternalForces::Elements::AtSupports);
    int supported = 0, shorter = 0;
    for (const Node& node : Each<Node>(model.project->problem.GiveNodes())) {
      for (int k = 1; k <= model.project->problem.components.count; ++k) {
        const int equation = model.project->Equation(node, k);
        const bool equal = all(equation) == some(equation);
        if (node.constraint) {
          ++supported;
          EXPECT_TRUE(equal) << equation;
        } else {
          shorter += !equal;
        }
      }
    }
    EXPECT_GT(supported, 0);
    EXPECT_GT(shorter, 0) << problem;
  }
}

TEST(InternalForces, WithoutElementsThereAreNone)
{
  const ReaVecV u = VectorOf(RandomVector(6, 1));
  InternalForces forces({u}, 6, 3);
  for (int i = 1; i <= 6; ++i)
    EXPECT_EQ(forces.Forces(0)(i), 0.0);
}

}  // namespace morlen
