#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <string_view>

#include "problem/problem_file.h"

// The files that a user has written and that no result may replace.
namespace morlen {

/// Fatal when the file to be written exists and is a problem file or a file of load cases, also
/// under the name of a link.
void RefuseSources(const std::filesystem::path& output);

/// Fatal when the file to be written is one of the inputs under any name. hint: for the error; may
/// be empty.
void RefuseInputs(const std::filesystem::path& output,
                  std::span<const std::filesystem::path> inputs, std::string_view hint = {});

/// Fatal when two of the files to be written are one.
void RefuseEqual(std::span<const std::optional<std::filesystem::path>> outputs);

}  // namespace morlen
