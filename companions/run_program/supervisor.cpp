// Jobs in processes. A fatal error, a crash or a lack of memory ends one job, and Ctrl-C ends each
// one with its own cleaning up. The processes write into pipes: messages, results and progress come
// together here, where they are printed line by line.

#include "run_program/supervisor.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "base/descriptor.h"
#include "base/errorwriter.h"
#include "base/unfinished_files.h"
#include "run_program/console.h"

namespace morlen::run {

namespace {

struct Pipe
{
  Pipe()
  {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
      Explain(std::strerror(errno));
      Fatal("error: can't start another process\n");
    }
    reading = Descriptor(ends[0]);
    writing = Descriptor(ends[1]);
  }

  Descriptor reading, writing;
};

/// The end of a pipe from which lines come.
struct Source
{
  Descriptor descriptor;
  std::string text;  ///< read and not used yet

  // Removes and returns the first line with its newline; empty when there is none.
  std::string CutLine()
  {
    const std::size_t end = text.find('\n');
    if (end == std::string::npos)
      return {};
    std::string line = text.substr(0, end + 1);
    text.erase(0, end + 1);
    return line;
  }
};

/// A job that runs in a process.
struct Child
{
  const Job& job;
  pid_t process;
  Source output;
  Source messages;  ///< and the progress

  std::array<Source*, 2> Sources() { return {&output, &messages}; }
  bool IsOpen() { return output.descriptor || messages.descriptor; }
};

/// The signals at which the jobs end; they come through a descriptor.
class EndingSignals
{
public:
  EndingSignals()
  {
    sigemptyset(&set);
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM})
      sigaddset(&set, signal);
    sigprocmask(SIG_BLOCK, &set, &before);
    descriptor = Descriptor(signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
  }
  EndingSignals(const EndingSignals&) = delete;
  EndingSignals& operator=(const EndingSignals&) = delete;
  ~EndingSignals() { Restore(); }

  int Number() const { return descriptor.Number(); }
  void Restore() const { sigprocmask(SIG_SETMASK, &before, nullptr); }

  /// The signal that has come; 0 for none.
  int Receive() const
  {
    signalfd_siginfo info = {};
    return read(descriptor.Number(), &info, sizeof info) == sizeof info
               ? static_cast<int>(info.ssi_signo)
               : 0;
  }

private:
  sigset_t set, before;
  Descriptor descriptor;
};

// The outcome as the exit code of a process. Errors end it with the code 2, without a page.
constexpr int kPageCode = 4;

int ExitCodeOf(const Outcome& outcome)
{
  return static_cast<int>(outcome.status) + (outcome.hasPage ? kPageCode : 0);
}

Outcome OutcomeOf(int exitCode)
{
  constexpr int kLargest = kPageCode + ErrorWriter::kExitStatus;
  const int status = exitCode % kPageCode;
  if (exitCode > kLargest || status > ErrorWriter::kExitStatus)
    return {ExitStatus::Failed};
  return {static_cast<ExitStatus>(status), exitCode >= kPageCode};
}

class Supervisor
{
public:
  Supervisor(const std::vector<Job>& jobs_, const Options& options_, const Work& work_,
             const OnEnd& onEnd_)
      : jobs(jobs_),
        options(options_),
        work(work_),
        onEnd(onEnd_),
        console(jobs_.size() > 1),
        outputs(jobs_.size())
  {
  }

  ExitStatus Run()
  {
    while (next < jobs.size() || !children.empty()) {
      while (next < jobs.size() && static_cast<int>(children.size()) < options.jobs && signal == 0)
        Start(jobs[next++]);
      if (children.empty())
        break;
      Wait();
      CollectEnded();
    }
    console.Clear();
    if (signal != 0) {
      PrintOutputs(jobs.size());
      EndBy(signal);
    }
    if (jobs.size() > 1)
      PrintTotal();
    if (!outputIsWhole)
      console.Message("morlen-run", "morlen-run: error: can't write to standard output");
    return outputIsWhole ? worst : ExitStatus::Failed;
  }

private:
  void Start(const Job& job);
  [[noreturn]] void BecomeJob(const Job& job, const Pipe& output, const Pipe& messages);
  void Wait();
  void PassOn(int received);
  void Hear(Child& child);
  void CollectEnded();
  void End(Child& child);
  Outcome OutcomeOfChild(const Child& child, int ended);
  void PrintOutputs(std::size_t end);
  [[noreturn]] void EndBy(int number);
  void Print(const std::string& text) { outputIsWhole = console.Output(text) && outputIsWhole; }
  void PrintTotal();

  const std::vector<Job>& jobs;
  const Options& options;
  const Work& work;
  const OnEnd& onEnd;
  Console console;
  EndingSignals signals;
  std::vector<std::unique_ptr<Child>> children;
  std::vector<std::optional<std::string>> outputs;  ///< of the jobs that have ended
  std::size_t nextOutput = 0;                       ///< to be printed
  std::size_t next = 0;
  int signal = 0;  ///< that ends all; 0 for none
  int counts[3] = {};
  bool outputIsWhole = true;
  ExitStatus worst = ExitStatus::Done;
};

void Supervisor::Start(const Job& job)
{
  Pipe output;
  Pipe messages;
  std::fflush(nullptr);
  const pid_t process = fork();
  if (process < 0) {
    Explain(std::strerror(errno));
    Fatal("error: can't start another process\n");
  }
  if (process == 0)
    BecomeJob(job, output, messages);
  children.push_back(std::unique_ptr<Child>(
      new Child{job, process, {std::move(output.reading), {}}, {std::move(messages.reading), {}}}));
}

// The text results of `-o -` go to standard output itself.
void Supervisor::BecomeJob(const Job& job, const Pipe& output, const Pipe& messages)
{
  const pid_t parent = getppid();
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() != parent)
    std::exit(ErrorWriter::kExitStatus);
  signals.Restore();
  CleanUpOnSignals();
  if (!options.ToStandardOutput())
    dup2(output.writing.Number(), STDOUT_FILENO);
  dup2(messages.writing.Number(), STDERR_FILENO);
  ProgressSender sender(STDERR_FILENO);
  const Outcome outcome = work(job, sender);
  std::exit(std::fflush(stdout) == 0 ? ExitCodeOf(outcome) : ErrorWriter::kExitStatus);
}

// Waits for messages of the jobs and for signals, and handles them. On a terminal it also redraws
// the line of progress every second.
void Supervisor::Wait()
{
  std::vector<pollfd> polled = {{signals.Number(), POLLIN, 0}};
  std::vector<Source*> sources = {nullptr};
  for (const auto& child : children) {
    for (Source* source : child->Sources()) {
      if (!source->descriptor)
        continue;
      polled.push_back({source->descriptor.Number(), POLLIN, 0});
      sources.push_back(source);
    }
  }
  constexpr int kSecond = 1000;
  if (poll(polled.data(), polled.size(), console.HasTerminal() ? kSecond : -1) == 0)
    return console.Tick();
  if (polled[0].revents != 0)
    PassOn(signals.Receive());
  char part[1 << 16];
  for (std::size_t i = 1; i < polled.size(); ++i) {
    if (polled[i].revents == 0)
      continue;
    const ssize_t count = read(polled[i].fd, part, sizeof part);
    if (count > 0)
      sources[i]->text.append(part, static_cast<std::size_t>(count));
    else if (count == 0 || errno != EINTR)
      sources[i]->descriptor = Descriptor();
  }
  for (const auto& child : children)
    Hear(*child);
}

void Supervisor::PassOn(int received)
{
  signal = std::max(signal, received);
  for (const auto& child : children) {
    if (received != 0)
      kill(child->process, received);
  }
}

void Supervisor::Hear(Child& child)
{
  const std::string& file = child.job.input;
  for (std::string line; !(line = child.messages.CutLine()).empty();) {
    line.pop_back();
    if (!line.starts_with(ProgressSender::kMark))
      console.Message(file, line);
    else if (line.substr(1).starts_with(ProgressSender::kStage))
      console.Stage(file, line.substr(2));
    else
      console.Advance(file, line.substr(2));
  }
}

void Supervisor::CollectEnded()
{
  for (std::size_t i = 0; i < children.size();) {
    if (children[i]->IsOpen()) {
      ++i;
      continue;
    }
    End(*children[i]);
    children.erase(children.begin() + static_cast<std::ptrdiff_t>(i));
  }
}

void Supervisor::End(Child& child)
{
  int ended = 0;
  while (waitpid(child.process, &ended, 0) < 0 && errno == EINTR) {
  }
  if (!child.messages.text.empty())
    console.Message(child.job.input, child.messages.text);
  console.Clear();
  if (signal != 0)
    return;
  const Outcome outcome = OutcomeOfChild(child, ended);
  outputs[static_cast<std::size_t>(&child.job - jobs.data())] = std::move(child.output.text);
  const auto running = std::find(outputs.begin(), outputs.end(), std::nullopt);
  PrintOutputs(static_cast<std::size_t>(running - outputs.begin()));
  worst = std::max(worst, outcome.status);
  ++counts[static_cast<int>(outcome.status)];
  onEnd(child.job, outcome);
}

// Prints the outputs of the jobs before this one that are not printed yet.
void Supervisor::PrintOutputs(std::size_t end)
{
  for (; nextOutput < end; ++nextOutput) {
    const std::optional<std::string>& output = outputs[nextOutput];
    if (output && !output->empty())
      Print((jobs.size() > 1 ? jobs[nextOutput].input + ":\n" : "") + *output);
  }
}

Outcome Supervisor::OutcomeOfChild(const Child& child, int ended)
{
  if (WIFEXITED(ended))
    return OutcomeOf(WEXITSTATUS(ended));
  const int number = WTERMSIG(ended);
  console.Message(child.job.input, std::string("error: the run was ended by a signal: ") +
                                       strsignal(number) +
                                       (number == SIGKILL ? " (the memory may be too small)" : ""));
  return {ExitStatus::Failed};
}

// As if there were no handler, so that a shell sees the signal.
void Supervisor::EndBy(int number)
{
  console.Message("morlen-run", std::string("morlen-run: ended by a signal: ") + strsignal(number));
  std::signal(number, SIG_DFL);
  raise(number);
  signals.Restore();
  std::exit(ErrorWriter::kExitStatus);
}

void Supervisor::PrintTotal()
{
  const auto [done, doubtful, failed] = counts;
  std::string text = std::to_string(jobs.size()) + " files: " + std::to_string(done) + " solved";
  if (doubtful > 0)
    text += ", " + std::to_string(doubtful) + " solved with a bad balance or error";
  if (failed > 0)
    text += ", " + std::to_string(failed) + " not solved";
  Print(text + "\n");
}

}  // namespace

ExitStatus Supervise(const std::vector<Job>& jobs, const Options& options, const Work& work,
                     const OnEnd& onEnd)
{
  return Supervisor(jobs, options, work, onEnd).Run();
}

}  // namespace morlen::run
