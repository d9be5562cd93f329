#pragma once

#include <filesystem>
#include <vector>

namespace morlen {

/// The name, then every name that it leads to by symbolic links of its last part. The last one is
/// no link, and may not exist; in a circle of links the chain is cut.
std::vector<std::filesystem::path> LinkChain(const std::filesystem::path& name);

}  // namespace morlen
