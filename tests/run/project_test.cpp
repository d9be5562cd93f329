#include "run/project.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>

#include "base/errorwriter.h"
#include "base/textscan.h"
#include "model/constraint.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/nodal_load.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "solvers/skymatriu.h"
#include "support/fatal.h"
#include "support/frame.h"
#include "support/run.h"
#include "support/solved.h"

namespace morlen {

namespace {

// A cantilever in the plane from node 1 to node 2, with the element 9.
ProblemParts Cantilever()
{
  ProblemParts parts;
  parts.elements = "9 1 2 1";
  parts.loads = "2 0 3 0";
  return parts;
}

// A plane cantilever of length 2 along X with EI = 6 and EA = 4, and a force of 3 across its tip.
std::unique_ptr<Project> LongCantilever()
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

TEST(Project, ReadsAFileAsItReadsATextOfTheSameContent)
{
  const std::string text = Cantilever().Text();
  TextScan scan(text);
  Project fromText(100);
  fromText.ReadFromAscii(scan);
  const TemporaryFolder folder;
  folder.Write("model.dat", text);
  std::ifstream in(folder.Path() / "model.dat");
  Project fromFile(100);
  fromFile.ReadFromAscii(in);
  for (const Project* project : {&fromText, &fromFile}) {
    EXPECT_EQ((*project->FindNode(2))(1), 1.0);
    EXPECT_EQ(project->FindNode(2)->load->values[1], 3.0);
    EXPECT_EQ(project->GiveElem(9)->Num(), 9);
    EXPECT_EQ(project->GiveMaxElmNum(), 9);
    EXPECT_EQ(project->CheckElementsNumbers(), 0);
  }
}

TEST(Project, ReadsSingleBlocks)
{
  const auto project = ReadProject(Cantilever().Text());
  const auto read = [&](void (Project::*block)(TextScan&), const std::string& text) {
    TextScan scan(text);
    ((*project).*block)(scan);
  };
  read(&Project::ReadFAUnitsNames, "kN_m kN m kPa 1000 1\nend units_names\n");
  read(&Project::ReadFAMaterials, "3 E 5\nend materials\n");
  read(&Project::ReadFAConstraints, "2 010 0 0 0\nend constraints\n");
  read(&Project::ReadFALoads, "2 0 4 0\nend nodal_point_loads\n");
  read(&Project::ReadFARotules, "2 h\nend rotules\n");
  read(&Project::ReadFARotulesElems, "9 01\nend elem_rotules\n");
  EXPECT_EQ(project->problem.units.GiveUnitsBase("kN_m")->facN, 1000.0);
  EXPECT_EQ(Find<Material>(project->problem.materials, 3)->E1, 5.0);
  EXPECT_EQ(project->FindNode(2)->constraint->flags[1], 1);
  EXPECT_EQ(project->FindNode(2)->load->values[1], 3.0 + 4.0);
  EXPECT_TRUE(project->FindNode(2)->hasRotule);
  EXPECT_EQ(project->problem.GiveHingeCode(9).Value(), 1);
}

TEST(Project, ReadElemLoadReturnsMinusOneForOtherWords)
{
  const auto project = ReadProject(Cantilever().Text());
  TextScan text("9 1 2\nend\n");
  EXPECT_EQ(project->ReadElemLoad(text, "loads"), -1);
  EXPECT_EQ(project->ReadElemLoad(text, "local_pressure_loads"), 0);
  EXPECT_FALSE(project->problem.elemLoads.free(9));
}

TEST(Project, ExplainsMissingSupports)
{
  const ProblemParts parts = SpaceProblem().With(&ProblemParts::constraints, "");
  const auto project = ReadProject(parts.Text());
  ExpectFatal(
      [&] {
        project->CheckTypicalConstraintsErrors();
        errorwriter.WriteErrorAndQuit();
      },
      "There are no prescribed nodes in the model!!!\n");
}

// Tip load 3 on the length 1 with EI = 1: deflection 1, rotation 3/2; reactions -3 and -3.
TEST(Project, SolvesFromTheFileToTheReactionsOfTheSupports)
{
  const auto project = ReadProject(Cantilever().Text());
  project->Calc(1, nullptr);
  const Node& tip = *project->FindNode(2);
  const ReaVecV& u = project->solution.displacements;
  // 1e-9: far above the rounding of six equations
  EXPECT_NEAR(u(project->Equation(tip, 2)), 1.0, 1e-9);
  EXPECT_NEAR(u(project->Equation(tip, 3)), 1.5, 1e-9);
  EXPECT_TRUE(project->solver);
  project->CalcStrengthsAndReactions(nullptr);
  EXPECT_FALSE(project->solver);
  const auto& reactions = project->FindNode(1)->constraint->reactions;
  EXPECT_NEAR(reactions[1], -3.0, 1e-9);
  EXPECT_NEAR(reactions[2], -3.0, 1e-9);
  EXPECT_NEAR(project->GiveReaction(*project->GiveElem(9), 2, 0.0), -3.0, 1e-9);
}

TEST(Project, SolvesInThreeCalls)
{
  const auto project = LongCantilever();
  project->Calc(1, nullptr);
  EXPECT_NE(project->solver, nullptr);
  project->CalcStrengthsAndReactions(nullptr);
  EXPECT_EQ(project->solver, nullptr);
  ExpectSolution(*project);
}

TEST(Project, SolvesStepByStep)
{
  const auto project = LongCantilever();
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
