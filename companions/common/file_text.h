#pragma once

#include <filesystem>
#include <istream>
#include <optional>
#include <string>

namespace morlen {

/// The bytes of a file; nothing when they cannot all be read.
std::optional<std::string> FileText(const std::filesystem::path& name);

/// The bytes of a stream from its place to its end; nothing when they cannot all be read.
std::optional<std::string> StreamText(std::istream& in);

}  // namespace morlen
