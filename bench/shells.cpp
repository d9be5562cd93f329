// The time of an element of the standard and of the refined shells, on the same mesh in turn:
//
//   morlen_shells [-n REPETITIONS] problem.dat ...
//
// Of each stage the shortest processor time of all repetitions counts, divided by the number of
// elements: other work on the machine can only add to a time. Prints a line of JSON for each file,
// from which report.py makes a table. The models must consist of shells.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include "assembly/internal_forces.h"
#include "assembly/preparation.h"
#include "assembly/solution.h"
#include "assembly/solve.h"
#include "measure.h"
#include "model/mesh.h"
#include "results/strengths.h"
#include "run/element_families.h"
#include "run/project.h"
#include "solvers/sparse_solver.h"

using namespace morlen;

namespace {

constexpr int kRepetitions = 9;

/// Microseconds an element.
struct Times
{
  double assembly = std::numeric_limits<double>::infinity();  ///< into the sparse matrix
  double forces = std::numeric_limits<double>::infinity();
  double strengths = std::numeric_limits<double>::infinity();
};

int ElementsOf(const Problem& problem)
{
  int count = 0;
  for (const auto& mesh : problem.meshes)
    count += mesh->GiveElemPlex()->Count();
  return count;
}

/// Displacements without meaning, all different.
ReaVecV Displacements(int equations)
{
  ReaVecV u(equations);
  for (int k = 0; k < equations; ++k)
    u.Data()[k] = std::sin(0.7 * k);
  return u;
}

/// Runs the stages of one formulation.
class Stages
{
public:
  Stages(Project& project_, SparseSolver& matrix_)
      : project(project_), matrix(matrix_), elements(ElementsOf(project_.problem))
  {
    solution.displacements = Displacements(project.problem.Equations());
    solution.displacementRests.resize(project.problem.Equations(), 0.0);
  }

  /// Lowers the times to those of a run in this formulation.
  void Run(ShellFormulation formulation, Times& times)
  {
    project.problem.shellFormulation = formulation;
    matrix.SetToZero();
    Time(times.assembly, [&] { AddStiffness({Model(), FamiliesOf(Model()), nullptr}, matrix); });
    InternalForces forces({solution.displacements}, Model().Equations(), Model().components.count);
    Time(times.forces, [&] { AddForces(Model(), FamiliesOf(Model()), forces); });
    solution.results.assign(Model().meshes.size(), {});
    Time(times.strengths, [&] {
      for (int mesh = 0; mesh < static_cast<int>(Model().meshes.size()); ++mesh)
        CalcStrengths(Model(), FamiliesOf(Model()), mesh, solution);
    });
  }

private:
  const Problem& Model() const { return project.problem; }

  template <class Action>
  void Time(double& shortest, Action action) const
  {
    shortest = std::min(shortest, 1e6 / elements * Seconds(1, action));
  }

  Project& project;
  SparseSolver& matrix;
  int elements;
  Solution solution;
};

void PrintJson(const std::string& file, const Problem& problem, const Times& standard,
               const Times& refined)
{
  std::printf("{\"model\": \"%s\", \"equations\": %d, \"elements\": %d, \"nodes\": %d",
              std::filesystem::path(file).stem().c_str(), problem.Equations(), ElementsOf(problem),
              problem.meshes.front()->GiveNnode());
  for (const auto& [name, times] : {std::pair{"standard", standard}, {"refined", refined}})
    std::printf(", \"%s\": {\"assembly\": %.6g, \"forces\": %.6g, \"strengths\": %.6g}", name,
                times.assembly, times.forces, times.strengths);
  std::printf("}\n");
}

void Measure(const std::string& file, int repetitions)
{
  Project project(100);
  std::ifstream in(file);
  project.ReadFromAscii(in);
  Problem& problem = project.problem;
  problem.shellFormulation = ShellFormulation::Refined;  // for the shares of the nodes
  problem.solverSettings.type = SolverType::Sparse;
  PrepareModel(problem, FamiliesOf(problem));
  PrepareEquations(problem, FamiliesOf(problem), {});
  SparseSolver matrix(problem.numNodes, problem.components.count);
  CreateMatrix(problem.meshes, problem.components, matrix);
  Stages stages(project, matrix);
  Times standard, refined;
  for (int k = 0; k < repetitions; ++k) {
    stages.Run(ShellFormulation::Standard, standard);
    stages.Run(ShellFormulation::Refined, refined);
  }
  PrintJson(file, problem, standard, refined);
}

}  // namespace

int main(int argc, char** argv)
{
  const auto [files, repetitions] = ParseTimedFiles(argc, argv, "morlen_shells", kRepetitions);
  for (const std::string& file : files)
    Measure(file, repetitions);
  return 0;
}
