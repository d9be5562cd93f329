#pragma once

#include <cstdio>
#include <ostream>
#include <string_view>

namespace morlen {

/// The one way in which a fatal error ends the run: the message is inserted into Stream(), then
/// WriteErrorAndQuit prints it and ends the process with exit status 2.
///
/// A hint may explain the message; it is printed after it, on a line that begins with "hint: ". A
/// warning does not end the run.
///
/// Each thread has its own texts, its own replacement of the end and its own error file.
/// A text has at most 2048 characters; the rest is cut. Nothing on this path allocates, so
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

  /// Hears a warning, one line without a newline, instead of standard error. It returns.
  using WarningListener = void (*)(std::string_view warning);

  /// The message of the calling thread.
  std::ostream& Stream();
  std::string_view Message() const;

  /// The hint for the next error of the calling thread, empty again after it: see Explain.
  std::ostream& HintStream();
  /// The hint of the thread's last error, without "hint: "; empty when it had none. The
  /// replacement of the end reads it.
  std::string_view Hint() const;
  /// Forgets a hint whose error has not come.
  void DropHint();

  /// Where messages of the calling thread are printed; null means standard error. The file is not
  /// owned.
  void SetErrorFile(std::FILE* file);

  /// Replaces the end of the process for the calling thread; null restores it. Returns the
  /// replacement set before.
  EndOfRun SetEndOfRun(EndOfRun end);

  /// Replaces the output of warnings for the calling thread; null restores it. Returns the
  /// replacement set before.
  WarningListener SetWarningListener(WarningListener listener);

  [[noreturn]] void WriteErrorAndQuit();

  /// Prints "warning: ", the text and a newline on standard error, and flushes it.
  void WriteWarning(std::string_view text);
};

extern ErrorWriter errorwriter;

/// Makes the parts the hint of the next error, in place of a hint before. One line, in plain words,
/// about the cause and the mend.
template <class... Parts>
void Explain(const Parts&... parts)
{
  errorwriter.DropHint();
  (errorwriter.HintStream() << ... << parts);
}

/// Ends the run with the given parts as the message.
template <class... Parts>
[[noreturn]] void Fatal(const Parts&... parts)
{
  (errorwriter.Stream() << ... << parts);
  errorwriter.WriteErrorAndQuit();
}

}  // namespace morlen
