#include "assembly/model_checks.h"

#include <gtest/gtest.h>

#include <string>

#include "base/textscan.h"
#include "problem/problem.h"
#include "problem/problem_reader.h"
#include "run/element_families.h"
#include "support/fatal.h"
#include "support/frame.h"

namespace morlen {

namespace {

// The message that refuses the references of a problem.
std::string Refusal(const std::string& problem)
{
  Problem read(100);
  TextScan text(problem);
  ReadProblem(text, read);
  return FatalCaught([&] { CheckReferences(read.meshes, read.materials, FamiliesOf(read)); });
}

std::string RefusalOf(const std::string& elements, const std::string& materials = "")
{
  ProblemParts parts = ProblemParts().With(&ProblemParts::elements, elements);
  if (!materials.empty())
    parts.materials = materials;
  return Refusal(parts.Text());
}

const char* const kNone = "(the run went on)";

}  // namespace

TEST(References, CompleteProblemsPass)
{
  EXPECT_EQ(Refusal(ProblemParts().Text()), kNone);
  EXPECT_EQ(Refusal(SpaceProblem().Text()), kNone);
}

TEST(References, UnknownNodesAreRefused)
{
  for (const char* element : {"1 1 3 1", "1 0 2 1", "1 1 -2 1", "1 99999999 1 1"})
    EXPECT_EQ(RefusalOf(element), "error: element 1 has an unknown node\n");
}

TEST(References, UnknownMaterialsAreRefused)
{
  for (const char* element : {"7 1 2 2", "7 1 2 0", "7 1 2", "7 1 2 -1", "7 1 2 2000000000"})
    EXPECT_EQ(RefusalOf(element), "error: Material in element: 7 doesn't exist\n");
  EXPECT_EQ(RefusalOf("1 1 2 1\n7 1 2 2", "1 E 1 A 1 Iz 1\n3 E 1 A 1 Iz 1"),
            "error: Material in element: 7 doesn't exist\n");
}

TEST(References, AnElementWithItsOwnValuesNeedsNoMaterialNumber)
{
  EXPECT_EQ(RefusalOf("7 1 2 2 E 1 A 1 Iz 1"), kNone);
}

TEST(References, UnusedNumbersAreNotLookedFor)
{
  EXPECT_EQ(RefusalOf("7 1 2 1", "1 E 1 A 1 Iz 1\n2147483647 E 1"), kNone);
}

// The kind of these elements ends the run later.
TEST(References, ElementsThatAreNotAnalysedNeedNoMaterial)
{
  EXPECT_EQ(Refusal("problem type 3d\nmesh dimension 3 elemtype Quadrilateral nnode 4 coordinates\n"
                    "1 0 0 0\n2 1 0 0\n3 1 1 0\n4 0 1 0\nend\nelements\n1 1 2 3 4 1\nend\n"),
            kNone);
}

TEST(References, AreSeenInEveryMesh)
{
  const std::string second =
      "mesh dimension 3 elemtype Linear nnode 2 coordinates\nend\nelements\n9 1 5 1\nend\n";
  EXPECT_EQ(Refusal(SpaceProblem().Text() + second), "error: element 9 has an unknown node\n");
}

}  // namespace morlen
