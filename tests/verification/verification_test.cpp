// The verification manual: what the program computes beside values from elsewhere. The tables of
// docs/verification.md are made here; scripts/verification.sh writes them anew.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/open_cases.h"
#include "support/run.h"
#include "support/verification.h"

namespace morlen {

namespace {

const std::filesystem::path kManual =
    std::filesystem::path(MORLEN_SOURCE_DIR) / "docs" / "verification.md";
const std::string kBegin = "<!-- tables: made by scripts/verification.sh -->\n";
const std::string kEnd = "<!-- end of the tables -->\n";

void ExpectAllHold(const VerifiedSection& section)
{
  for (const VerifiedResult& r : section.results)
    EXPECT_TRUE(r.Holds()) << section.title << ", " << r.problem << ", " << r.quantity << ": "
                           << r.result << " for " << r.reference;
}

VerifiedSection& SectionOf(std::vector<VerifiedSection>& sections, const std::string& title)
{
  for (VerifiedSection& section : sections) {
    if (section.title == title)
      return section;
  }
  return sections.emplace_back(VerifiedSection{title, {}});
}

std::vector<VerifiedSection> AllSections()
{
  std::vector<VerifiedSection> sections = ClosedForms();
  for (const std::string& name : OpenCaseNames()) {
    const OpenCase open = RunOpenCase(name);
    VerifiedSection& section = SectionOf(sections, open.section);
    section.results.insert(section.results.end(), open.shown.begin(), open.shown.end());
  }
  sections.push_back(ManufacturedSolutions());
  return sections;
}

}  // namespace

class OpenCases : public testing::TestWithParam<std::string>
{
};

TEST_P(OpenCases, GiveTheExpectedValues)
{
  const OpenCase result = RunOpenCase(GetParam());
  EXPECT_GT(result.checks, 0);
  for (const std::string& failure : result.failures)
    ADD_FAILURE() << failure;
}

INSTANTIATE_TEST_SUITE_P(Verification, OpenCases, testing::ValuesIn(OpenCaseNames()),
                         [](const auto& instance) { return instance.param; });

TEST(Verification, ResultsHoldAndAreThoseOfTheManual)
{
  const std::vector<VerifiedSection> sections = AllSections();
  for (const VerifiedSection& section : sections)
    ExpectAllHold(section);
  const std::string manual = ReadFile(kManual);
  const std::size_t begin = manual.find(kBegin);
  const std::size_t end = manual.find(kEnd);
  ASSERT_TRUE(begin != std::string::npos && begin < end);
  const std::size_t first = begin + kBegin.size();
  const std::string tables = "\n" + ManualText(sections);
  if (std::getenv("MORLEN_WRITE_VERIFICATION"))
    std::ofstream(kManual, std::ios::binary)
        << manual.substr(0, first) << tables << manual.substr(end);
  else
    EXPECT_EQ(manual.substr(first, end - first), tables) << "run scripts/verification.sh";
}

}  // namespace morlen
