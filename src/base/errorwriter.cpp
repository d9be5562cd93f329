#include "base/errorwriter.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <streambuf>
#include <utility>

namespace morlen {

ErrorWriter errorwriter;

namespace {

// Fixed storage of a message; text beyond its end is cut.
class FixedBuffer : public std::streambuf
{
public:
  FixedBuffer() { Clear(); }
  void Clear() { setp(text, text + sizeof text); }
  std::string_view Text() const { return {pbase(), static_cast<std::size_t>(pptr() - pbase())}; }

private:
  char text[2048];
};

struct Text
{
  FixedBuffer buffer;
  std::ostream stream{&buffer};

  void Clear()
  {
    buffer.Clear();
    stream.clear();
  }
};

// A text with its own memory: the original may be gone when the next error uses the text.
struct TextCopy
{
  explicit TextCopy(std::string_view text = {}) : length(text.copy(characters, sizeof characters))
  {
  }
  std::string_view View() const { return {characters, length}; }

  char characters[2048];
  std::size_t length;
};

struct ThreadReport
{
  Text message;
  Text hint;
  TextCopy lastHint;
  ErrorWriter::EndOfRun endOfRun = nullptr;
  ErrorWriter::WarningListener listener = nullptr;
  std::FILE* errorFile = nullptr;
};

// The report of the calling thread. It is never destroyed: to register a destructor would allocate.
ThreadReport& ThisThread()
{
  alignas(ThreadReport) static thread_local std::byte place[sizeof(ThreadReport)];
  static thread_local ThreadReport* report = nullptr;
  if (!report)
    report = new (place) ThreadReport;
  return *report;
}

std::string_view UpToFirstNull(std::string_view text)
{
  return text.substr(0, text.find('\0'));
}

// Prints a text up to its first null character.
void Print(std::FILE* file, std::string_view text)
{
  const std::string_view shown = UpToFirstNull(text);
  std::fwrite(shown.data(), 1, shown.size(), file);
}

}  // namespace

ErrorWriter::ErrorWriter()
{
  std::set_new_handler([] { Fatal("Not space available on heap"); });
}

std::ostream& ErrorWriter::Stream()
{
  return ThisThread().message.stream;
}

std::string_view ErrorWriter::Message() const
{
  return ThisThread().message.buffer.Text();
}

std::ostream& ErrorWriter::HintStream()
{
  return ThisThread().hint.stream;
}

std::string_view ErrorWriter::Hint() const
{
  return ThisThread().lastHint.View();
}

void ErrorWriter::DropHint()
{
  ThisThread().hint.Clear();
}

void ErrorWriter::SetErrorFile(std::FILE* file)
{
  ThisThread().errorFile = file;
}

ErrorWriter::EndOfRun ErrorWriter::SetEndOfRun(EndOfRun end)
{
  return std::exchange(ThisThread().endOfRun, end);
}

ErrorWriter::WarningListener ErrorWriter::SetWarningListener(WarningListener listener)
{
  return std::exchange(ThisThread().listener, listener);
}

void ErrorWriter::WriteErrorAndQuit()
{
  ThreadReport& report = ThisThread();
  // A copy: the end may report another error before it has read this text.
  const TextCopy message(report.message.buffer.Text());
  report.lastHint = TextCopy(report.hint.buffer.Text());
  report.message.Clear();
  report.hint.Clear();
  if (report.endOfRun)
    report.endOfRun(message.View());
  std::FILE* file = report.errorFile ? report.errorFile : stderr;
  Print(file, message.View());
  if (report.lastHint.length > 0) {
    Print(file, UpToFirstNull(message.View()).ends_with('\n') ? "hint: " : "\nhint: ");
    Print(file, report.lastHint.View());
    Print(file, "\n");
  }
  std::fflush(file);
  std::exit(kExitStatus);
}

void ErrorWriter::WriteWarning(std::string_view text)
{
  if (const WarningListener listener = ThisThread().listener)
    return listener(text);
  Print(stderr, "warning: ");
  Print(stderr, text);
  Print(stderr, "\n");
  std::fflush(stderr);
}

}  // namespace morlen
