// The keyword that chooses the formulation of shells.

#include <gtest/gtest.h>

#include <string>

#include "base/errorwriter.h"
#include "problem/settings.h"
#include "support/fatal.h"
#include "support/frame.h"
#include "support/run.h"
#include "support/solved.h"

namespace morlen {

namespace {

std::string With(const std::string& settings)
{
  return ProblemParts().With(&ProblemParts::settings, settings).Text();
}

ShellFormulation FormulationOf(const std::string& settings)
{
  return ReadProblemText(With(settings))->shellFormulation;
}

}  // namespace

TEST(ShellFormulationKeyword, StandardIsTheDefault)
{
  EXPECT_EQ(FormulationOf(""), ShellFormulation::Standard);
}

TEST(ShellFormulationKeyword, NamesAFormulationInAnyCase)
{
  for (const char* settings :
       {"ShellFormulation Refined", "shellformulation=refined", "SHELLFORMULATION: REFINED",
        "ShellFormulationRefined", "ShellFormulation Standard\nShellFormulation Refined"})
    EXPECT_EQ(FormulationOf(settings), ShellFormulation::Refined) << settings;
  for (const char* settings : {"ShellFormulation Standard", "ShellFormulation = sTANDARD",
                               "ShellFormulation Refined\nShellFormulation Standard"})
    EXPECT_EQ(FormulationOf(settings), ShellFormulation::Standard) << settings;
}

TEST(ShellFormulationKeyword, OtherWordsAreRefusedWithAHint)
{
  for (const std::string word : {"Refine", "Refinedx", "Standards", "Std", "1", "thin"}) {
    SCOPED_TRACE(word);
    ExpectFatal([&] { ReadProblemText(With("ShellFormulation " + word)); },
                "error: ShellFormulation must be: Standard or Refined\n");
    EXPECT_NE(errorwriter.Hint().find("'" + word + "'"), std::string::npos);
  }
  errorwriter.DropHint();
}

TEST(ShellFormulationKeyword, AFileThatEndsWithoutTheValueSaysSo)
{
  ExpectFatal([] { ReadProblemText("problem type: 3d\nShellFormulation"); },
              "error: ShellFormulation must be: Standard or Refined\n");
  EXPECT_EQ(errorwriter.Hint(), "line 2: the file ends without the value of its last keyword");
  errorwriter.DropHint();
}

TEST(ShellFormulationKeyword, TheProgramPrintsMessageAndHint)
{
  const RunResult run = RunOnProblem(With("ShellFormulation Thin"));
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.err.find("error: ShellFormulation must be: Standard or Refined\n"),
            std::string::npos);
  EXPECT_NE(run.err.find(": 'Thin' is no formulation of shells"), std::string::npos);
}

}  // namespace morlen
