#include "mpi/part.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>

#include "assembly/element_family.h"
#include "assembly/internal_forces.h"
#include "assembly/preparation.h"
#include "assembly/solve.h"
#include "direct/problem_pattern.h"
#include "mpi/node_parts.h"
#include "mpi/part_matrix.h"
#include "numeric/matriu.h"
#include "run/element_families.h"
#include "solvers/skymatriu.h"
#include "support/shell_problems.h"
#include "support/solved.h"

namespace morlen::mpi {

namespace {

constexpr int kParts = 3;

// A shell with settlements, springs and skew supports, prepared for an analysis, and its parts.
struct Divided
{
  Divided()
  {
    ShellModel model = GridShell(5, 4, [](double u, double v) {
      return Vector3{3.0 * u, 2.0 * v, u * u + 0.3 * v};
    });
    model.Hold(1, "111000", {0.0, 0.01, -0.02, 0.0, 0.0, 0.0});
    model.Hold(6, "002100", {0.0, 0.0, 40.0, 0.1, 0.0, 0.0});
    model.constraints += "30 110000 0.1 0.2 0 0 0 0 Euler1=0.3 Euler2=0.2 Euler3=0.1\n";
    problem = ReadProblemText(model.Text());
    problem->solverSettings.type = SolverType::Direct;
    PrepareModel(*problem, FamiliesOf(*problem));
    PrepareEquations(*problem, FamiliesOf(*problem), {});
    const auto elements =
        ElementsOfParts(*problem, PartsOfNodes(direct::PatternOf(*problem), kParts), kParts);
    const auto nodes = NodesOfParts(*problem, elements);
    for (int k = 0; k < kParts; ++k) {
      ByteWriter out;
      PartWriter(*problem).Write(elements[k], nodes[k], out);
      const Bytes bytes = out.Take();
      ByteReader in(bytes);
      parts.push_back(UnpackPart(in));
    }
  }

  std::unique_ptr<Problem> problem;
  std::vector<std::unique_ptr<Part>> parts;
};

}  // namespace

// Two assemblies of the same numbers in other orders: 1e-12 is some thousand roundings.
TEST(Part, MatricesAddUpToTheWholeMatrixWithSupports)
{
  const Divided model;
  const Problem& problem = *model.problem;
  const ElementFamilies& families = FamiliesOf(problem);
  SkyMatriu whole(problem.Equations());
  CreateMatrix(problem.meshes, problem.components, whole);
  AddStiffness({problem, families, nullptr}, whole);
  std::vector<ReaVecV> sides(1);
  sides[0].resize(problem.Equations(), 0.0);
  ApplySupports(problem.GiveNodes(), problem.components, whole, sides);

  std::map<std::pair<int, int>, double> sum;
  std::vector<double> loads(static_cast<std::size_t>(problem.Equations()), 0.0);
  for (const auto& part : model.parts) {
    PartMatrix matrix(*part);
    for (const auto& mesh : part->problem.meshes)
      families.Of(*mesh).addStiffness(part->problem, *mesh, 1, matrix);
    const std::vector<double> own = matrix.ApplySupports();
    for (std::size_t i = 0; i < own.size(); ++i)
      loads[problem.components.Equation(part->nodes[i / 6], static_cast<int>(i % 6) + 1) - 1] +=
          own[i];
    direct::Coordinates entries = matrix.TakeEntries();
    RenumberAsWhole(*part, entries);
    for (std::size_t k = 0; k < entries.rows.size(); ++k)
      sum[{entries.rows[k], entries.columns[k]}] += entries.values[k];
  }
  Matriu dense;
  whole.CopyFromYouToMat(dense);
  double largest = 0.0;
  for (int i = 1; i <= whole.GiveSize(); ++i)
    largest = std::max(largest, dense(i, i));
  for (int i = 1; i <= whole.GiveSize(); ++i) {
    for (int j = i; j <= whole.GiveSize(); ++j)
      EXPECT_NEAR(sum[std::pair(i, j)], dense(i, j), 1e-12 * largest) << i << " " << j;
  }
  double load = 0.0;
  for (int i = 1; i <= whole.GiveSize(); ++i)
    load = std::max(load, std::fabs(sides[0](i)));
  EXPECT_GT(load, 1.0);
  ForEachFree(problem.GiveNodes(), problem.components, [&](int equation, int, double) {
    EXPECT_NEAR(loads[equation - 1], sides[0](equation), 1e-12 * load) << equation;
  });
}

TEST(Part, EveryNodeHasOneOwner)
{
  const Divided model;
  std::vector<int> owners(static_cast<std::size_t>(model.problem->numNodes), 0);
  for (const auto& part : model.parts) {
    EXPECT_TRUE(std::is_sorted(part->nodes.begin(), part->nodes.end()));
    for (std::size_t k = 0; k < part->nodes.size(); ++k)
      owners[part->nodes[k] - 1] += part->owned[k];
  }
  EXPECT_EQ(owners, std::vector<int>(owners.size(), 1));
}

// The nodes of a grid of 40 by 40 in two parts: METIS allows 3 percent of imbalance, the short
// border is one line of nodes.
TEST(NodeParts, GridIsCutInHalves)
{
  const ShellModel model = GridShell(39, 39, [](double u, double v) { return Vector3{u, v, 0.0}; });
  const auto problem = ReadProblemText(model.Text());
  const NodePattern pattern = direct::PatternOf(*problem);
  const std::vector<int> parts = PartsOfNodes(pattern, 2);
  const auto second = std::count(parts.begin(), parts.end(), 1);
  EXPECT_NEAR(static_cast<double>(second), 800.0, 0.05 * 800.0);
  int cut = 0;
  for (int p = 0; p < pattern.Lines(); ++p) {
    for (int s = pattern.starts[p]; s < pattern.starts[p + 1]; ++s)
      cut += parts[p] == 0 && parts[pattern.columns[s]] == 1;
  }
  EXPECT_LE(cut, 3 * 80);
}

TEST(NodeParts, FewNodesAreDividedByTheirNumbers)
{
  NodeCouplings couplings(5, 10);
  EXPECT_EQ(PartsOfNodes(couplings.MakePattern(), 2), (std::vector<int>{0, 0, 0, 1, 1}));
  NodeCouplings one(1, 10);
  EXPECT_EQ(PartsOfNodes(one.MakePattern(), 4), std::vector<int>{0});
}

}  // namespace morlen::mpi
