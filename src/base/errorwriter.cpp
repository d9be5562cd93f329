#include "base/errorwriter.h"

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

struct ThreadReport
{
  FixedBuffer buffer;
  std::ostream stream{&buffer};
  ErrorWriter::EndOfRun endOfRun = nullptr;
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

}  // namespace

ErrorWriter::ErrorWriter()
{
  std::set_new_handler([] { Fatal("Not space available on heap"); });
}

std::ostream& ErrorWriter::Stream()
{
  return ThisThread().stream;
}

std::string_view ErrorWriter::Message() const
{
  return ThisThread().buffer.Text();
}

ErrorWriter::EndOfRun ErrorWriter::SetEndOfRun(EndOfRun end)
{
  return std::exchange(ThisThread().endOfRun, end);
}

void ErrorWriter::WriteErrorAndQuit()
{
  ThreadReport& report = ThisThread();
  // A copy: the end may report another error before it has read this text.
  char message[sizeof(FixedBuffer)];
  const std::size_t length = report.buffer.Text().copy(message, sizeof message - 1);
  message[length] = '\0';
  report.buffer.Clear();
  report.stream.clear();
  if (report.endOfRun)
    report.endOfRun({message, length});
  std::FILE* file = errorFile ? errorFile : stderr;
  std::fprintf(file, "%s", message);
  std::fflush(file);
  std::exit(kExitStatus);
}

}  // namespace morlen
