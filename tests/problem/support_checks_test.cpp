// The hints about supports when the equations cannot be solved.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "base/errorwriter.h"
#include "model/constraint.h"
#include "model/node.h"
#include "support/fatal.h"
#include "support/frame.h"
#include "support/loaded_beams.h"
#include "support/run.h"
#include "support/solved.h"

namespace morlen {

namespace {

const char* const kNone = "There are no prescribed nodes in the model!!!\n";
const char* const kOne = "There is only one prescribed node in the model!!!\n";
const char* const kThreeNeeded = "At least 3 prescribed nodes are needed!!!\n";
const char* const kSixNeeded = "Its 6 degrees of freedom should be prescribed!!!\n";

std::string CanRotate(const std::string& axis)
{
  return "There are only two prescribed nodes in the model!!!\nModel can rotate around axe: " +
         axis + " !!!\n";
}

const char* const kAlongX = "   1.000000e+00   0.000000e+00   0.000000e+00";

// The text that the check writes about a problem as read.
std::string CheckOf(const std::string& problem)
{
  const auto project = ReadProject(problem);
  return FatalCaught([&] {
    project->CheckTypicalConstraintsErrors();
    errorwriter.WriteErrorAndQuit();
  });
}

// A beam in space from (0,0,0) to `second`, and a third node between them.
std::string SpaceCheck(const std::string& supports, const std::string& second = "1 0 0")
{
  return CheckOf(SpaceProblem()
                     .With(&ProblemParts::coordinates, "1 0 0 0\n2 " + second + "\n3 0.5 0 0")
                     .With(&ProblemParts::elements, "1 1 3 1\n2 3 2 1")
                     .With(&ProblemParts::constraints, supports)
                     .Text());
}

// A plane frame of two meshes; node 3 belongs to the second mesh only.
std::string TwoMeshCheck(const std::string& supports)
{
  return CheckOf(ProblemParts()
                     .With(&ProblemParts::constraints, "")
                     .With(&ProblemParts::rest,
                           "mesh dimension 2 elemtype Linear nnode 2 coordinates\n1 0 0\n2 1 0\n"
                           "3 3 4\nend\nelements\n2 2 3 1\nend\n" +
                               Block("constraints", supports))
                     .Text());
}

// Runs the program on a mechanism. It must end with this hint and this message of the solver.
void ExpectRunFails(const ProblemParts& problem, const std::string& hint,
                    const std::string& solverMessage)
{
  SCOPED_TRACE(problem.Text());
  const RunResult run = RunOnProblem(problem.Text());
  EXPECT_EQ(run.err, hint + solverMessage);
  EXPECT_EQ(run.status, 2);
}

// The line that names the motion in the numbers of the file.
std::string Hint(const std::string& text)
{
  return "hint: " + text + "\n";
}

const std::string kSpin =
    "nodes 1 and 2 can turn about x: beam 1 spins about its own axis; no support prevents it";

std::string ZeroDiagonal(int equation, int node, int degree, const std::string& name)
{
  return "error when solving system(" + std::to_string(equation) +
         ").\nOne diagonal=0 in node=" + std::to_string(node) +
         " (Use Meshing->Mesh View).\nDegree of freedom " + std::to_string(degree) + " from 6 (" +
         name + ")\nCould not solve system. Probably boundary conditions are not correct\n";
}

}  // namespace

TEST(SupportChecks, OneMeshOfPlaneBeamsIsNotChecked)
{
  for (const char* supports : {"", "1 010 0 0 0", "1 010 0 0 0\n2 010 0 0 0"})
    EXPECT_EQ(CheckOf(ProblemParts().With(&ProblemParts::constraints, supports).Text()), "");
}

TEST(SupportChecks, NoSupport)
{
  EXPECT_EQ(SpaceCheck(""), kNone);
  EXPECT_EQ(TwoMeshCheck(""), kNone);
}

TEST(SupportChecks, OneSupportInSpaceMustHoldAllComponents)
{
  EXPECT_EQ(SpaceCheck("2 111111 0 0 0 0 0 0"), "");
  for (const char* flags : {"111110", "011111", "111000", "000000", "111211"})
    EXPECT_EQ(SpaceCheck(std::string("2 ") + flags + " 0 0 0 0 0 0"),
              std::string(kOne) + kSixNeeded);
}

TEST(SupportChecks, OneSupportWithThreeComponentsIsNotEnough)
{
  for (const char* flags : {"111", "110", "222", "000"})
    EXPECT_EQ(TwoMeshCheck(std::string("1 ") + flags + " 0 0 0"), std::string(kOne) + kThreeNeeded);
}

TEST(SupportChecks, TwoSupportsLeaveTheRotationAboutTheirLine)
{
  EXPECT_EQ(SpaceCheck("1 111000 0 0 0 0 0 0\n2 111000 0 0 0 0 0 0"), CanRotate(kAlongX));
  // The axis goes from the lower number to the higher.
  EXPECT_EQ(SpaceCheck("2 111000 0 0 0 0 0 0\n3 111000 0 0 0 0 0 0"),
            CanRotate("  -5.000000e-01   0.000000e+00   0.000000e+00"));
  // Neither held rotations about y and z nor springs prevent it.
  EXPECT_EQ(SpaceCheck("1 111011 0 0 0 0 0 0\n2 111011 0 0 0 0 0 0"), CanRotate(kAlongX));
  EXPECT_EQ(SpaceCheck("1 111200 0 0 0 5 0 0\n2 111000 0 0 0 0 0 0"), CanRotate(kAlongX));
  for (const char* supports :
       {"1 111100 0 0 0 0 0 0\n2 111000 0 0 0 0 0 0", "1 111000 0 0 0 0 0 0\n2 000100 0 0 0 0 0 0"})
    EXPECT_EQ(SpaceCheck(supports), "");
}

TEST(SupportChecks, ARotationAboutAnyAxisNotNormalToTheLineHoldsIt)
{
  const char* const second = "1 -2 0";
  for (const char* flags : {"000100", "000010", "111111"})
    EXPECT_EQ(SpaceCheck(std::string("1 111000 0 0 0 0 0 0\n2 ") + flags + " 0 0 0 0 0 0", second),
              "");
  EXPECT_EQ(SpaceCheck("1 111001 0 0 0 0 0 0\n2 111001 0 0 0 0 0 0", second),
            CanRotate("   1.000000e+00  -2.000000e+00   0.000000e+00"));
}

TEST(SupportChecks, TwoSupportsInOnePlaceOrWithLocalAxesAreNotJudged)
{
  EXPECT_EQ(SpaceCheck("1 111000 0 0 0 0 0 0\n2 111000 0 0 0 0 0 0", "0 0 0"), "");
  EXPECT_EQ(SpaceCheck("1 111000 0 0 0 0 0 0\n2 111000 0 0 0 0 0 0 Euler1=0.1"), "");
  EXPECT_EQ(SpaceCheck("1 111000 0 0 0 0 0 0 Euler1=0\n2 111000 0 0 0 0 0 0"), "");
}

TEST(SupportChecks, ShortLinesAreJudgedLikeLongOnes)
{
  const char* const second = "1e-17 -2e-17 0";
  EXPECT_EQ(SpaceCheck("1 111001 0 0 0 0 0 0\n2 111001 0 0 0 0 0 0", second),
            CanRotate("   1.000000e-17  -2.000000e-17   0.000000e+00"));
  EXPECT_EQ(SpaceCheck("1 111000 0 0 0 0 0 0\n2 000100 0 0 0 0 0 0", second), "");
}

TEST(SupportChecks, WithThreeComponentsRotationsAreNotPrescribed)
{
  EXPECT_EQ(TwoMeshCheck("1 111 0 0 0\n3 111 0 0 0"), CanRotate("   3.000000e+00   4.000000e+00"));
}

TEST(SupportChecks, ThreeSupportsAreNotJudged)
{
  EXPECT_EQ(SpaceCheck("1 100000 0 0 0 0 0 0\n2 100000 0 0 0 0 0 0\n3 000000 0 0 0 0 0 0"), "");
  EXPECT_EQ(TwoMeshCheck("1 010 0 0 0\n2 010 0 0 0\n3 010 0 0 0"), "");
}

TEST(SupportChecks, OneSupportOfASolidIsNotEnough)
{
  EXPECT_EQ(CheckOf("problem type 3d\nmesh dimension 3 elemtype Tetrahedra nnode 4 coordinates\n"
                    "1 0 0 0\n2 1 0 0\n3 0 1 0\n4 0 0 1\nend\nelements\n1 1 2 3 4 1\nend\n"
                    "constraints\n1 111 0 0 0\nend\n"),
            std::string(kOne) + kThreeNeeded);
}

TEST(SupportChecks, TheSolversMessageFollows)
{
  const ProblemParts space = SpaceProblem();
  ExpectRunFails(space.With(&ProblemParts::constraints, ""), kNone,
                 ZeroDiagonal(7, 2, 1, "X displ.") +
                     Hint("the whole model can move along x: no support prevents it"));
  ExpectRunFails(space.With(&ProblemParts::constraints, "1 111011 0 0 0 0 0 0"),
                 std::string(kOne) + kSixNeeded,
                 ZeroDiagonal(10, 2, 4, "X rotation") + Hint(kSpin));
  ExpectRunFails(
      space.With(&ProblemParts::constraints, "1 111000 0 0 0 0 0 0\n2 111000 0 0 0 0 0 0"),
      CanRotate(kAlongX), ZeroDiagonal(10, 2, 4, "X rotation") + Hint(kSpin));
  // Three supports, none of which holds x.
  ExpectRunFails(space.With(&ProblemParts::coordinates, "1 0 0 0\n2 1 0 0\n3 2 0 0")
                     .With(&ProblemParts::elements, "1 1 2 1\n2 2 3 1")
                     .With(&ProblemParts::constraints,
                           "1 011111 0 0 0 0 0 0\n2 011111 0 0 0 0 0 0\n3 011111 0 0 0 0 0 0"),
                 "",
                 ZeroDiagonal(13, 3, 1, "X displ.") +
                     Hint("the whole model can move along x: no support prevents it"));
}

TEST(SupportChecks, APlaneMechanismGetsTheSolversMessageOnly)
{
  ExpectRunFails(ProblemParts().With(&ProblemParts::constraints, "1 010 0 0 0"), "",
                 ZeroDiagonal(4, 1, 4, "X rotation") +
                     Hint("the whole model can move along x: no support prevents it"));
  const std::string second =
      "mesh dimension 2 elemtype Linear nnode 2 coordinates\nend\nelements\n2 1 2 1\nend\n";
  ExpectRunFails(
      ProblemParts()
          .With(&ProblemParts::constraints, "1 110 0 0 0")
          .With(&ProblemParts::rest, second),
      std::string(kOne) + kThreeNeeded,
      ZeroDiagonal(6, 1, 6, "Z rotation") +
          Hint("the whole model can turn about z through node 1: no support prevents it"));
}

}  // namespace morlen
