// The blocks of element loads in the problem file.

#include "problem/elem_load_reader.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "base/textscan.h"
#include "numeric/plex_range.h"
#include "problem/elem_loads.h"
#include "problem/pressure_load.h"
#include "support/fatal.h"
#include "support/frame.h"
#include "support/loaded_beams.h"
#include "support/run.h"
#include "support/solved.h"

namespace morlen {

namespace {

// A cantilever of three beams in two meshes, with these lines at the end of the file.
ProblemParts ChainWith(const std::string& rest)
{
  ProblemParts parts;
  parts.coordinates = "1 0 0\n2 1 0\n3 2 0\n4 3 0";
  parts.elements = "1 1 2 1\n5 2 3 1";
  parts.rest =
      "mesh dimension 2 elemtype Linear nnode 2 coordinates\nend\nelements\n9 3 4 1\nend\n" + rest;
  return parts;
}

std::unique_ptr<Problem> ReadWith(const std::string& rest)
{
  return ReadProblemText(ChainWith(rest).Text());
}

const BaseElemLoads* FirstLoad(const Problem& problem, int elem)
{
  return Find<BaseElemLoads>(problem.elemLoads, elem);
}

// The first value of each distributed load on an element, in the order of the chain.
std::vector<double> ChainOf(const Problem& problem, int elem)
{
  std::vector<double> values;
  for (const BaseElemLoads* load = FirstLoad(problem, elem); load; load = load->Next())
    values.push_back(static_cast<const PreassureLT*>(load)->values[0]);
  return values;
}

void ExpectRefused(const std::string& rest, const std::string& message)
{
  SCOPED_TRACE(rest);
  ExpectFatal([&] { ReadWith(rest); }, message);
}

// Runs the program; it must end with exactly this message, perhaps with a hint.
void ExpectRunRefused(const std::string& problem, const std::string& message)
{
  SCOPED_TRACE(problem);
  const RunResult run = RunOnProblem(problem);
  HintAfter(message, run);
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.out, "");
}

using Doubles = std::vector<double>;

}  // namespace

TEST(ElemLoads, DescribeTheirRecords)
{
  static const struct
  {
    const char* keyword;
    const char* record;
    std::array<double, 6> values;
  } cases[] = {
      {"global_pressure_loads", "1 3 4", {3, 4}},
      {"global_projected_pressure_loads", "1 3 4", {3, 4}},
      {"local_pressure_loads", "1 3 4", {3, 4}},
      {"face_loads", "1 3 4", {3, 4}},
      {"temperature_loads", "1 1e-5 20", {1e-5, 20}},
  };
  for (const auto& c : cases) {
    const std::string name = c.keyword;
    const auto problem = ReadWith(name + "\n" + c.record + "\nend " + name + "\n");
    const ElemLoadRecord record = FirstLoad(*problem, 1)->Describe();
    EXPECT_EQ(record.keyword, name);
    EXPECT_EQ(record.values, c.values) << name;
    EXPECT_EQ(record.face, -1) << name;
  }
}

TEST(ReadElemLoad, KnowsFiveBlocks)
{
  static const struct
  {
    const char* keyword;
    PreassureLT_type type;
  } blocks[] = {{"global_pressure_loads", PreassureLT_type::Global},
                {"global_projected_pressure_loads", PreassureLT_type::GlobalProjected},
                {"local_pressure_loads", PreassureLT_type::Local},
                {"LOCAL_Pressure_loads", PreassureLT_type::Local},
                {"face_loads", PreassureLT_type::Face}};
  for (const auto& block : blocks) {
    const auto problem = ReadWith(Block(block.keyword, "5 1 2"));
    EXPECT_EQ(static_cast<const PreassureLT*>(FirstLoad(*problem, 5))->type, block.type);
    EXPECT_EQ(ChainOf(*problem, 5), (Doubles{1}));
    EXPECT_EQ(FirstLoad(*problem, 1), nullptr);
  }
  const auto problem = ReadWith(Block("Temperature_Loads", "5 1e-5 20"));
  const auto* load = static_cast<const TemperatureLT*>(FirstLoad(*problem, 5));
  EXPECT_EQ(load->values[0] * load->values[1], 2e-4);
}

TEST(ReadElemLoad, ReadsNothingAfterOtherWords)
{
  const auto problem = ReadWith("");
  TextScan text("1 2 3\nend\n");
  for (const char* word : {"loads", "local_pressure_load", "local_pressure_loads:", ""}) {
    EXPECT_FALSE(ReadElemLoad(text, word, *problem));
    EXPECT_EQ(text.Where().column, 1);
  }
  ExpectRefused("local_pressure_loads= 1 2 3\nend\n", "Unknown key name=local_pressure_loads=\n");
  TextScan block("5 1 2\nend\nrest");
  EXPECT_TRUE(ReadElemLoad(block, "face_loads", *problem));
  EXPECT_EQ(block.ReadWord(), "rest");
}

TEST(ReadElemLoad, LoadsOnOneElementFormAChain)
{
  const auto problem =
      ReadWith(Block("local_pressure_loads", "5 1 0\n1 2 0\n5 3 0") +
               Block("global_pressure_loads", "9 4 0\n5 5 0") + Block("face_loads", "5 6 0"));
  EXPECT_EQ(ChainOf(*problem, 5), (Doubles{1, 3, 5, 6}));
  EXPECT_EQ(ChainOf(*problem, 1), (Doubles{2}));
  EXPECT_EQ(ChainOf(*problem, 9), (Doubles{4}));
}

TEST(ReadElemLoad, EveryLoadOfAChainActs)
{
  ProblemParts parts = ChainWith(Block("local_pressure_loads", "5 0 -1\n5 0 -2") +
                                 Block("global_pressure_loads", "5 3 -4") +
                                 Block("temperature_loads", "5 1e-3 100"));
  const Solved solved(parts.Text());
  ExpectValues(solved.Reaction(1), {-3, 7, 7 * 1.5}, 1e-12);
  ExpectLoadedEquilibrium(solved, {{.elem = 5, .force = {3, -7, 0}}});
}

TEST(ReadElemLoad, CommentsAreSkipped)
{
  const auto problem = ReadWith(
      "local_pressure_loads # 1 9 9\n5 1 0 # units none\n# 1 2 0\n\t# 1 2 0\n#\n1 3 0\n\tend\n"
      "temperature_loads # all\n# none\n9 1e-5 20 # K\nend # 1\n");
  EXPECT_EQ(ChainOf(*problem, 5), (Doubles{1}));
  EXPECT_EQ(ChainOf(*problem, 1), (Doubles{3}));
  EXPECT_NE(FirstLoad(*problem, 9), nullptr);
}

TEST(ReadElemLoad, ABlockEndsAtTheFirstWordThatIsNoNumber)
{
  const auto problem = ReadWith(
      "local_pressure_loads\n5 1 0\n! 1 2 0\n1 3 0\nend of loads 9 9 9\n"
      "face_loads\nnothing 1 4 0\nend\n"
      "face_loads end\nNumOfDivisions 3\n");
  EXPECT_EQ(ChainOf(*problem, 5), (Doubles{1}));
  EXPECT_EQ(FirstLoad(*problem, 1), nullptr);
  EXPECT_EQ(problem->numOfDivisions, 3);
  ExpectRefused("face_loads\n5 1 0\n", "can't find word ***end*** in input file\n");
}

TEST(ReadElemLoad, UnknownElementsAreRefused)
{
  for (const char* number : {"2", "10", "0", "-1", "2000000000"}) {
    const std::string message = std::string("error: trying to assign load to element number ") +
                                number + " and it does not exist\n";
    ExpectRefused(Block("local_pressure_loads", std::string(number) + " 1 2"), message);
    ExpectRefused(Block("temperature_loads", std::string(number) + " 1 2"), message);
  }
}

TEST(ReadElemLoad, EveryMessageReachesTheUser)
{
  ExpectRunRefused(ChainWith(Block("face_loads", "77 1 2")).Text(),
                   "error: trying to assign load to element number 77 and it does not exist\n");
  ExpectRunRefused(ChainWith(Block("local_pressure_loads", "5 1")).Text(),
                   "Not reading correctly preassure_loads. ElemNum=5\n");
  ExpectRunRefused(ChainWith(Block("local_pressure_loads", "5 1 2 units")).Text(),
                   "Not reading correctly the preassure_loads. ElemNum=5\n");
  ExpectRunRefused(ChainWith(Block("local_pressure_loads", "5 1 2 Euler7=1")).Text(),
                   "error: Euler angles must be: Euler1,Euler2 or Euler3\n");
  ExpectRunRefused(ChainWith(Block("temperature_loads", "5 1")).Text(),
                   "Not reading correctly temperature_loads. ElemNum=5\n");
  ExpectRunRefused(
      SpaceProblem().With(&ProblemParts::rest, Block("face_loads", "1 1 0 0 -5")).Text(),
      "error: applying a shell load to a beam element. ElemNum=1\n");
  ExpectRunRefused(ProblemParts().With(&ProblemParts::materials, "1 E 1 A 1 Iz 1 Weight 1").Text(),
                   "error: for 2D problems GravityDirection_Z must be 0.0\n");
  ExpectRunRefused(
      "problem type 3d\nmesh dimension 3 elemtype Quadrilateral nnode 4 coordinates\n"
      "1 0 0 0\n2 1 0 0\n3 1 1 0\n4 0 1 0\nend\nelements\n5 1 2 3 4 1\nend\n" +
          Block("local_pressure_loads", "5 1 2 3"),
      "error: Unknown elem type in PreassureLT::ReadYourLoad\n");
}

TEST(ReadElemLoad, TemperatureOnATriangleIsReadAndRefusedByTheLoadVector)
{
  const std::string problem =
      "problem type 3d\nmesh dimension 3 elemtype Triangle nnode 3 coordinates\n"
      "1 0 0 0\n2 1 0 0\n3 0 1 0\nend\nelements\n5 1 2 3 1\nend\n"
      "materials\n1 E 100 nu 0.25 G 40 Gxz 40 Gyz 40 t 0.1\nend\n"
      "constraints\n1 111111 0 0 0 0 0 0\nend\n" +
      Block("temperature_loads", "5 1e-5 20");
  EXPECT_NE(FirstLoad(*ReadProblemText(problem), 5), nullptr);
  ExpectRunRefused(problem, "temperature for triangles not implemented yet\n");
}

TEST(ReadElemLoad, ReadsLoadsOfShellsAndSolids)
{
  const auto shell = ReadProblemText(
      "problem type 3d\nmesh dimension 3 elemtype Triangle nnode 3 coordinates\n"
      "1 0 0 0\n2 1 0 0\n3 0 1 0\nend\nelements\n5 1 2 3 1\nend\n" +
      Block("face_loads", "5 2 1 0 0\n5 7 0 0"));
  EXPECT_EQ(ChainOf(*shell, 5), (Doubles{1, 7}));
  EXPECT_EQ(static_cast<const PreassureLT*>(FirstLoad(*shell, 5))->face, 2);
  const auto solid = ReadProblemText(
      "problem type 3d\nmesh dimension 3 elemtype Tetrahedra nnode 4 coordinates\n"
      "1 0 0 0\n2 1 0 0\n3 0 1 0\n4 0 0 1\nend\nelements\n5 1 2 3 4 1\nend\n" +
      Block("global_pressure_loads", "5 -1 7 0 0"));
  EXPECT_EQ(ChainOf(*solid, 5), (Doubles{7}));
}

TEST(ReadElemLoad, AHundredThousandLoadsOnOneElementAct)
{
  std::string records;
  for (int i = 0; i < 100000; ++i)
    records += "5 0 -0.001\n";
  const Solved solved(ChainWith(Block("local_pressure_loads", records)).Text());
  ExpectValues(solved.Reaction(1), {0, 100, 150}, 1e-9);
}

TEST(ReadElemLoad, AcceptsLoadsOnTheLargestElementNumber)
{
  const auto parts = ProblemParts()
                         .With(&ProblemParts::elements, "2147483647 1 2 1")
                         .With(&ProblemParts::rest, Block("face_loads", "2147483647 0 -2"));
  ExpectValues(Solved(parts.Text()).Reaction(1), {0, 2, 1}, 1e-12);
}

}  // namespace morlen
