#include "base/errorwriter.h"

#include <cstdlib>
#include <new>

namespace morlen {

ErrorWriter errorwriter;

std::string_view ErrorWriter::FixedBuffer::Text() const
{
  return {pbase(), static_cast<std::size_t>(pptr() - pbase())};
}

ErrorWriter::ErrorWriter() : stream(&buffer)
{
  std::set_new_handler([] { Fatal("Not space available on heap"); });
}

ErrorWriter::EndOfRun ErrorWriter::SetEndOfRun(EndOfRun end)
{
  const EndOfRun previous = endOfRun;
  endOfRun = end;
  return previous;
}

void ErrorWriter::WriteErrorAndQuit()
{
  // Two copies: the hook's caller may report again before it has read this text.
  char message[sizeof(FixedBuffer)];
  const std::size_t length = buffer.Text().copy(message, sizeof message - 1);
  message[length] = '\0';
  buffer.Clear();
  stream.clear();
  if (endOfRun)
    endOfRun({message, length});
  std::FILE* file = errorFile ? errorFile : stderr;
  std::fprintf(file, "%s", message);
  std::fflush(file);
  std::exit(kExitStatus);
}

}  // namespace morlen
