#include "common/source_files.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <optional>
#include <string>

#include "support/fatal.h"
#include "support/run.h"

namespace morlen {

namespace fs = std::filesystem;

namespace {

constexpr const char* kProblem = "problem type: 2d\n";

std::string Refusal(const fs::path& name, const char* reason)
{
  return "error: " + name.string() + " is " + reason + "\n";
}

}  // namespace

TEST(SourceFiles, CaseFilesHaveTheirEnding)
{
  EXPECT_TRUE(IsCaseFile("hall.cases"));
  EXPECT_TRUE(IsCaseFile("a/b.c.cases"));
  EXPECT_FALSE(IsCaseFile("hall.cases.txt"));
  EXPECT_FALSE(IsCaseFile("cases"));
}

TEST(SourceFiles, SourcesAreRefusedUnderEveryName)
{
  const TemporaryFolder folder;
  folder.Write("model.dat", kProblem);
  folder.Write("hall.cases", "");
  folder.Link("model.vtu", "model.dat");
  folder.Link("hall.vtu", "hall.cases");
  folder.Write("plain.txt", "x");
  folder.Link("link.cases", "plain.txt");
  const struct
  {
    const char* name;
    const char* reason;
  } cases[] = {
      {"model.dat", "a problem file and would be written over"},
      {"model.vtu", "a problem file and would be written over"},
      {"hall.cases", "a file of load cases and would be written over"},
      {"hall.vtu", "a file of load cases and would be written over"},
      {"link.cases", "a file of load cases and would be written over"},
  };
  for (const auto& c : cases) {
    const fs::path name = folder.Path() / c.name;
    ExpectFatal([&] { RefuseSources(name); }, Refusal(name, c.reason));
  }
}

TEST(SourceFiles, OtherFilesAndUnusedNamesAreFree)
{
  const TemporaryFolder folder;
  folder.Write("a.txt", "x");
  folder.Link("nowhere.cases", "none");
  for (const char* name : {"a.txt", "none.txt", "new.cases", "nowhere.cases", ".", "no/a.cases"})
    RefuseSources(folder.Path() / name);
  const fs::path inputs[] = {folder.Path() / "a.txt", folder.Path() / "none"};
  for (const char* name : {"b.txt", "none", "no/a.txt"})
    RefuseInputs(folder.Path() / name, inputs);
  RefuseInputs(folder.Path() / "a.txt", {});
}

TEST(SourceFiles, InputsAreRefusedUnderEveryName)
{
  const TemporaryFolder folder;
  folder.Write("loads.txt", "x");
  folder.Link("link", "loads.txt");
  fs::create_hard_link(folder.Path() / "loads.txt", folder.Path() / "hard");
  const fs::path inputs[] = {folder.Path() / "none", folder.Path() / "loads.txt"};
  for (const char* file : {"loads.txt", "link", "hard", "./loads.txt"}) {
    const fs::path name = folder.Path() / file;
    ExpectFatal([&] { RefuseInputs(name, inputs, "another name"); },
                Refusal(name, "read and can't be written"));
    EXPECT_EQ(errorwriter.Hint(), "another name");
  }
  ExpectFatal([&] { RefuseInputs(inputs[1], inputs); },
              Refusal(inputs[1], "read and can't be written"));
  EXPECT_EQ(errorwriter.Hint(), "");
}

TEST(SourceFiles, OneOutputUnderTwoNamesIsRefused)
{
  const TemporaryFolder folder;
  folder.Write("there", "x");
  folder.Link("link", "there");
  fs::create_directory(folder.Path() / "sub");
  const auto refuse = [&](const fs::path& one, const fs::path& two) {
    const std::array<std::optional<fs::path>, 3> files{one, std::nullopt, two};
    RefuseEqual(files);
  };
  const fs::path there = folder.Path() / "there";
  const fs::path absent = folder.Path() / "new.vtu";
  for (const fs::path& other : {there, folder.Path() / "link", folder.Path() / "sub/../there"})
    ExpectFatal([&] { refuse(there, other); },
                "error: two outputs are written to " + other.string() + "\n");
  for (const fs::path& other : {absent, folder.Path() / "./new.vtu",
                                folder.Path() / "sub/../new.vtu", fs::proximate(absent)})
    ExpectFatal([&] { refuse(absent, other); },
                "error: two outputs are written to " + other.string() + "\n");
  for (const char* name : {"-", "/dev/stdout"})
    ExpectFatal([&] { refuse("-", name); },
                std::string("error: two outputs are written to ") + name + "\n");
  refuse(absent, folder.Path() / "sub/new.vtu");
  refuse("-", "./-");
  refuse(absent, there);
}

}  // namespace morlen
