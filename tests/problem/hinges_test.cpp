// Hinges: the two blocks, the merged codes, and the rotations that no element holds.

#include "problem/hinges.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "model/constraint.h"
#include "model/node.h"
#include "results/model_dump.h"
#include "support/fatal.h"
#include "support/frame.h"
#include "support/loaded_beams.h"
#include "support/run.h"
#include "support/solved.h"

namespace morlen {

namespace {

using Doubles = std::vector<double>;
using Ints = std::vector<int>;

// Four nodes along x, with the beams 1 and 5 in one mesh and the beam 9 in another.
ProblemParts Chain(const std::string& rest)
{
  ProblemParts parts;
  parts.coordinates = "1 0 0\n2 1 0\n3 2 0\n4 3 0";
  parts.elements = "1 1 2 1\n5 2 3 1";
  parts.rest =
      "mesh dimension 2 elemtype Linear nnode 2 coordinates\nend\nelements\n9 4 3 1\nend\n" + rest;
  return parts;
}

ProblemParts SpaceChain(const std::string& rest)
{
  ProblemParts parts = SpaceProblem();
  parts.coordinates = "1 0 0 0\n2 1 0 0\n3 2 0 0\n4 3 0 0";
  parts.elements = "1 1 2 1\n5 2 3 1\n9 4 3 1";
  parts.rest = rest;
  return parts;
}

std::unique_ptr<Problem> Merged(const ProblemParts& parts)
{
  auto problem = ReadProblemText(parts.Text());
  MergeHinges(*problem);
  return problem;
}

Ints Codes(const Problem& problem)
{
  return {problem.GiveHingeCode(1).Value(), problem.GiveHingeCode(5).Value(),
          problem.GiveHingeCode(9).Value()};
}

// Flags of a node; empty without a support.
Ints Flags(const Problem& problem, int node)
{
  const Constraint* support = problem.FindNode(node)->constraint.get();
  if (!support)
    return {};
  return {support->flags.begin(), support->flags.begin() + problem.components.count};
}

void ExpectRunRefused(const std::string& rest, const std::string& message)
{
  SCOPED_TRACE(rest);
  const RunResult run = RunOnProblem(Chain(rest).Text());
  HintAfter(message, run);
  EXPECT_EQ(run.status, 2);
}

}  // namespace

TEST(Rotules, MarkNodes)
{
  const auto problem = ReadProblemText(
      Chain("rotules\n# a comment\n2 hinge\n\n: 4 1 2 3\nend of rotules 1 1\n").Text());
  EXPECT_TRUE(problem->hasHinges);
  for (int node = 1; node <= 4; ++node)
    EXPECT_EQ(problem->FindNode(node)->hasRotule, node % 2 == 0);
  EXPECT_EQ(Codes(*problem), (Ints{11, 11, 11}));  // merged later
}

TEST(Rotules, ABareNumberIsARecord)
{
  for (const char* records :
       {"2\n4", "2\r\n4\r", "\t2\t\n4 # foot", "2 # 3\n\t# a comment\n4 \r"}) {
    const auto problem = ReadProblemText(Chain(Block("rotules", records)).Text());
    for (int node = 1; node <= 4; ++node)
      EXPECT_EQ(problem->FindNode(node)->hasRotule, node % 2 == 0) << records;
  }
}

TEST(Rotules, WrongRecordsAreRefused)
{
  for (const char* number : {"5", "0", "-1"})
    ExpectRunRefused(Block("rotules", std::string(number) + " hinge"),
                     "error: Trying to assign rotule to unknown node\n");
  ExpectRunRefused("rotules\n2", "Not reading correctly the rotules. Number=2\n");
  ExpectRunRefused("rotules\n1 hinge\n", "can't find word ***end*** in input file\n");
}

TEST(ElemRotules, GiveCodes)
{
  const auto problem = ReadProblemText(
      Chain("elem_rotules\n# a comment\n1 10\n= 5 01\n9\t0 rest\nend elem_rotules\n").Text());
  EXPECT_TRUE(problem->hasHinges);
  EXPECT_EQ(Codes(*problem), (Ints{10, 1, 0}));
  EXPECT_EQ(problem->GiveHingeCode(7).Value(), 11);
  static const std::map<std::string, int> codes = {
      {"11", 11}, {"10", 10},   {"01", 1},   {"1", 1},  {"00", 0},    {"0", 0},
      {"+1", 1},  {"10.5", 10}, {"110", 11}, {"1x", 1}, {"   01", 1}, {"11 00", 11}};
  for (const auto& [text, code] : codes)
    EXPECT_EQ(
        ReadProblemText(Chain(Block("elem_rotules", "5 " + text)).Text())->GiveHingeCode(5).Value(),
        code)
        << text;
}

TEST(ElemRotules, TheLastRecordOfAnElementCounts)
{
  const auto problem = ReadProblemText(
      Chain(Block("elem_rotules", "5 10\n5 01") + Block("elem_rotules", "1 0\n1 11")).Text());
  EXPECT_EQ(Codes(*problem), (Ints{11, 1, 11}));
}

TEST(ElemRotules, WrongRecordsAreRefused)
{
  for (const char* number : {"2", "0", "-7"})
    ExpectRunRefused(Block("elem_rotules", std::string(number) + " 10"),
                     std::string("error: trying to assign a rotule to element number ") + number +
                         " and it does not exist\n");
  ExpectRunRefused("elem_rotules\n5", "Not reading correctly the rotules -a-. Number=5\n");
  for (const char* text : {"", "\r", " x", " ", " # 10"})
    ExpectRunRefused(Block("elem_rotules", std::string("5") + text),
                     "Not reading correctly the rotules -b-. Number=5\n");
  for (const char* code : {"12", "20", "2", "-1", "99"})
    ExpectRunRefused(Block("elem_rotules", std::string("5 ") + code),
                     "error: hinge code of element 5 must be 11, 10, 01 or 00\n");
}

TEST(Hinges, AFileWithoutHingesGetsNoSupports)
{
  const auto project = ReadProject(Chain("").Text());
  EXPECT_FALSE(project->problem.hasHinges);
  project->Calc(0, nullptr);
  EXPECT_EQ(Codes(project->problem), (Ints{11, 11, 11}));
  for (const int node : {2, 3, 4})
    EXPECT_FALSE(project->FindNode(node)->constraint);
  EXPECT_FALSE(ReadProblemText(Chain("rotules\nend\nelem_rotules\nend\n").Text())->hasHinges);
  EXPECT_TRUE(ReadProblemText(Chain(Block("elem_rotules", "1 11")).Text())->hasHinges);
}

TEST(Hinges, AHingedNodeHingesAllBeamEndsAtIt)
{
  static const struct
  {
    const char* nodes;
    const char* elements;
    Ints codes;
  } cases[] = {
      {"2 h", "", {10, 1, 11}},   // element 1 ends, element 5 begins there
      {"3 h", "", {11, 10, 10}},  // element 9 runs from node 4 to node 3
      {"4 h", "", {11, 11, 1}},
      {"2 h\n3 h", "", {10, 0, 10}},
      {"2 h", "5 10", {10, 0, 11}},
      {"2 h", "5 01\n1 01", {0, 1, 11}},
      {"1 h\n2 h\n3 h\n4 h", "9 11", {0, 0, 0}},
      {"", "1 10\n5 01\n9 00", {10, 1, 0}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.nodes << " / " << c.elements);
    const std::string nodes = Block("rotules", c.nodes);
    const std::string elements = Block("elem_rotules", c.elements);
    EXPECT_EQ(Codes(*Merged(Chain(nodes + elements))), c.codes);
    EXPECT_EQ(Codes(*Merged(Chain(elements + nodes))), c.codes);
  }
}

TEST(Hinges, RotationsThatNoElementHoldsAreFixed)
{
  const auto space = Merged(SpaceChain(Block("rotules", "2 h")));
  EXPECT_EQ(Flags(*space, 2), (Ints{0, 0, 0, 1, 1, 1}));
  EXPECT_EQ(space->FindNode(2)->constraint->values, (std::array<double, 6>{}));
  EXPECT_EQ(Flags(*space, 3), Ints());
  const auto plane = Merged(Chain(Block("rotules", "2 h")));
  EXPECT_EQ(Flags(*plane, 2), (Ints{0, 0, 1}));
  EXPECT_EQ(plane->FindNode(2)->constraint->flags, (std::array<int, 6>{0, 0, 1, 0, 0, 0}));
}

TEST(Hinges, OneContinuousEndKeepsTheRotationsFree)
{
  for (const char* code : {"1 10", "5 01"}) {
    const auto problem = Merged(Chain(Block("elem_rotules", code)));
    EXPECT_EQ(Flags(*problem, 2), Ints()) << code;
    EXPECT_EQ(Flags(*problem, 3), Ints()) << code;
  }
  const auto problem = Merged(SpaceChain(Block("elem_rotules", "1 10\n5 01")));
  EXPECT_EQ(Flags(*problem, 2), (Ints{0, 0, 0, 1, 1, 1}));
}

TEST(Hinges, SupportsKeepTheirFlagsAndValues)
{
  // A support with prescribed displacements, springs, and a support of one translation, all at
  // hinged nodes.
  const auto problem =
      Merged(SpaceChain(Block("rotules", "1 h\n2 h\n3 h"))
                 .With(&ProblemParts::constraints,
                       "1 110010 1 2 3 4 5 6\n2 222020 1 2 3 4 5 6\n3 001000 0 0 1 0 0 0"));
  EXPECT_EQ(Flags(*problem, 1), (Ints{1, 1, 0, 1, 1, 1}));
  EXPECT_EQ(problem->FindNode(1)->constraint->values, (std::array<double, 6>{1, 2, 0, 0, 5, 0}));
  EXPECT_EQ(Flags(*problem, 2), (Ints{2, 2, 2, 1, 2, 1}));
  EXPECT_EQ(problem->FindNode(2)->constraint->values, (std::array<double, 6>{1, 2, 3, 0, 5, 0}));
  EXPECT_EQ(Flags(*problem, 3), (Ints{0, 0, 1, 1, 1, 1}));
}

TEST(Hinges, OtherElementsHoldTheRotations)
{
  const auto problem = Merged(SpaceChain(
      "mesh dimension 3 elemtype Triangle nnode 3 coordinates\nend\nelements\n7 2 3 4 1\nend\n" +
      Block("rotules", "1 h\n2 h\n3 h")));
  EXPECT_EQ(Flags(*problem, 2), Ints());
  EXPECT_EQ(Flags(*problem, 3), Ints());
  EXPECT_EQ(Flags(*problem, 1), (Ints{1, 1, 1, 1, 1, 1}));
}

TEST(Hinges, SolidsHaveNoRotationsToFix)
{
  const auto problem = ReadProblemText(
      "problem type 3d\nmesh dimension 3 elemtype Tetrahedra nnode 4 coordinates\n"
      "1 0 0 0\n2 1 0 0\n3 0 1 0\n4 0 0 1\n5 1 1 1\nend\nelements\n1 1 2 3 4 1\nend\n" +
      Block("rotules", "1 h\n5 h"));
  MergeHinges(*problem);
  EXPECT_EQ(Flags(*problem, 1), Ints());
  EXPECT_EQ(Flags(*problem, 5), Ints());
}

TEST(Hinges, AreListedInTheModel)
{
  const auto problem = Merged(Chain(Block("rotules", "2 h\n4 h") + Block("elem_rotules", "9 00")));
  const TemporaryFolder folder;
  {
    std::ofstream out(folder.Path() / "model.txt");
    PrintTo(*problem, out);
  }
  const std::string text = folder.Read("model.txt");
  EXPECT_NE(text.find("nodes with rotule:\n2\n4\nelements rotule:\nelm 1 code=10\nelm 5 code=1\n"
                      "elm 9 code=0\n"),
            std::string::npos)
      << text;
  const auto plain = ReadProblemText(Chain("").Text());
  {
    std::ofstream out(folder.Path() / "plain.txt");
    PrintTo(*plain, out);
  }
  EXPECT_EQ(folder.Read("plain.txt").find("rotule"), std::string::npos);
}

}  // namespace morlen
