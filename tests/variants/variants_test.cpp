// Variants of problem files as engineers write them: each gives the same results, or a message, or
// an error of morlen-check.

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "check/check.h"
#include "support/text_run.h"
#include "variants/judged.h"
#include "variants/variant.h"

namespace morlen::variants {

namespace {

using BlockAndKind = std::pair<Block, Kind>;

std::vector<BlockAndKind> AllPairs()
{
  std::vector<BlockAndKind> pairs;
  for (unsigned block = 0; block < static_cast<unsigned>(Block::kCount); ++block) {
    for (unsigned kind = 0; kind < static_cast<unsigned>(Kind::kCount); ++kind) {
      const BlockAndKind pair(static_cast<Block>(block), static_cast<Kind>(kind));
      if (!VariantsOf(pair.first, pair.second).empty())
        pairs.push_back(pair);
    }
  }
  return pairs;
}

std::string NameOfPair(const testing::TestParamInfo<BlockAndKind>& info)
{
  return std::string(NameOf(info.param.first)) + "_" + NameOf(info.param.second);
}

class Variants : public testing::TestWithParam<BlockAndKind>
{
};

}  // namespace

TEST(VariantBases, RunAndPassTheCheck)
{
  for (const BaseModel& model : BaseModels()) {
    SCOPED_TRACE(model.name);
    EXPECT_EQ(TextOf(LayoutOf(model)), model.text);
    const TextRun run = RunText(model.text);
    EXPECT_TRUE(run.Succeeded()) << run.message;
    EXPECT_TRUE(check::CheckText(model.text).problems.empty());
  }
}

TEST_P(Variants, HaveTheirOutcome)
{
  for (const Variant& variant : VariantsOf(GetParam().first, GetParam().second)) {
    const std::string difference = Judge(variant);
    EXPECT_TRUE(difference.empty()) << Describe(variant.site) << "\n  " << difference;
  }
}

INSTANTIATE_TEST_SUITE_P(All, Variants, testing::ValuesIn(AllPairs()), NameOfPair);

}  // namespace morlen::variants
