// The blocks of supports and nodal loads.

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "model/constraint.h"
#include "model/nodal_load.h"
#include "model/node.h"
#include "support/fatal.h"
#include "support/frame.h"
#include "support/solved.h"

namespace morlen {

namespace {

// The system kN_mm has the force unit 1000 and the length unit 0.001.
const char* const kUnits =
    "units_names\nSI N m Pa 1 1\nkN_mm kN mm GPa 1000 0.001\nend units_names\n";

template <std::size_t Size>
std::vector<double> First(const std::array<double, Size>& values, int n)
{
  return {values.begin(), values.begin() + n};
}

// The support of node 1 after these records.
struct ReadSupport
{
  ReadSupport(const ProblemParts& parts, const std::string& records)
      : problem(ReadProblemText(parts.With(&ProblemParts::constraints, records).Text())),
        support(*problem->FindNode(1)->constraint)
  {
  }

  std::vector<int> Flags() const
  {
    return {support.flags.begin(), support.flags.begin() + problem->components.count};
  }

  std::unique_ptr<Problem> problem;
  const Constraint& support;
};

std::vector<double> ReadLoad(const ProblemParts& parts, const std::string& records)
{
  const auto problem = ReadProblemText(parts.With(&ProblemParts::loads, records).Text());
  const Node& node = *problem->FindNode(1);
  EXPECT_TRUE(node.load);
  return First(node.load->values, problem->components.count);
}

void ExpectRefused(const ProblemParts& parts, std::string ProblemParts::*block,
                   const std::string& records, const std::string& message)
{
  SCOPED_TRACE(records);
  ExpectFatal([&] { ReadProblemText(parts.With(block, records).Text()); }, message);
}

using Doubles = std::vector<double>;
using Ints = std::vector<int>;

}  // namespace

TEST(ConstraintRecords, FixTheComponentsOfTheirNodeOnly)
{
  const auto problem = ReadProblemText(ProblemParts()
                                           .With(&ProblemParts::coordinates,
                                                 "1 0 0\n2 1 0\n3 2 0\n4 3 0\n5 4 0\n6 5 0\n7 6 0\n"
                                                 "8 7 0\n9 8 0\n10 9 0\n11 10 0\n12 11 0")
                                           .With(&ProblemParts::constraints, "12 111 0 0 0")
                                           .Text());
  const Constraint& support = *problem->FindNode(12)->constraint;
  EXPECT_EQ(Ints(support.flags.begin(), support.flags.begin() + 3), (Ints{1, 1, 1}));
  EXPECT_EQ(First(support.values, 3), (Doubles{0, 0, 0}));
  EXPECT_FALSE(support.localAxes);
  EXPECT_FALSE(problem->FindNode(1)->constraint);
}

TEST(ConstraintRecords, GiveFlagsAndValues)
{
  const ReadSupport plane(ProblemParts(), "1 120 0.5 7 9");
  EXPECT_EQ(plane.Flags(), (Ints{1, 2, 0}));
  EXPECT_EQ(First(plane.support.values, 3), (Doubles{0.5, 7, 0}));  // 0 where free

  const ReadSupport space(SpaceProblem(), "1 102012 1 2 3 4 5 6");
  EXPECT_EQ(space.Flags(), (Ints{1, 0, 2, 0, 1, 2}));
  EXPECT_EQ(First(space.support.values, 6), (Doubles{1, 0, 3, 0, 5, 6}));
}

TEST(ConstraintRecords, AcceptBlanksAndComments)
{
  for (const char* records :
       {"1 110 0.5 7 9", " : = 1 1 1 0 0.5 7 9", "# comment\n\n1 110 .5 +7 9\r",
        "1\t110\t0.5\t7\t9", "1 110 5e-1 7.0 9 # ignored"})
    EXPECT_EQ(First(ReadSupport(ProblemParts(), records).support.values, 3), (Doubles{0.5, 7, 0}))
        << records;
}

TEST(ConstraintRecords, EndTheirItemsAtAComment)
{
  for (const char* comment : {"# left foot", "# clamped", "#units none", "\t#", "# units=kN_mm",
                              "other=1 # x", "\t \r", "\v\f"}) {
    const std::string records = std::string("1 110 0.5 7 9 ") + comment;
    EXPECT_EQ(First(ReadSupport(ProblemParts(), records).support.values, 3), (Doubles{0.5, 7, 0}))
        << comment;
    EXPECT_EQ(ReadLoad(ProblemParts(), std::string("1 1 2 3 ") + comment), (Doubles{1, 2, 3}))
        << comment;
  }
  ExpectRefused(ProblemParts(), &ProblemParts::constraints, "1 111 0 0 0 units= # x",
                "error: Unit name '#' has not been previously defined\n");
}

TEST(ConstraintRecords, TabsAreBlanks)
{
  const ProblemParts parts = ProblemParts().With(&ProblemParts::settings, kUnits);
  for (const char* item : {"\tunits=kN_mm\t", "\tunits\tkN_mm", "\tunits\t=\tkN_mm other=1"}) {
    const std::string tail = item;
    ExpectValues(First(ReadSupport(parts, "\t# two\n\t1\t111\t1\t2\t3" + tail).support.values, 3),
                 {1e-3, 2e-3, 3}, 1e-15);
    ExpectValues(ReadLoad(parts, "\t1\t1\t2\t3" + tail + "\n\t# two"), {1000, 2000, 3}, 1e-15);
  }
}

TEST(ConstraintRecords, LaterRecordChangesOnlyTheComponentsItFlags)
{
  const ReadSupport read(ProblemParts(), "1 120 1 2 3\n1 011 0 5 6 Euler1 0\n1 000 7 8 9");
  EXPECT_EQ(read.Flags(), (Ints{1, 1, 1}));
  EXPECT_EQ(First(read.support.values, 3), (Doubles{1, 5, 6}));
  EXPECT_TRUE(read.support.localAxes);
}

TEST(ConstraintRecords, UnitsConvertByComponentAndFlag)
{
  const ProblemParts plane = ProblemParts().With(&ProblemParts::settings, kUnits);
  const ProblemParts space = SpaceProblem().With(&ProblemParts::settings, kUnits);
  // Prescribed displacements are lengths. Prescribed rotations have no unit.
  EXPECT_EQ(First(ReadSupport(plane, "1 010 0 0.003 0 units=kN_mm").support.values, 3),
            (Doubles{0, 0.003 * 0.001, 0}));
  EXPECT_EQ(First(ReadSupport(plane, "1 111 1 2 3 Units: kN_mm").support.values, 3),
            (Doubles{0.001, 2 * 0.001, 3}));
  // The stiffness of a spring is force/length for translations, and a moment for rotations.
  ExpectValues(First(ReadSupport(plane, "1 222 1 2 3 units kN_mm").support.values, 3),
               {1e6, 2e6, 3}, 1e-15);
  ExpectValues(First(ReadSupport(space, "1 222222 1 2 3 4 5 6 UNITSYSTEM=kN_mm").support.values, 6),
               {1e6, 2e6, 3e6, 4, 5, 6}, 1e-15);
  ExpectValues(First(ReadSupport(space, "1 111111 1 2 3 4 5 6 units=kN_mm").support.values, 6),
               {1e-3, 2e-3, 3e-3, 4, 5, 6}, 1e-15);
}

TEST(ConstraintRecords, UnitsDefaultToThoseOfMaterialsAndLoads)
{
  const ProblemParts plane = ProblemParts().With(
      &ProblemParts::settings, std::string(kUnits) + "units_mat_and_load kN_mm\n");
  ExpectValues(First(ReadSupport(plane, "1 122 1 2 3").support.values, 3), {1e-3, 2e6, 3}, 1e-15);
  // The units of one record do not apply to the next one.
  ExpectValues(First(ReadSupport(plane, "2 100 1 0 0 units=SI\n1 122 1 2 3").support.values, 3),
               {1e-3, 2e6, 3}, 1e-15);
  const ProblemParts results =
      ProblemParts().With(&ProblemParts::settings, std::string(kUnits) + "units_res kN_mm\n");
  ExpectValues(First(ReadSupport(results, "1 122 1 2 3").support.values, 3), {1e3, 2e-6, 3}, 1e-15);
}

TEST(ConstraintRecords, EulerItemsGiveAxes)
{
  const ReadSupport read(SpaceProblem(), "1 111111 0 0 0 0 0 0 other=9 EULER3: 0.3 euler1 0.1");
  EXPECT_TRUE(read.support.localAxes);
  EXPECT_EQ(read.support.euler, (std::array<double, 3>{0.1, 0, 0.3}));
  const ReadSupport again(SpaceProblem(),
                          "1 111111 0 0 0 0 0 0 Euler1=1\n1 100000 0 0 0 0 0 0 Euler2=2");
  EXPECT_EQ(again.support.euler, (std::array<double, 3>{0, 2, 0}));
}

TEST(ConstraintRecords, UnknownNodesAreRefused)
{
  for (const char* records : {"3 111 0 0 0", "0 111 0 0 0", "-1 111 0 0 0", "2000000000 111 0 0 0"})
    ExpectRefused(ProblemParts(), &ProblemParts::constraints, records,
                  "error: Trying to assign constrain to unknown node\n");
}

TEST(ConstraintRecords, MisreadFlagsAndValuesAreRefused)
{
  for (const char* record :
       {"1 2 0 0", "1 111 0 0", "1", "1 11 0 0 0", "1 111 0 x 0", "1 113 0 0 0", "1 911 0 0 0",
        "1 1-1 0 0 0", "1 111 0 0 nan", "1 111 0 0 1e999", "1 x11 0 0 0"})
    ExpectRefused(ProblemParts(), &ProblemParts::constraints, record,
                  "Not reading correctly the constraints. Number=1\n");
  for (const char* record : {"1 111111 0 0 0 0 0", "1 111 0 0 0", "1 111117 0 0 0 0 0 0", "1"})
    ExpectRefused(SpaceProblem(), &ProblemParts::constraints, record,
                  "Not reading correctly the constraints. -A- Number=1\n");
}

TEST(ConstraintRecords, ItemsAreChecked)
{
  const char* const noValue = "Not reading correctly the constraints. -B- Number=1\n";
  const char* const euler = "error: Euler angles must be: Euler1,Euler2 or Euler3\n";
  const std::string longName(21, 'u');
  const struct
  {
    std::string items;
    std::string message;
  } cases[] = {
      {"units", noValue},
      {"Euler1=", noValue},
      {"other", noValue},
      {"Euler4=1", euler},
      {"Euler=1", euler},
      {"euler0 1", euler},
      {"units=none", "error: Unit name 'none' has not been previously defined\n"},
      {"units=" + longName, "error: Unit name '" + longName + "' is too long\n"},
  };
  for (const auto& c : cases) {
    ExpectRefused(ProblemParts(), &ProblemParts::constraints, "1 111 0 0 0 " + c.items, c.message);
    ExpectRefused(SpaceProblem(), &ProblemParts::constraints, "1 111111 0 0 0 0 0 0 " + c.items,
                  c.message);
  }
}

TEST(ConstraintRecords, BlockEndsAtAWordWithEnd)
{
  EXPECT_EQ(ReadSupport(ProblemParts(), "1 111 0 0 0\nsome other words before the").Flags(),
            (Ints{1, 1, 1}));
  ExpectFatal(
      [] {
        ReadProblemText(
            "problem type 2d\nmesh dimension 2 elemtype Linear nnode 2 coordinates\n"
            "1 0 0\n2 1 0\nend\nelements\n1 1 2 1\nend\n"
            "constraints\n1 111 0 0 0\n");
      },
      "can't find word ***end*** in input file\n");
}

TEST(LoadRecords, OnOneNodeAddUp)
{
  EXPECT_EQ(ReadLoad(ProblemParts(), "1 1 2 3"), (Doubles{1, 2, 3}));
  EXPECT_EQ(ReadLoad(ProblemParts(), "# comment\n= 1 1 2 3 other=9\n2 5 5 5\n:1 10 20 30"),
            (Doubles{11, 22, 33}));
  EXPECT_EQ(ReadLoad(SpaceProblem(), "1 1 2 3 4 5 6 Euler1=9"), (Doubles{1, 2, 3, 4, 5, 6}));
}

TEST(LoadRecords, UnitsConvertForcesAndMoments)
{
  const ProblemParts plane = ProblemParts().With(&ProblemParts::settings, kUnits);
  const ProblemParts space = SpaceProblem().With(&ProblemParts::settings, kUnits);
  ExpectValues(ReadLoad(plane, "1 1 2 3 units=kN_mm"), {1000, 2000, 3}, 1e-15);
  ExpectValues(ReadLoad(plane, "1 1 2 3 units=kN_mm\n1 1 1 1"), {1001, 2001, 4}, 1e-15);
  ExpectValues(ReadLoad(space, "1 1 2 3 4 5 6 units=kN_mm"), {1000, 2000, 3000, 4, 5, 6}, 1e-15);
  const ProblemParts defaults = ProblemParts().With(
      &ProblemParts::settings, std::string(kUnits) + "units_mat_and_load kN_mm\n");
  ExpectValues(ReadLoad(defaults, "1 1 2 3"), {1000, 2000, 3}, 1e-15);
  const ProblemParts results =
      ProblemParts().With(&ProblemParts::settings, std::string(kUnits) + "units_res kN_mm\n");
  ExpectValues(ReadLoad(results, "1 1 2 3"), {0.001, 0.002, 3}, 1e-15);
}

TEST(LoadRecords, UnknownNodesAreRefused)
{
  for (const char* records : {"0 1 2 3", "3 1 2 3", "-7 1 2 3", "2000000000 1 2 3"})
    ExpectRefused(ProblemParts(), &ProblemParts::loads, records,
                  "error: Trying to assign Load to unknown node\n");
}

TEST(LoadRecords, AreChecked)
{
  static const struct
  {
    const char* record;
    const char* plane;
    const char* space;
  } cases[] = {
      {"1", "Not reading correctly the loads A. Number=1\n",
       "Not reading correctly the loads A. Number=1\n"},
      {"1 1 2", "Not reading correctly the loads B. Number=1\n",
       "Not reading correctly the loads C. Number=1\n"},
      {"1 1 2 x 4 5 6", "Not reading correctly the loads B. Number=1\n",
       "Not reading correctly the loads C. Number=1\n"},
      {"1 1 2 inf 4 5 6", "Not reading correctly the loads B. Number=1\n",
       "Not reading correctly the loads C. Number=1\n"},
  };
  for (const auto& c : cases) {
    ExpectRefused(ProblemParts(), &ProblemParts::loads, c.record, c.plane);
    ExpectRefused(SpaceProblem(), &ProblemParts::loads, c.record, c.space);
  }
}

TEST(LoadRecords, ItemsAreChecked)
{
  const std::string longName(21, 'u');
  const struct
  {
    std::string items;
    std::string message;
  } cases[] = {
      {" units", "Not reading correctly the loads. -D- Number=1\n"},
      {" other=", "Not reading correctly the loads. -D- Number=1\n"},
      {" units=none", "error: Unit name 'none' has not been previously defined\n"},
      {" units=" + longName, "error: Unit name '" + longName + "' is too long\n"},
  };
  for (const auto& c : cases) {
    ExpectRefused(ProblemParts(), &ProblemParts::loads, "1 0 0 0" + c.items, c.message);
    ExpectRefused(SpaceProblem(), &ProblemParts::loads, "1 0 0 0 0 0 0" + c.items, c.message);
  }
}

TEST(LoadRecords, BlockMustEnd)
{
  ExpectFatal(
      [] { ReadProblemText(ProblemParts().Text() + "nodal_point_loads\n1 0 0 0\nstop it\n"); },
      "can't find word ***end*** in input file\n");
}

}  // namespace morlen
