// The blocks of loads of a load case, read into a problem.

#include "problem/load_blocks.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "base/errorwriter.h"
#include "base/textscan.h"
#include "model/constraint.h"
#include "model/nodal_load.h"
#include "model/node.h"
#include "problem/load_set.h"
#include "problem/problem.h"
#include "support/fatal.h"
#include "support/solved.h"

namespace morlen {

namespace {

std::unique_ptr<Problem> Frame()
{
  return ReadProblemText(
      "problem type: 3d\nunits_names\nmm N mm MPa 1 0.001\nend units_names\n"
      "mesh dimension = 3 elemtype Linear nnode = 2\n"
      "coordinates\n1 0 0 0\n2 1 0 0\nend coordinates\nelements\n1 1 2 1\nend elements\n"
      "materials\n1 E=1 nu=0 A=1 Iy=1 Iz=1 J=1\nend materials\n"
      "constraints\n1 111211 0 0 0 9 0 0 Euler1=0.5\nend constraints\n");
}

void Read(const std::string& text, Problem& problem)
{
  TextScan scan(text);
  ReadLoadBlocks(scan, problem);
}

}  // namespace

TEST(LoadBlocks, ASettlementSetsPrescribedValuesOnly)
{
  const auto problem = Frame();
  Read(
      "# footing 1\nconstraints\n1 001000 0 0 -10 0 0 0\n1 100000 2 0 0 0 0 0\n"
      "1 001000 0 0 -20 0 0 0 units=mm\nend constraints\n",
      *problem);
  const Constraint& support = *problem->FindNode(1)->constraint;
  EXPECT_EQ(support.values[0], 2.0);
  EXPECT_EQ(support.values[1], 0.0);
  EXPECT_EQ(support.values[2], -0.02);  // the later record
  EXPECT_EQ(support.values[3], 9.0);    // a spring
  EXPECT_EQ(support.flags[3], Constraint::kSpring);
  EXPECT_TRUE(support.localAxes);
}

TEST(LoadBlocks, LoadsAddUp)
{
  const auto problem = Frame();
  Read("nodal_point_loads\n2 1 0 0 0 0 0\n2 2 3 0 0 0 0\nend nodal_point_loads\n", *problem);
  Read("nodal_point_loads\n2 4 0 0 0 0 0\nend nodal_point_loads\n", *problem);
  EXPECT_EQ(problem->FindNode(2)->load->values[0], 7.0);
  EXPECT_EQ(problem->FindNode(2)->load->values[1], 3.0);
}

TEST(LoadBlocks, RefusesAllElse)
{
  const struct
  {
    const char* text;
    const char* message;
    const char* hint;
  } cases[] = {
      {"constraints\n1 000100 0 0 0 1 0 0\nend constraints\n",
       "error: the model does not prescribe the rotation about x of node 1\n",
       "a load case sets values of components that have flag 1 in the model"},
      {"constraints\n2 010000 0 0 0 1 0 0\nend constraints\n",
       "error: the model does not prescribe y of node 2\n",
       "a load case sets values of components that have flag 1 in the model"},
      {"constraints\n1 200000 5 0 0 0 0 0\nend constraints\n",
       "error: node 1 can't get a spring in a load case\n",
       "flag 1 sets a prescribed value, 0 leaves the component as it is"},
      {"constraints\n1 100000 5 0 0 0 0 0 Euler1=0.1\nend constraints\n",
       "error: the support of node 1 can't get other axes in a load case\n",
       "the values are in the axes that the support has in the model"},
      {"\nmaterials\n1 E=2\nend materials\n", "error: 'materials' is no load\n",
       "line 2: a load case has blocks of loads and 'constraints'; 'materials' belongs in the "
       "problem file"},
      {"nodal_point_loads\n7 1 0 0 0 0 0\nend\n", "error: Trying to assign Load to unknown node\n",
       ""},
  };
  for (const auto& c : cases) {
    const auto problem = Frame();
    ExpectFatal([&] { Read(c.text, *problem); }, c.message);
    EXPECT_TRUE(!*c.hint || errorwriter.Hint() == c.hint) << errorwriter.Hint();
  }
  const auto problem = Frame();
  ExpectFatal([&] { Read("nodal_point_load\n1 1 0 0 0 0 0\nend\n", *problem); },
              "Unknown key name=nodal_point_load\n");
  EXPECT_NE(errorwriter.Hint().find("nodal_point_loads"), std::string_view::npos);
}

}  // namespace morlen
