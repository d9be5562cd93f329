#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace morlen {

/// The bytes of a file; nothing when they cannot all be read.
std::optional<std::string> FileText(const std::filesystem::path& name);

}  // namespace morlen
