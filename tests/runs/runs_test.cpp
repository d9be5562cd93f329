// Whole runs. Every folder in this directory is a case with
//   model.dat   the problem file,
//   args        the arguments on one line,
//   expected/   the files that the run writes, and "stdout" when it prints something,
//   why.txt     the source of the expected numbers.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "support/compare.h"
#include "support/run.h"

namespace morlen {

namespace fs = std::filesystem;

namespace {

const fs::path kCases = fs::path(MORLEN_SOURCE_DIR) / "tests" / "runs";

std::vector<std::string> CaseNames()
{
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(kCases)) {
    if (entry.is_directory())
      names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::vector<std::string> Words(const std::string& line)
{
  std::istringstream in(line);
  std::vector<std::string> words;
  for (std::string word; in >> word;)
    words.push_back(word);
  return words;
}

// Replaces the processor times, which differ between runs, and the estimated errors, which differ
// between processors.
std::string WithoutTimes(const std::string& text)
{
  static const std::regex times("Total time = [^ \n]+ min. = [^ \n]+ seg.");
  static const std::regex errors(
      "Estimated relative error of the displacements= ([^ ,\n]+), residual= ([^ \n]+)");
  return std::regex_replace(std::regex_replace(text, times, "Total time = ? min. = ? seg."), errors,
                            "Estimated relative error of the displacements= ?, residual= ?");
}

std::map<std::string, std::string> ExpectedFiles(const fs::path& folder)
{
  std::map<std::string, std::string> files = {{"stdout", ""}};
  for (const fs::directory_entry& entry : fs::directory_iterator(folder / "expected"))
    files[entry.path().filename().string()] = WithoutTimes(ReadFile(entry.path()));
  return files;
}

}  // namespace

class Runs : public testing::TestWithParam<std::string>
{
};

TEST_P(Runs, WriteTheExpectedFiles)
{
  const fs::path folder = kCases / GetParam();
  EXPECT_FALSE(ReadFile(folder / "why.txt").empty());
  const TemporaryFolder work;
  work.Write("model.dat", ReadFile(folder / "model.dat"));
  const RunResult run = RunProgram(work, Words(ReadFile(folder / "args")));
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, "");
  std::map<std::string, std::string> written = work.Files();
  written.erase("model.dat");
  written["stdout"] = run.out;
  for (const auto& [name, expected] : ExpectedFiles(folder)) {
    EXPECT_EQ(Difference(WithoutTimes(written[name]), expected), "") << name;
    written.erase(name);
  }
  for (const auto& [name, content] : written)
    ADD_FAILURE() << "not expected: " << name;
}

INSTANTIATE_TEST_SUITE_P(Cases, Runs, testing::ValuesIn(CaseNames()),
                         [](const auto& instance) { return instance.param; });

}  // namespace morlen
