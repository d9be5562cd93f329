// The texts that fuzzers began with or found something with, once more.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "fuzz/targets.h"
#include "support/run.h"

namespace morlen {

namespace fs = std::filesystem;

namespace {

std::vector<fs::path> Corpus()
{
  std::vector<fs::path> files;
  for (const fs::directory_entry& entry :
       fs::directory_iterator(fs::path(MORLEN_SOURCE_DIR) / "tests" / "fuzz" / "corpus"))
    files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

TEST(FuzzCorpus, IsReadOrRefusedWithAMessage)
{
  ASSERT_FALSE(Corpus().empty());
  for (const fs::path& file : Corpus())
    EXPECT_TRUE(ReadText(ReadFile(file)).IsRight()) << file;
}

TEST(FuzzCorpus, IsSolvedWithFiniteResultsOrRefusedWithAMessage)
{
  for (const fs::path& file : Corpus())
    EXPECT_TRUE(AnalyseText(ReadFile(file)).IsRight()) << file;
}

}  // namespace

}  // namespace morlen
