#include "support/run.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace morlen {

namespace fs = std::filesystem;

namespace {

// Redirects the stream `descriptor` of the child process to the file. Ends the child on failure.
void Redirect(int descriptor, const fs::path& file)
{
  const int opened = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (opened < 0 || dup2(opened, descriptor) < 0)
    _exit(126);
  close(opened);
}

void Limit(int resource, std::optional<long> most)
{
  if (!most)
    return;
  const rlimit limit = {static_cast<rlim_t>(*most), static_cast<rlim_t>(*most)};
  if (setrlimit(static_cast<__rlimit_resource>(resource), &limit) != 0)
    _exit(126);
}

// Sets up the conditions of the child process, except its two output streams.
void Apply(const RunConditions& conditions)
{
  for (const int stream : conditions.closed)
    close(stream);
  for (const auto& [name, value] : conditions.environment)
    setenv(name.c_str(), value.c_str(), 1);
  Limit(RLIMIT_FSIZE, conditions.fileSize);
  Limit(RLIMIT_STACK, conditions.stack);
  Limit(RLIMIT_AS, conditions.addressSpace);
}

// Runs MORLEN_PROGRAM in the folder with its two streams in files. Returns status and memory.
RunResult Execute(const fs::path& folder, const std::vector<std::string>& arguments,
                  const fs::path& out, const fs::path& err, const RunConditions& conditions)
{
  std::vector<std::string> words = {"morlen"};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  for (std::string& word : words)
    argv.push_back(word.data());
  argv.push_back(nullptr);

  const pid_t child = fork();
  if (child == 0) {
    Redirect(STDOUT_FILENO, out);
    Redirect(STDERR_FILENO, err);
    if (chdir(folder.c_str()) != 0)
      _exit(126);
    Apply(conditions);
    execv(MORLEN_PROGRAM, argv.data());
    _exit(127);
  }
  if (child > 0 && conditions.killAfter) {
    usleep(static_cast<useconds_t>(*conditions.killAfter));
    kill(child, SIGKILL);
  }
  int state = 0;
  rusage usage = {};
  if (child < 0 || wait4(child, &state, 0, &usage) != child)
    return {};
  return {.status = WIFEXITED(state) ? WEXITSTATUS(state) : -1,
          .memory = usage.ru_maxrss * 1024,
          .out = {},
          .err = {}};
}

}  // namespace

TemporaryFolder::TemporaryFolder()
{
  std::string name = (fs::temp_directory_path() / "morlen_test_XXXXXX").string();
  if (!mkdtemp(name.data()))
    ADD_FAILURE() << "no temporary folder " << name;
  path = name;
}

TemporaryFolder::~TemporaryFolder()
{
  std::error_code ignored;
  fs::remove_all(path, ignored);
}

void TemporaryFolder::Write(const std::string& name, std::string_view content) const
{
  fs::create_directories((path / name).parent_path());
  std::ofstream(path / name, std::ios::binary) << content;
}

void TemporaryFolder::Link(const std::string& name, const std::string& target) const
{
  fs::create_symlink(target, path / name);
}

std::string TemporaryFolder::Read(const std::string& name) const
{
  return ReadFile(path / name);
}

std::map<std::string, std::string> TemporaryFolder::Files() const
{
  std::map<std::string, std::string> files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(path)) {
    if (entry.is_regular_file())
      files[fs::relative(entry.path(), path).string()] = ReadFile(entry.path());
  }
  return files;
}

RunResult RunProgram(const TemporaryFolder& folder, const std::vector<std::string>& arguments,
                     const RunConditions& conditions)
{
  const TemporaryFolder streams;
  const bool ownOutput = conditions.standardOutput.empty();
  const fs::path out =
      ownOutput ? streams.Path() / "out" : folder.Path() / conditions.standardOutput;
  streams.Write("err", "");  // a run may be killed before it opens its streams
  if (ownOutput)
    streams.Write("out", "");
  RunResult result = Execute(folder.Path(), arguments, out, streams.Path() / "err", conditions);
  result.out = ownOutput ? streams.Read("out") : "";
  result.err = streams.Read("err");
  return result;
}

RunResult RunOnProblem(std::string_view problem)
{
  const TemporaryFolder folder;
  folder.Write("problem.dat", problem);
  return RunProgram(folder, {"problem.dat"});
}

std::string HintAfter(const std::string& message, const RunResult& run)
{
  const std::string mark = message.ends_with('\n') ? "hint: " : "\nhint: ";
  EXPECT_EQ(run.err.substr(0, message.size()), message);
  const std::string rest = run.err.substr(std::min(message.size(), run.err.size()));
  if (rest.empty())
    return {};
  EXPECT_TRUE(rest.starts_with(mark) && rest.find('\n', mark.size()) == rest.size() - 1) << run.err;
  return rest.substr(mark.size(), rest.size() - mark.size() - 1);
}

std::string ReadFile(const fs::path& file)
{
  std::ifstream in(file, std::ios::binary);
  if (!in)
    ADD_FAILURE() << "cannot read " << file;
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace morlen
