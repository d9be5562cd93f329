#include "run/process_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>

namespace morlen {

void ProtectStreams()
{
  // open() returns the lowest free descriptor, which is `stream` here. Input is opened for writing
  // and output for reading, so that their use fails as on a closed stream.
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (fcntl(stream, F_GETFD) == -1)
      open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace morlen
