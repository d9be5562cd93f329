#include "session.h"

#include <ctime>
#include <new>
#include <utility>

namespace morlen::python {

namespace {

constinit thread_local Session* current = nullptr;

constexpr long long kMillisecondsBetweenPolls = 100;

// The coarse clock is read in a few nanoseconds.
long long Milliseconds()
{
  std::timespec now{};
  clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
  return now.tv_sec * 1000LL + now.tv_nsec / 1000000;
}

template <std::size_t size>
void CopyText(std::string_view from, char (&to)[size])
{
  to[from.copy(to, size - 1)] = '\0';
}

[[noreturn]] void ThrowFatal(std::string_view message)
{
  FatalError error;
  CopyText(message, error.message);
  CopyText(errorwriter.Hint(), error.hint);
  throw error;
}

}  // namespace

Session::Session(std::function<void()> poll_)
    : poll(std::move(poll_)),
      nextPoll(Milliseconds() + kMillisecondsBetweenPolls),
      outer(std::exchange(current, this)),
      outerEnd(errorwriter.SetEndOfRun([](std::string_view message) { ThrowFatal(message); })),
      outerListener(errorwriter.SetWarningListener(
          [](std::string_view warning) { current->warnings.emplace_back(warning); })),
      outerTest(std::exchange(interruptionTest, &Session::Test))
{
}

Session::~Session()
{
  interruptionTest = outerTest;
  errorwriter.SetWarningListener(outerListener);
  errorwriter.SetEndOfRun(outerEnd);
  errorwriter.DropHint();
  current = outer;
}

bool Session::IsOpen()
{
  return current != nullptr;
}

void Session::Test()
{
  Session& session = *current;
  if (session.ended)
    return;
  if (session.pending) {
    session.ended = true;
    std::rethrow_exception(std::exchange(session.pending, nullptr));
  }
  if (session.poll && Milliseconds() >= session.nextPoll)
    session.AskPoll();
}

void Session::AskPoll()
{
  ended = true;  // unless it returns
  poll();
  ended = false;
  nextPoll = Milliseconds() + kMillisecondsBetweenPolls;
}

ProgressStream::ProgressStream(Session& session_, std::function<void(std::string_view)> hear_)
    : session(session_), hear(std::move(hear_))
{
  if (!hear)
    return;
  file =
      fopencookie(this, "w", {.read = nullptr, .write = Write, .seek = nullptr, .close = nullptr});
  if (!file)
    Fatal("Not space available on heap");
}

ProgressStream::~ProgressStream()
{
  if (file)
    std::fclose(file);
}

// The exception must not pass through the C library.
ssize_t ProgressStream::Write(void* cookie, const char* text, std::size_t size)
{
  ProgressStream& stream = *static_cast<ProgressStream*>(cookie);
  try {
    stream.Append({text, size});
  } catch (...) {
    stream.hear = [](std::string_view) {};
    stream.session.EndBy(std::current_exception());
  }
  return static_cast<ssize_t>(size);
}

void ProgressStream::Append(std::string_view text)
{
  for (std::size_t end; (end = text.find('\n')) != std::string_view::npos;) {
    line += text.substr(0, end);
    text.remove_prefix(end + 1);
    const std::string whole = std::exchange(line, {});
    if (!whole.empty())
      hear(whole);
  }
  line += text;
}

void ShareNewHandler()
{
  std::set_new_handler([] {
    if (!Session::IsOpen())
      throw std::bad_alloc();
    Fatal("Not space available on heap");
  });
}

}  // namespace morlen::python
