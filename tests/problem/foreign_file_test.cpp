#include "problem/foreign_file.h"

#include <gtest/gtest.h>

#include <string>

#include "support/fatal.h"
#include "support/hints.h"
#include "support/run.h"
#include "support/solved.h"

namespace morlen {

TEST(ForeignFile, IsNamed)
{
  using namespace std::string_literals;
  static const struct
  {
    std::string text;
    const char* judgement;
  } cases[] = {
      {"", "the file is empty"},
      {" \n\t\n", "the file is empty"},
      {"*HEADING\nBeam\n*NODE\n1, 0, 0\n",
       "the file begins with '*HEADING': it is written for another program"},
      {"** a comment\n**\n*node, nset=all\n1, 0., 0.\n",
       "the file begins with '*node,': it is written for another program"},
      {"<?xml version=\"1.0\"?>",
       "the file begins with '<?xml': it is written for another program"},
      {"$Format\n2.2 0 8\n", "the file begins with '$Format': it is written for another program"},
      {"\x7f"
       "ELF\2\1\1\0\0\0\0\0\0\0\0\0\3\0"s,
       "the file is binary: a problem file is plain text"},
      {"\xff\xfep\0r\0"s,
       "the text has two bytes a character (UTF-16): save it as plain text (UTF-8)"},
      {"# a frame\nmesh\n", ""},
      {"* \n", ""},
      {"1 2 3\n", ""},
  };
  for (const auto& c : cases)
    EXPECT_EQ(JudgeForeignFile(c.text), c.judgement) << c.text;
}

TEST(ForeignFile, IsNamedAfterTheMessageOfTheHeader)
{
  const auto read = [](const std::string& text) { return [text] { ReadProblemText(text); }; };
  const std::string other = "the file begins with '*HEADING': it is written for another program";
  EXPECT_EQ(HintCaught(read("*HEADING\nBeam\n")), other);
  EXPECT_EQ(HintCaught(read("*HEADING\nproblem 7\n*ELEMENT, TYPE=B1\n1, 1, 2\n")), other);
  ExpectFatal(read("*HEADING\nBeam\n"), "can't find word ***problem*** in input file\n");
  EXPECT_EQ(HintCaught(read("beam\n")),
            "a problem file begins with 'problem type: 2d' or 'problem type: 3d'");
}

TEST(ForeignFile, AFolderIsRefused)
{
  const TemporaryFolder folder;
  folder.Write("model.dat", "problem");
  const std::string name = folder.Path().string();
  ExpectFatal([&] { RefuseFolder(name); }, "error: " + name + " is a folder\n");
  RefuseFolder(name + "/model.dat");
  RefuseFolder(name + "/none");
}

}  // namespace morlen
