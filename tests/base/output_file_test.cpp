#include "base/output_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <system_error>
#include <thread>

#include "base/errorwriter.h"
#include "base/signals_held.h"
#include "base/unfinished_files.h"
#include "support/fatal.h"
#include "support/run.h"

namespace morlen {

namespace fs = std::filesystem;

namespace {

using Files = std::map<std::string, std::string>;

class OutputFileTest : public testing::Test
{
protected:
  std::string Name(const std::string& name) const { return (folder.Path() / name).string(); }

  void WriteNew(const std::string& name) const
  {
    OutputFile file(Name(name));
    file.Stream() << "new";
    file.Commit();
  }

  struct stat Status(const std::string& name) const
  {
    struct stat status = {};
    EXPECT_EQ(stat(Name(name).c_str(), &status), 0);
    return status;
  }

  // The state in which a child process ends that runs the action.
  static int EndOfChild(const std::function<void()>& action)
  {
    const pid_t child = fork();
    if (child == 0) {
      action();
      _exit(0);
    }
    int state = 0;
    waitpid(child, &state, 0);
    return state;
  }

  TemporaryFolder folder;
};

}  // namespace

TEST_F(OutputFileTest, ChangesNothingUnderItsNameUntilItIsCommitted)
{
  folder.Write("a", "old");
  OutputFile file(Name("a"));
  file.Stream() << "new";
  file.Stream().flush();
  EXPECT_EQ(folder.Files(), (Files{{"a", "old"}, {".a.morlen-tmp", "new"}}));
  file.Commit();
  EXPECT_EQ(folder.Files(), (Files{{"a", "new"}}));
}

TEST_F(OutputFileTest, CompletedItHasItsContentButNotItsName)
{
  folder.Write("a", "old");
  OutputFile file(Name("a"));
  file.Stream() << "new";
  file.Complete();
  std::string written;
  std::getline(std::ifstream(file.WrittenName()), written);
  EXPECT_EQ(written, "new");
  EXPECT_EQ(folder.Read("a"), "old");
  file.Commit();
  EXPECT_EQ(folder.Files(), (Files{{"a", "new"}}));
}

TEST_F(OutputFileTest, CompletedWithoutCommitNothingIsLeft)
{
  folder.Write("a", "old");
  {
    OutputFile file(Name("a"));
    file.Stream() << "new";
    file.Complete();
  }
  EXPECT_EQ(folder.Files(), (Files{{"a", "old"}}));
}

TEST_F(OutputFileTest, CompletionNoticesAFullDisk)
{
  const auto fill = [] {
    OutputFile file("/dev/full");
    file.Stream() << "new";
    file.Complete();
  };
  ExpectFatal(fill, "error: Failed writing to disk. Probably the disk is full\n");
}

TEST_F(OutputFileTest, WithoutCommitNothingIsLeft)
{
  folder.Write("old", "old");
  for (const char* name : {"old", "fresh"}) {
    OutputFile file(Name(name));
    file.Stream() << "new";
  }
  EXPECT_EQ(folder.Files(), (Files{{"old", "old"}}));
}

TEST_F(OutputFileTest, EmptiedItHasNoContentUntilItIsCommitted)
{
  folder.Write("a", "old");
  OutputFile file(Name("a"));
  file.Empty();
  EXPECT_EQ(folder.Read("a"), "");
  file.Stream() << "new";
  file.Commit();
  EXPECT_EQ(folder.Read("a"), "new");
}

TEST_F(OutputFileTest, EmptyMakesNoFile)
{
  OutputFile file(Name("a"));
  file.Empty();
  EXPECT_FALSE(folder.Has("a"));
}

TEST_F(OutputFileTest, AnotherWriterMayOpenTheFileItself)
{
  folder.Write("a", "old");
  OutputFile file(Name("a"));
  std::ofstream(file.WrittenName()) << "new";
  EXPECT_EQ(folder.Read("a"), "old");
  file.Commit();
  EXPECT_EQ(folder.Files(), (Files{{"a", "new"}}));
}

TEST_F(OutputFileTest, KeepsPermissionsAndOwner)
{
  folder.Write("a", "old");
  ASSERT_EQ(chmod(Name("a").c_str(), 0604), 0);
  if (geteuid() == 0) {
    ASSERT_EQ(chown(Name("a").c_str(), 12345, 23456), 0);
  }
  const struct stat before = Status("a");
  WriteNew("a");
  const struct stat after = Status("a");
  EXPECT_NE(after.st_ino, before.st_ino);
  EXPECT_EQ(after.st_mode, before.st_mode);
  EXPECT_EQ(after.st_uid, before.st_uid);
  EXPECT_EQ(after.st_gid, before.st_gid);
}

TEST_F(OutputFileTest, NewFilesHaveTheUsualPermissions)
{
  const mode_t before = umask(027);
  WriteNew("a");
  umask(before);
  EXPECT_EQ(Status("a").st_mode & 07777, 0640u);
}

TEST_F(OutputFileTest, LinksStayLinks)
{
  fs::create_directory(folder.Path() / "sub");
  folder.Write("real", "old");
  folder.Link("sub/first", "../real");
  folder.Link("link", "sub/first");
  folder.Link("dangling", "sub/made");
  WriteNew("link");
  WriteNew("dangling");
  EXPECT_TRUE(fs::is_symlink(folder.Path() / "link"));
  EXPECT_TRUE(fs::is_symlink(folder.Path() / "sub/first"));
  EXPECT_FALSE(fs::is_symlink(folder.Path() / "real"));
  EXPECT_EQ(folder.Read("real"), "new");
  EXPECT_TRUE(fs::is_symlink(folder.Path() / "dangling"));
  EXPECT_EQ(folder.Read("sub/made"), "new");
}

TEST_F(OutputFileTest, AllNamesOfAFileWithHardLinksGetTheNewContent)
{
  folder.Write("a", "old");
  fs::create_hard_link(folder.Path() / "a", folder.Path() / "b");
  WriteNew("a");
  EXPECT_EQ(folder.Files(), (Files{{"a", "new"}, {"b", "new"}}));
  {
    OutputFile file(Name("a"));
    file.Stream() << "half of it" << std::flush;
  }
  EXPECT_EQ(folder.Files(), (Files{{"a", ""}, {"b", ""}}));
}

TEST_F(OutputFileTest, DevicesAndDescriptorsAreWrittenInPlace)
{
  OutputFile null("/dev/null");
  EXPECT_EQ(null.WrittenName(), "/dev/null");
  null.Empty();
  null.Stream() << "new";
  null.Commit();
  folder.Write("a", "old");
  const Descriptor opened(open(Name("a").c_str(), O_RDWR));
  const std::string name = "/proc/self/fd/" + std::to_string(opened.Number());
  const struct stat before = Status("a");
  OutputFile file(name);
  EXPECT_EQ(file.WrittenName(), name);
  file.Stream() << "new";
  file.Commit();
  EXPECT_EQ(folder.Files(), (Files{{"a", "new"}}));
  EXPECT_EQ(Status("a").st_ino, before.st_ino);
}

TEST_F(OutputFileTest, APipeIsOpenedByTheStreamOnly)
{
  ASSERT_EQ(mkfifo(Name("pipe").c_str(), 0600), 0);
  OutputFile file(Name("pipe"));  // would wait for a reader
  file.Empty();
  const Descriptor reader(open(Name("pipe").c_str(), O_RDONLY | O_NONBLOCK));
  file.Stream() << "new";
  file.Commit();
  char text[4] = {};
  EXPECT_EQ(read(reader.Number(), text, sizeof text), 3);
  EXPECT_STREQ(text, "new");
  EXPECT_TRUE(fs::is_fifo(folder.Path() / "pipe"));
}

TEST_F(OutputFileTest, TellsWhyAFileCannotBeOpened)
{
  folder.Write("file", "");
  fs::create_directory(folder.Path() / "folder");
  folder.Link("circle", "circle");
  const struct
  {
    std::string name;
    const char* reason;
  } cases[] = {{Name("none/a"), "No such file or directory"},
               {Name("file/a"), "Not a directory"},
               {Name("folder"), "Is a directory"},
               {Name("new/"), "Is a directory"},
               {Name("circle"), "Too many levels of symbolic links"},
               {"", "No such file or directory"},
               {Name(std::string(256, 'n')), "File name too long"}};
  for (const auto& c : cases) {
    ExpectFatal([&] { OutputFile file(c.name); }, "can't open file " + c.name + "\n");
    EXPECT_EQ(errorwriter.Hint(), c.reason) << c.name;
  }
}

TEST_F(OutputFileTest, NamesMayHaveTheGreatestLength)
{
  const std::string first = std::string(254, 'n') + "1";
  const std::string second = std::string(254, 'n') + "2";
  OutputFile a(Name(first));
  OutputFile b(Name(second));
  a.Stream() << "a";
  b.Stream() << "b";
  a.Commit();
  b.Commit();
  EXPECT_EQ(folder.Files(), (Files{{first, "a"}, {second, "b"}}));
}

TEST_F(OutputFileTest, AFileIsWrittenByOneAtATime)
{
  folder.Write("a", "old");
  folder.Link("link", "a");
  {
    OutputFile first(Name("a"));
    ExpectFatal([&] { OutputFile second(Name("link")); },
                "error: another run is writing the file " + Name("link") + "\n");
    first.Stream() << "new";
    first.Commit();
  }
  EXPECT_EQ(folder.Files(), (Files{{"a", "new"}}));
  fs::create_hard_link(folder.Path() / "a", folder.Path() / "b");
  OutputFile first(Name("a"));
  ExpectFatal([&] { OutputFile second(Name("b")); },
              "error: another run is writing the file " + Name("b") + "\n");
}

TEST_F(OutputFileTest, TheRestOfAKilledProcessIsReplaced)
{
  folder.Write("a", "old");
  EndOfChild([&] {
    OutputFile file(Name("a"));
    file.Stream() << "half" << std::flush;
    raise(SIGKILL);
  });
  EXPECT_EQ(folder.Files(), (Files{{"a", "old"}, {".a.morlen-tmp", "half"}}));
  WriteNew("a");
  EXPECT_EQ(folder.Files(), (Files{{"a", "new"}}));
}

TEST_F(OutputFileTest, StaleTemporariesAreRemovedAndUsedOnesStay)
{
  folder.Write(".a.morlen-tmp", "stale");
  folder.Write(".b.morlen-tmp.txt", "of a user");
  folder.Write("c.morlen-tmp", "of a user");
  folder.Link(".link.morlen-tmp", "c.morlen-tmp");
  OutputFile used(Name("used"));
  RemoveStaleTemporaries(folder.Path());
  RemoveStaleTemporaries(folder.Path() / "none");
  EXPECT_EQ(folder.Files(), (Files{{".b.morlen-tmp.txt", "of a user"},
                                   {"c.morlen-tmp", "of a user"},
                                   {".used.morlen-tmp", ""}}));
  EXPECT_TRUE(folder.Has(".link.morlen-tmp"));
}

TEST_F(OutputFileTest, ATemporaryFileThatSomebodyReplacedIsNotRenamed)
{
  folder.Write("a", "old");
  OutputFile file(Name("a"));
  file.Stream() << "new";
  fs::rename(folder.Path() / ".a.morlen-tmp", folder.Path() / "moved");
  folder.Write(".a.morlen-tmp", "of another");
  ExpectFatal([&] { file.Commit(); }, "can't open file " + Name("a") + "\n");
  EXPECT_EQ(folder.Read("a"), "old");
}

TEST_F(OutputFileTest, TheEndOfTheProcessCleansUp)
{
  folder.Write("a", "old");
  folder.Write("hard", "old");
  fs::create_hard_link(folder.Path() / "hard", folder.Path() / "hard2");
  const auto writeHalf = [&](const std::function<void()>& end) {
    OutputFile file(Name("a"));
    OutputFile inPlace(Name("hard"));
    file.Stream() << "half" << std::flush;
    inPlace.Stream() << "half" << std::flush;
    end();
  };
  const Files expected = {{"a", "old"}, {"hard", ""}, {"hard2", ""}};
  const int exited = EndOfChild([&] { writeHalf([] { std::exit(3); }); });
  EXPECT_EQ(WEXITSTATUS(exited), 3);
  EXPECT_EQ(folder.Files(), expected);
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGXCPU, SIGALRM}) {
    SCOPED_TRACE(signal);
    folder.Write("hard", "old");
    const int ended = EndOfChild([&] {
      CleanUpOnSignals();
      writeHalf([&] { raise(signal); });
    });
    EXPECT_TRUE(WIFSIGNALED(ended) && WTERMSIG(ended) == signal);
    EXPECT_EQ(folder.Files(), expected);
  }
}

TEST_F(OutputFileTest, EndsRemoveAFolderWithItsFiles)
{
  for (const int signal : {0, SIGINT, SIGTERM}) {
    SCOPED_TRACE(signal);
    for (int i = 0; i < 300; ++i)  // more than one call of the system lists
      folder.Write("pool/a file with a rather long name " + std::to_string(i), "numbers");
    const std::string name = Name("pool");
    EndOfChild([&] {
      CleanUpOnSignals();
      UnfinishedFile pool;
      pool.RemoveFolder(name.c_str());
      if (signal == 0)
        std::exit(3);
      raise(signal);
    });
    EXPECT_FALSE(folder.Has("pool"));
  }
  folder.Write("pool/a", "numbers");
  const std::string name = Name("pool");
  {
    UnfinishedFile pool;
    pool.RemoveFolder(name.c_str());
    pool.Release();
  }
  EXPECT_EQ(folder.Files(), (Files{{"pool/a", "numbers"}}));
}

// A terminal and a parent process may both send Ctrl-C; the second one comes to another thread.
TEST_F(OutputFileTest, ASecondSignalDoesNotCutTheCleaningShort)
{
  for (int i = 0; i < 3000; ++i)
    folder.Write("pool/" + std::to_string(i), "");
  const std::string name = Name("pool");
  const int ended = EndOfChild([&] {
    CleanUpOnSignals();
    UnfinishedFile pool;
    pool.RemoveFolder(name.c_str());
    const auto present = [&] {
      std::error_code gone;
      return std::distance(fs::directory_iterator(name, gone), fs::directory_iterator());
    };
    std::thread second([&] {
      while (present() == 3000) {
      }
      kill(getpid(), SIGINT);
      pause();
    });
    raise(SIGINT);
    second.join();
  });
  EXPECT_TRUE(WIFSIGNALED(ended) && WTERMSIG(ended) == SIGINT);
  EXPECT_FALSE(folder.Has("pool"));
}

TEST_F(OutputFileTest, IgnoredSignalsStayIgnored)
{
  const int ended = EndOfChild([&] {
    std::signal(SIGHUP, SIG_IGN);
    CleanUpOnSignals();
    raise(SIGHUP);
    WriteNew("a");
  });
  EXPECT_TRUE(WIFEXITED(ended));
  EXPECT_EQ(folder.Files(), (Files{{"a", "new"}}));
}

TEST_F(OutputFileTest, ManyFilesAtOnceAreCleanedUpByTheirDestructors)
{
  constexpr int kFiles = 1100;  // more than the register of the process holds
  rlimit limit = {};
  getrlimit(RLIMIT_NOFILE, &limit);
  if (limit.rlim_max < kFiles + 100)
    GTEST_SKIP() << "the system does not allow so many open files";
  const rlimit before = limit;
  limit.rlim_cur = limit.rlim_max;
  setrlimit(RLIMIT_NOFILE, &limit);
  std::vector<std::unique_ptr<OutputFile>> files;
  files.reserve(kFiles);
  for (int i = 0; i < kFiles; ++i)
    files.push_back(std::make_unique<OutputFile>(Name(std::to_string(i))));
  files.front()->Commit();
  files.clear();
  setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_EQ(folder.Files(), (Files{{"0", ""}}));
}

// Another thread takes the signal, since this one blocks it.
TEST_F(OutputFileTest, SignalsOfOtherThreadsWaitForRenames)
{
  folder.Write("a", "old");
  const int state = EndOfChild([this] {
    CleanUpOnSignals();
    std::thread([] { pause(); }).detach();
    OutputFile file(Name("a"));
    file.Stream() << "new";
    {
      const SignalsHeld held;
      const SignalsHeld nested;
      kill(getpid(), SIGTERM);
      usleep(100000);
      file.Commit();
      std::ofstream(Name("after")) << "renamed";
    }
    usleep(1000000);
    std::ofstream(Name("late")) << "not ended";
  });
  EXPECT_TRUE(WIFSIGNALED(state) && WTERMSIG(state) == SIGTERM) << state;
  EXPECT_EQ(folder.Files(), (Files{{"a", "new"}, {"after", "renamed"}}));
}

}  // namespace morlen
