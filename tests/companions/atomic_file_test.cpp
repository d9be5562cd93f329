#include "common/atomic_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <optional>
#include <span>

#include "support/fatal.h"
#include "support/run.h"

namespace morlen {

namespace fs = std::filesystem;

namespace {

// The output of AtomicFile when it writes this text under the name.
std::string Printed(const fs::path& name, std::string_view text)
{
  testing::internal::CaptureStdout();
  AtomicFile file(name);
  file.Write(text);
  file.Commit();
  return testing::internal::GetCapturedStdout();
}

}  // namespace

TEST(AtomicFile, HasItsNameAfterCommitOnly)
{
  const TemporaryFolder folder;
  const fs::path name = folder.Path() / "a.txt";
  {
    AtomicFile file(name);
    file.Write("new");
    file.Stream() << 1;
    EXPECT_FALSE(folder.Has("a.txt"));
    testing::internal::CaptureStdout();
    file.Commit();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "wrote " + name.string() + "\n");
    EXPECT_EQ(folder.Read("a.txt"), "new1");
  }
  EXPECT_EQ(folder.Files().size(), 1u);
}

TEST(AtomicFile, LeavesTheOldFileAndNothingElseWithoutCommit)
{
  const TemporaryFolder folder;
  folder.Write("a.txt", "old");
  {
    AtomicFile file(folder.Path() / "a.txt");
    file.Write("new");
    file.Stream().flush();
    EXPECT_EQ(folder.Read("a.txt"), "old");
    EXPECT_EQ(folder.Files().size(), 2u);
  }
  EXPECT_EQ(folder.Files(), (std::map<std::string, std::string>{{"a.txt", "old"}}));
}

TEST(AtomicFile, ReplacesTheTargetOfALinkAndKeepsItsPermissions)
{
  const TemporaryFolder folder;
  folder.Write("real.txt", "old");
  folder.Link("link.txt", "real.txt");
  const fs::path real = folder.Path() / "real.txt";
  ASSERT_EQ(chmod(real.c_str(), 0640), 0);
  Printed(folder.Path() / "link.txt", "new");
  EXPECT_EQ(folder.Read("real.txt"), "new");
  EXPECT_TRUE(fs::is_symlink(folder.Path() / "link.txt"));
  EXPECT_EQ(fs::status(real).permissions(), fs::perms(0640));
}

TEST(AtomicFile, NewFilesHaveTheUsualPermissions)
{
  const TemporaryFolder folder;
  const mode_t before = umask(027);
  Printed(folder.Path() / "a.txt", "");
  umask(before);
  EXPECT_EQ(fs::status(folder.Path() / "a.txt").permissions(), fs::perms(0640));
}

TEST(AtomicFile, RefusesTargetsThatAreNotFiles)
{
  const TemporaryFolder folder;
  const std::string name = folder.Path().string();
  ExpectFatal([&] { AtomicFile file(folder.Path()); },
              "can't write file " + name + ": it is no regular file\n");
  ExpectFatal([&] { AtomicFile file(folder.Path() / "no" / "a"); },
              "can't open file " + name + "/no/a\n");
  EXPECT_EQ(errorwriter.Hint(), "No such file or directory");
}

TEST(AtomicFile, WritesDevicesInPlace)
{
  EXPECT_EQ(Printed("/dev/null", "text"), "wrote /dev/null\n");
}

TEST(AtomicFile, TheStandardOutputHasTheTextAlone)
{
  for (const char* name : {"-", "/dev/stdout", "/dev/fd/1", "/proc/self/fd/1"})
    EXPECT_EQ(Printed(name, "text"), "text") << name;
}

TEST(AtomicFile, NotesOfFiltersGoToStandardError)
{
  const TemporaryFolder folder;
  const std::string name = (folder.Path() / "a").string();
  const std::array<std::optional<fs::path>, 3> outputs{name, std::nullopt, "-"};
  EXPECT_EQ(WriterOf(outputs), AtomicFile::By::Filter);
  EXPECT_EQ(WriterOf(std::span(outputs).first(2)), AtomicFile::By::Program);
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  AtomicFile(name, AtomicFile::By::Filter).Commit();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "wrote " + name + "\n");
}

TEST(AtomicFile, RefusesProblemFiles)
{
  const TemporaryFolder folder;
  folder.Write("model.dat", "problem type: 2d\n");
  const std::string name = (folder.Path() / "model.dat").string();
  ExpectFatal([&] { AtomicFile file(name); },
              "error: " + name + " is a problem file and would be written over\n");
  EXPECT_EQ(folder.Read("model.dat"), "problem type: 2d\n");
}

TEST(AtomicFile, WithoutContentIsAnEmptyFile)
{
  const TemporaryFolder folder;
  folder.Write("a.txt", "old");
  testing::internal::CaptureStdout();
  AtomicFile(folder.Path() / "a.txt").Commit();
  testing::internal::GetCapturedStdout();
  EXPECT_EQ(folder.Read("a.txt"), "");
}

TEST(AtomicFile, EndsTheRunWhenTheFolderIsGoneAtTheEnd)
{
  const TemporaryFolder folder;
  fs::create_directory(folder.Path() / "sub");
  AtomicFile file(folder.Path() / "sub" / "a");
  fs::remove_all(folder.Path() / "sub");
  ExpectFatal([&] { file.Stream(); },
              "can't open file " + (folder.Path() / "sub" / "a").string() + "\n");
}

}  // namespace morlen
