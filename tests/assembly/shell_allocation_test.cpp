// Shells of both formulations allocate nothing for an element: stiffness, forces and strengths of a
// mesh of four times as many elements take the same number of allocations.

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "assembly/element_assembly.h"
#include "assembly/internal_forces.h"
#include "assembly/preparation.h"
#include "assembly/solution.h"
#include "assembly/solve.h"
#include "model/mesh.h"
#include "run/element_families.h"
#include "solvers/sparse_solver.h"
#include "support/allocation_count.h"
#include "support/loaded_beams.h"
#include "support/sanitizer.h"
#include "support/shell_model.h"
#include "support/solved.h"

namespace morlen {

namespace {

struct Counts
{
  long stiffness = 0;
  long forces = 0;
  long strengths = 0;
};

// A part of a cylinder. Two materials take turns, of which one has Euler angles.
std::string CurvedShell(int cells, const std::string& settings)
{
  const ShellModel model = GridShell(cells, cells, [](double u, double v) {
    return Vector3{2 * std::sin(u), v, 2 * std::cos(u)};
  });
  std::string elements;
  for (std::size_t i = 0; i < model.triangles.size(); ++i) {
    elements += std::to_string(i + 1);
    for (const int node : model.triangles[i])
      elements += " " + std::to_string(node);
    elements += i % 2 == 0 ? " 1\n" : " 2\n";
  }
  std::string text = model.Text();
  const std::size_t begin = text.find("elements\n1 ");
  const std::size_t end = text.find("end elements");
  text.replace(begin, end - begin, "elements\n" + elements);
  text.replace(text.find("t=0.1\n"), 6,
               "t=0.1\n2 E=500 nu=0.25 G=200 t=0.2 Euler1=0.1 Euler2=0.2 Euler3=0.3\n");
  return text.insert(text.find("problem type 3d\n") + 16, settings);
}

// The number of allocations of an action.
template <class Action>
long CountOf(Action action)
{
  const long before = AllocationCount();
  action();
  return AllocationCount() - before;
}

Counts CountAllocations(int cells, const std::string& settings)
{
  const std::unique_ptr<Problem> problem =
      ReadProblemText(CurvedShell(cells, "Solver Sparse 1e-5 1e-5 1000\n" + settings));
  const ElementFamilies& families = FamiliesOf(*problem);
  PrepareModel(*problem, families);
  PrepareEquations(*problem, families, {});
  const Mesh& mesh = *problem->meshes.front();
  const ElementFamily& family = families.Of(mesh);
  SparseSolver matrix(problem->numNodes, problem->components.count);
  CreateMatrix(problem->meshes, problem->components, matrix);
  Counts counts;
  counts.stiffness = CountOf([&] { family.addStiffness(*problem, mesh, kInSupportAxes, matrix); });
  Solution solution;
  solution.displacements.resize(problem->Equations(), 0.5);
  solution.displacementRests.resize(problem->Equations(), 0.0);
  InternalForces forces({solution.Displacements()}, problem->Equations(),
                        problem->components.count);
  counts.forces = CountOf([&] { family.addForces(*problem, mesh, forces); });
  MeshResults results;
  results.points = family.points;
  results.numbers.resize(mesh.GiveElemPlex()->Count());
  counts.strengths = CountOf([&] { family.calcStrengths(*problem, mesh, solution, results); });
  return counts;
}

}  // namespace

TEST(ShellAllocations, DoNotGrowWithTheNumberOfElements)
{
  if (kSanitized)
    GTEST_SKIP() << "a sanitizer replaces the allocator";
  for (const char* formulation : {"Standard", "Refined"}) {
    for (const char* conversion : {"", "ConvertTo6Nodes\n"}) {
      for (const char* output : {"", "MainAndLocalStresses\n"}) {
        const std::string settings =
            std::string("ShellFormulation ") + formulation + "\n" + conversion + output;
        SCOPED_TRACE(settings);
        const Counts few = CountAllocations(10, settings);
        const Counts many = CountAllocations(20, settings);
        // The blocks of an element and the results need room, so that something is counted.
        EXPECT_GT(few.stiffness, 0);
        EXPECT_GT(few.strengths, 0);
        EXPECT_EQ(many.stiffness, few.stiffness);
        EXPECT_EQ(many.forces, few.forces);
        EXPECT_EQ(many.strengths, few.strengths);
      }
    }
  }
}

}  // namespace morlen
