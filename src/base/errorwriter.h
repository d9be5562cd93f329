#pragma once

#include <cstdio>
#include <ostream>
#include <streambuf>
#include <string_view>

namespace morlen {

/// The one way a fatal error ends the run: its text is inserted into Stream(),
/// then WriteErrorAndQuit prints it and ends the process with exit status 2.
///
/// The text is held in a fixed buffer; what does not fit is cut. Nothing on this
/// path allocates, so that it works when memory has run out.
class ErrorWriter
{
public:
  static constexpr int kExitStatus = 2;

  /// What ends the run in place of the process, given the message. It must not
  /// return: it throws, or jumps. Tests and embedding programs set one.
  using EndOfRun = void (*)(std::string_view message);

  /// Also makes a failed allocation end the run ("Not space available on heap").
  ErrorWriter();

  std::ostream& Stream() { return stream; }
  std::string_view Message() const { return buffer.Text(); }

  /// Where messages go; null means standard error. The file is not owned.
  void SetErrorFile(std::FILE* file) { errorFile = file; }

  /// Replaces the end of the process; null restores it. Returns the one set before.
  EndOfRun SetEndOfRun(EndOfRun end);

  [[noreturn]] void WriteErrorAndQuit();

private:
  class FixedBuffer : public std::streambuf
  {
  public:
    FixedBuffer() { Clear(); }
    void Clear() { setp(text, text + sizeof text); }
    std::string_view Text() const;

  private:
    char text[2048];
  };

  std::FILE* errorFile = nullptr;
  EndOfRun endOfRun = nullptr;
  FixedBuffer buffer;
  std::ostream stream;
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
