#include "base/link_chain.h"

#include <system_error>

namespace morlen {

namespace fs = std::filesystem;

std::vector<fs::path> LinkChain(const fs::path& name)
{
  constexpr int kMostLinks = 40;
  std::vector<fs::path> chain = {name};
  for (int i = 0; i < kMostLinks; ++i) {
    std::error_code isNoLink;
    const fs::path target = fs::read_symlink(chain.back(), isNoLink);
    if (isNoLink)
      break;
    chain.push_back(chain.back().parent_path() / target);
  }
  return chain;
}

}  // namespace morlen
