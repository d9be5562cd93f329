// The choice of vector instructions changes the inner loops of the solvers.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "run/project.h"
#include "solvers/block_kernel.h"
#include "solvers/ldlt_kernels.h"
#include "solvers/skymatriu.h"
#include "solvers/sparse_solver.h"
#include "support/frame.h"
#include "support/processor.h"
#include "support/sanitizer.h"
#include "support/solved.h"

namespace morlen {

namespace {

std::string SpaceFrame(const std::string& settings)
{
  return SpaceProblem().With(&ProblemParts::settings, settings).Text();
}

// Beams along the edges of a square tower with clamped feet. The beams at a corner all differ.
Frame Tower(int storeys)
{
  Frame frame;
  frame.sections = {{.E = 2.1e8, .G = 8.1e7, .A = 0.013, .Iy = 1.7e-5, .Iz = 2.3e-4, .J = 1.1e-6}};
  for (int level = 0; level <= storeys; ++level) {
    for (int corner = 1; corner <= 4; ++corner) {
      const int node = 4 * level + corner;
      frame.nodes.push_back({corner % 3 == 1 ? 0.1 : 5.3, corner > 2 ? 4.7 : 0.2, 3.1 * level});
      if (level == 0) {
        frame.supports.push_back({.node = node, .flags = kClamped});
        continue;
      }
      frame.beams.push_back({node - 4, node, 1});
      frame.beams.push_back({node, corner == 4 ? node - 3 : node + 1, 1});
      frame.loads.push_back({.node = node, .values = {1.3, 0.7 * corner, -9.1, 0, 0, 0.3}});
    }
  }
  return frame;
}

std::vector<double> Displacements(const std::string& problem, Processor processor)
{
  const std::unique_ptr<Project> project = ReadProject(problem);
  project->problem.solverSettings.processor = processor;
  project->Calc(1, nullptr);
  return {project->solution.displacements.begin(), project->solution.displacements.end()};
}

}  // namespace

TEST(ChosenProcessor, FactorisesTheSkyline)
{
  const std::unique_ptr<Project> project = ReadProject(SpaceFrame("Solver SkyLine"));
  EXPECT_EQ(project->problem.solverSettings.processor, TestedProcessor());
  project->Calc(1, nullptr);
  const LdltKernel& kernel = static_cast<const SkyMatriu&>(*project->solver).Kernel();
  switch (TestedProcessor()) {
    case Processor::kPlain:
      EXPECT_EQ(&kernel, &kPlainLdltKernel);
      break;
    case Processor::kAvx2:
      EXPECT_EQ(&kernel, &kAvx2LdltKernel);
      break;
    case Processor::kAvx512:
      EXPECT_EQ(&kernel, &kAvx512LdltKernel);
      break;
  }
}

TEST(ChosenProcessor, MultipliesTheBlocksOfTheSparseMatrix)
{
  for (const char* const settings : {"Solver Sparse 1e-9 1e-9 100", "Solver Sparse 1e-5 0.1 20"}) {
    const std::unique_ptr<Project> project = ReadProject(SpaceFrame(settings));
    project->Calc(1, nullptr);
    const NodeBlockMatrix& matrix =
        *static_cast<const SparseSolver&>(*project->solver).GiveBlocks();
    EXPECT_EQ(matrix.Kernels(), GiveBlockKernels(6, TestedProcessor()));
    EXPECT_EQ(matrix.Kernels() == GiveBlockKernels(6, Processor::kPlain),
              TestedProcessor() == Processor::kPlain);
  }
}

// The plain loops round after each multiplication, the others only after the addition.
TEST(ChosenProcessor, DecidesOnTheLastDigits)
{
  if (kSanitized)
    GTEST_SKIP() << "a build for sanitizers is not optimised enough to join the two";
  for (const char* const settings : {"Solver SkyLine", "Solver Sparse 1e-12 1e-12 1000"}) {
    const std::string problem = ProblemText(Tower(12), settings);
    const std::vector<double> plain = Displacements(problem, Processor::kPlain);
    const std::vector<double> chosen = Displacements(problem, TestedProcessor());
    EXPECT_EQ(chosen == plain, TestedProcessor() == Processor::kPlain) << settings;
    ExpectValues(chosen, plain, 1e-8);  // rounding times the condition of the matrix
  }
}

}  // namespace morlen
