#include "common/standard_output.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>
#include <vector>

#include "base/errorwriter.h"
#include "base/link_chain.h"

namespace morlen {

namespace fs = std::filesystem;

bool IsStandardOutput(const fs::path& name)
{
  if (name == "-")
    return true;
  const std::vector<fs::path> chain = LinkChain(name);
  return std::any_of(chain.begin(), chain.end(), [](const fs::path& one) {
    return one == "/dev/stdout" || one == "/dev/fd/1" || one == "/proc/self/fd/1";
  });
}

// std::cout is synchronised with stdout and passes every character on to it: fflush(stdout) empties
// both.
void FinishStandardOutput()
{
  errno = 0;
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0 && std::cout.flush())
    return;
  if (errno != 0)
    Explain(std::strerror(errno));
  Fatal("error: can't write to standard output\n");
}

}  // namespace morlen
