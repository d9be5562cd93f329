#pragma once

#include <cstddef>
#include <cstdio>
#include <exception>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/errorwriter.h"
#include "base/interruption.h"

namespace morlen::python {

/// A fatal error as an exception. The texts have their own memory, because memory may have run out.
struct FatalError
{
  char message[2048];
  char hint[2048];  ///< empty without one

  std::string_view Message() const { return message; }
  std::string_view Hint() const { return hint; }
};

/// While it exists, fatal errors of its thread are thrown as FatalError, warnings are collected,
/// and long computations ask whether they shall end. Sessions of one thread may be nested.
class Session
{
public:
  /// poll: called about ten times a second during long computations; it may throw to end them.
  explicit Session(std::function<void()> poll = {});
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session();

  const std::vector<std::string>& Warnings() const { return warnings; }

  /// Ends the computation by this exception as soon as it asks.
  void EndBy(std::exception_ptr exception) { pending = std::move(exception); }

  /// True when a session of this thread exists.
  static bool IsOpen();

private:
  static void Test();
  void AskPoll();

  std::function<void()> poll;
  std::vector<std::string> warnings;
  std::exception_ptr pending;
  bool ended = false;  ///< an exception is on its way
  long long nextPoll = 0;
  Session* outer;
  ErrorWriter::EndOfRun outerEnd;
  ErrorWriter::WarningListener outerListener;
  InterruptionTest outerTest;
};

/// A stream whose lines go to a function. An exception of the function ends the computation of the
/// session.
class ProgressStream
{
public:
  /// The session is borrowed. An empty function makes no stream.
  ProgressStream(Session& session, std::function<void(std::string_view)> hear);
  ProgressStream(const ProgressStream&) = delete;
  ProgressStream& operator=(const ProgressStream&) = delete;
  ~ProgressStream();

  std::FILE* File() const { return file; }  ///< null without a function

private:
  static ssize_t Write(void* cookie, const char* text, std::size_t size);
  void Append(std::string_view text);

  Session& session;
  std::function<void(std::string_view)> hear;
  std::string line;
  std::FILE* file = nullptr;
};

/// Makes a failed allocation outside of all sessions an exception as usual; within one it is a
/// fatal error of the library. For the whole process.
void ShareNewHandler();

}  // namespace morlen::python
