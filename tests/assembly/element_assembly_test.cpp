// Which elements go into the matrix.

#include "assembly/element_assembly.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "problem/constraint.h"
#include "problem/element_family.h"
#include "solvers/skymatriu.h"
#include "support/processor.h"
#include "support/shell_model.h"
#include "support/solid_model.h"
#include "support/solved.h"

namespace {

// The global matrix of a model with one mesh, all of it inside the profile.
Matriu Assembled(Project& project, int applyLocalAxes)
{
  Mesh& mesh = *project.meshes.front();
  project.solver =
      std::make_unique<SkyMatriu>(project.numNodes * project.freeDegrees, TestedProcessor());
  project.solver->EnterMaxDiff(1, project.numNodes, project.freeDegrees);
  for (int node = 1; node <= project.numNodes; ++node)
    project.solver->EnterMaxDiff(1, node, project.freeDegrees);
  project.solver->Create(project.freeDegrees);
  (project.*FamilyOf(mesh).addStiffness)(&mesh, applyLocalAxes);
  Matriu K;
  project.solver->CopyFromYouToMat(K);
  return K;
}

bool IsRowEqual(const Matriu& a, const Matriu& b, int row)
{
  const double* first = a.Data() + (row - 1) * a.Cols();
  return std::equal(first, first + a.Cols(), b.Data() + (row - 1) * b.Cols());
}

// With the elements at supported nodes alone, the rows of these nodes have all they had, and
// something else is left out.
void ExpectRowsOfSupportsOnly(const std::string& problem)
{
  const auto project = ReadProject(problem);
  if (project->meshes.front()->GiveElemType() == Triangle)
    project->CalcCoplanarityVector();
  const Matriu all = Assembled(*project, 0);
  const Matriu some = Assembled(*project, kOnlyAtSupports);
  int supported = 0, shorter = 0;
  for (const Node& node : Each<Node>(project->GiveNodes())) {
    for (int k = 1; k <= project->freeDegrees; ++k) {
      const int row = (node.number - 1) * project->freeDegrees + k;
      const bool equal = IsRowEqual(all, some, row);
      if (node.constraint) {
        ++supported;
        EXPECT_TRUE(equal) << row;
      } else {
        shorter += !equal;
      }
    }
  }
  EXPECT_GT(supported, 0);
  EXPECT_GT(shorter, 0);
}

}  // namespace

TEST(BlockAssembler, TakesOnlyBeamsAtSupportsForReactions)
{
  ExpectRowsOfSupportsOnly(
      "problem type 3d\n"
      "mesh dimension = 3 elemtype Linear nnode = 2\n"
      "coordinates\n1 0 0 0\n2 2 1 0\n3 4 1 1\n4 6 0 1\nend coordinates\n"
      "elements\n1 1 2 1\n2 2 3 1\n3 3 4 1\nend elements\n"
      "materials\n1 E=200 G=80 A=2 Iy=1 Iz=3 J=1\nend materials\n"
      "constraints\n1 111111 0 0 0 0 0 0 Euler1=0.3 Euler2=0.2 Euler3=0.1\nend constraints\n");
}

TEST(BlockAssembler, TakesOnlyShellsAtSupportsForReactions)
{
  ShellModel model = GridShell(3, 2, [](double u, double v) {
    return Vector3{3.0 * u, 2.0 * v, u * u};
  });
  model.Hold(1, "111111");
  model.Hold(5, "111000");
  ExpectRowsOfSupportsOnly(model.Text());
  ExpectRowsOfSupportsOnly(WithMidSideNodes(model).Text());
}

TEST(BlockAssembler, TakesOnlySolidsAtSupportsForReactions)
{
  for (const int nnode : {4, 10}) {
    SolidModel model = SolidBlock({3, 1, 1}, {3.0, 1.0, 1.0}, nnode);
    model.Roller(0, 0.0);
    ExpectRowsOfSupportsOnly(model.Text());
  }
}
