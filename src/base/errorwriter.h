#pragma once

#include <cstdio>
#include <ostream>
#include <string_view>

namespace morlen {

/// The one way in which a fatal error ends the run: the message is inserted into Stream(), then
/// WriteErrorAndQuit prints it and ends the process with exit status 2.
///
/// Each thread has its own message and its own replacement of the end; the error file is common.
/// A message has at most 2048 characters; the rest is cut. Nothing on this path allocates, so
/// that it works when memory has run out.
class ErrorWriter
{
public:
  static constexpr int kExitStatus = 2;

  /// Ends the run, given the message, instead of ending the process. It must not return: it
  /// throws, or jumps. Tests and embedding programs set one.
  using EndOfRun = void (*)(std::string_view message);

  /// Also makes a failed allocation end the run ("Not space available on heap").
  ErrorWriter();

  /// The message of the calling thread.
  std::ostream& Stream();
  std::string_view Message() const;

  /// Where messages are printed; null means standard error. The file is not owned. Set it before
  /// other threads run.
  void SetErrorFile(std::FILE* file) { errorFile = file; }

  /// Replaces the end of the process for the calling thread; null restores it. Returns the
  /// replacement set before.
  EndOfRun SetEndOfRun(EndOfRun end);

  [[noreturn]] void WriteErrorAndQuit();

private:
  std::FILE* errorFile = nullptr;
};

extern ErrorWriter errorwriter;

/// Ends the run with the given parts as the message.
template <class... Parts>
[[noreturn]] void Fatal(const Parts&... parts)
{
  (errorwriter.Stream() << ... << parts);
  errorwriter.WriteErrorAndQuit();
}

}  // namespace morlen
