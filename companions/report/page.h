#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace morlen {

/// Text with the signs that mean something in HTML written by their names.
std::string HtmlText(std::string_view text);

/// Writes the page of a report: the viewer with this title and data. Fatal when it cannot be
/// written.
void WritePage(const std::filesystem::path& file, std::string_view title, std::string_view data);

}  // namespace morlen
