#include "problem/problem_file.h"

#include <gtest/gtest.h>

#include "support/run.h"

namespace morlen {

TEST(BeginningOfAProblemFile, BeginsWithProblemAndType)
{
  for (const char* text :
       {"problem type 3d", "problem type: 2d\n", "Problem Type = 2d", "PROBLEM TYPE",
        "problem=type=3d", "problem: type:3d", "problem\ttype=2d", "problem\r\ntype 2d\r\n",
        "problem = bridge type = 3d", "problem=bridge type=3d", "\n\n  problem type",
        "# a bridge\nproblem type", "# problem\n#\n\t# of type\nproblem # the\ntype",
        "#\rproblem type", "\xef\xbb\xbfproblem type", "\xef\xbb\xbf# bridge\nproblem type 3d"})
    EXPECT_TRUE(BeginsLikeProblem(text)) << text;
}

TEST(BeginningOfAProblemFile, OtherTextsAreNone)
{
  for (const char* text :
       {"", "\n", "problem", "problem ", "problem 2d type", "type problem", "the problem type",
        "problem# type", "# problem type 3d", "problems type", "problem types", "problemtype 3d",
        "problem: bridge over type", "=problem type", "\n\nNODAL DISPLACEMENTS (x y theta)\n",
        "GaussPoints \"Beams\" ElemType Linear\n", "Solver SkyLine taken: 6 equations",
        "can't find word ***problem*** in input file", "\xff\xfe problem type"})
    EXPECT_FALSE(BeginsLikeProblem(text)) << text;
}

TEST(BeginningOfAProblemFile, IsFoundAfterALongComment)
{
  const TemporaryFolder folder;
  const std::string comment = "# " + std::string(100000, '-') + "\n";
  folder.Write("a.dat", comment + comment + "problem " + comment + "type 3d\n");
  EXPECT_TRUE(IsProblemFile((folder.Path() / "a.dat").string()));
  folder.Link("link", "a.dat");
  EXPECT_TRUE(IsProblemFile((folder.Path() / "link").string()));
  folder.Write("b.dat", comment);
  EXPECT_FALSE(IsProblemFile((folder.Path() / "b.dat").string()));
}

TEST(BeginningOfAProblemFile, MissingFilesFoldersAndDevicesAreNone)
{
  const TemporaryFolder folder;
  EXPECT_FALSE(IsProblemFile((folder.Path() / "none").string()));
  EXPECT_FALSE(IsProblemFile(folder.Path().string()));
  EXPECT_FALSE(IsProblemFile("/dev/zero"));
  EXPECT_FALSE(IsProblemFile(""));
}

}  // namespace morlen
