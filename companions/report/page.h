#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>
#include <string_view>

#include "common/atomic_file.h"

namespace morlen {

/// Text for HTML: the characters with a meaning there are replaced by their names.
std::string HtmlText(std::string_view text);

/// Writes the page of a report: the viewer with this title and data. Bytes of the title that are
/// not ASCII become "?" when it is not UTF-8: browsers would guess the encoding of the whole page.
void WritePage(std::ostream& out, std::string_view title, std::string_view data);
/// The same as an AtomicFile.
void WritePage(const std::filesystem::path& file, std::string_view title, std::string_view data,
               AtomicFile::By writer = AtomicFile::By::Program);

}  // namespace morlen
