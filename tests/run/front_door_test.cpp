#include "run/project.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "base/textscan.h"
#include "model/constraint.h"
#include "model/mesh.h"
#include "model/node.h"
#include "solvers/skymatriu.h"
#include "support/frame.h"
#include "support/solved.h"

namespace morlen {

namespace {

// A plane cantilever of length 2 along X with EI = 6 and EA = 4, and a force of 3 across its tip.
std::unique_ptr<Project> Cantilever()
{
  return ReadProject(ProblemParts()
                         .With(&ProblemParts::coordinates, "1 0 0\n2 2 0")
                         .With(&ProblemParts::elements, "1 1 2 1")
                         .With(&ProblemParts::materials, "1 E=2 A=2 Iz=3")
                         .With(&ProblemParts::constraints, "1 111 0 0 0")
                         .With(&ProblemParts::loads, "2 0 3 0")
                         .Text());
}

// F·L³/3EI and F·L²/2EI at the tip, and the reactions to the force.
void ExpectSolution(const Project& project)
{
  const Node& tip = *project.FindNode(2);
  EXPECT_NEAR(project.solution.displacements(project.Equation(tip, 2)), 3.0 * 8 / 18, 1e-14);
  EXPECT_NEAR(project.solution.displacements(project.Equation(tip, 3)), 3.0 * 4 / 12, 1e-14);
  const auto& reactions = project.FindNode(1)->constraint->reactions;
  EXPECT_NEAR(reactions[1], -3.0, 1e-13);  // rounding of the stiffness times displacements
  EXPECT_NEAR(reactions[2], -6.0, 1e-13);
}

}  // namespace

TEST(FrontDoor, SolvesInThreeCalls)
{
  const auto project = Cantilever();
  project->Calc(1, nullptr);
  EXPECT_NE(project->solver, nullptr);
  project->CalcStrengthsAndReactions(nullptr);
  EXPECT_EQ(project->solver, nullptr);
  ExpectSolution(*project);
}

TEST(FrontDoor, SolvesStepByStep)
{
  const auto project = Cantilever();
  project->solver = std::make_unique<SkyMatriu>(project->problem.Equations());
  project->FillMatrixVectorAndSolve(nullptr);
  project->CalcStrengthsBeams(0);
  project->CalcReactions();
  ExpectSolution(*project);
  project->CalcReactions();  // again
  ExpectSolution(*project);
  const Elem& beam = *project->GiveElem(1);
  // EI·v'' = F·(L - x)
  EXPECT_NEAR(project->GiveStrength(0, beam, 3, 0.5, 2.0), 3.0, 1e-13);  // as the reactions
}

}  // namespace morlen
