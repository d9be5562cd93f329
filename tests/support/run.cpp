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
  if (const auto user = conditions.user; user && (setgid(*user) != 0 || setuid(*user) != 0))
    _exit(126);
}

// Starts MORLEN_PROGRAM in the folder with its two streams in files. Returns the process, -1 when
// there is none.
pid_t Start(const fs::path& folder, const std::vector<std::string>& arguments, const fs::path& out,
            const fs::path& err, const RunConditions& conditions)
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
  return child;
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

StartedRun::StartedRun(const TemporaryFolder& folder, const std::vector<std::string>& arguments,
                       const RunConditions& conditions)
    : out(conditions.standardOutput.empty() ? streams.Path() / "out"
                                            : folder.Path() / conditions.standardOutput),
      ownOutput(conditions.standardOutput.empty())
{
  streams.Write("err", "");  // a run may be killed before it opens its streams
  if (ownOutput)
    streams.Write("out", "");
  process = Start(folder.Path(), arguments, out, streams.Path() / "err", conditions);
}

StartedRun::~StartedRun()
{
  if (process <= 0)
    return;
  Send(SIGKILL);
  Wait();
}

void StartedRun::Send(int signal) const
{
  if (process > 0)
    kill(process, signal);
}

RunResult StartedRun::Wait()
{
  int state = 0;
  rusage usage = {};
  RunResult result;
  if (process > 0 && wait4(process, &state, 0, &usage) == process) {
    result.status = WIFEXITED(state) ? WEXITSTATUS(state) : -1;
    result.signal = WIFSIGNALED(state) ? WTERMSIG(state) : 0;
    result.memory = usage.ru_maxrss * 1024;
  }
  process = -1;
  result.out = ownOutput ? streams.Read("out") : "";
  result.err = streams.Read("err");
  return result;
}

RunResult RunProgram(const TemporaryFolder& folder, const std::vector<std::string>& arguments,
                     const RunConditions& conditions)
{
  StartedRun run(folder, arguments, conditions);
  if (conditions.killAfter) {
    usleep(static_cast<useconds_t>(*conditions.killAfter));
    run.Send(SIGKILL);
  }
  return run.Wait();
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
