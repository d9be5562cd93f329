// The number of variants that docs/testing.md states.

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "variants/outcomes.h"
#include "variants/variant.h"

namespace morlen::variants {

namespace {

constexpr const char* kOutcomes[] = {
    "same",    "doubtful", "as without the rest", "as without the rest, with a finding",
    "refused", "lost",     "lost, same results"};

// The rows of the two tables: "| tab | 1120 |".
std::map<std::string, int> Counts()
{
  std::map<std::string, int> counts;
  for (unsigned block = 0; block < static_cast<unsigned>(Block::kCount); ++block) {
    for (unsigned kind = 0; kind < static_cast<unsigned>(Kind::kCount); ++kind) {
      for (const Variant& variant :
           VariantsOf(static_cast<Block>(block), static_cast<Kind>(kind))) {
        ++counts[NameOf(static_cast<Kind>(kind))];
        ++counts["all"];
        if (const auto expected = ExpectedOf(variant.site))
          ++counts[kOutcomes[static_cast<int>(expected->outcome)]];
      }
    }
  }
  return counts;
}

}  // namespace

TEST(VariantCounts, AreThoseOfThePageOnTesting)
{
  std::ifstream in(MORLEN_SOURCE_DIR "/docs/testing.md");
  std::stringstream page;
  page << in.rdbuf();
  for (const auto& [name, count] : Counts()) {
    const std::string row = "| " + name + " | " + std::to_string(count) + " |";
    EXPECT_NE(page.str().find(row), std::string::npos) << "missing in docs/testing.md: " << row;
  }
}

}  // namespace morlen::variants
