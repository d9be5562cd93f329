#pragma once

#include <string>
#include <string_view>

namespace morlen {

/// Says what a file is that has no header of a problem file: empty, binary, text of two bytes a
/// character, or the input of another program. An empty text when the beginning of the file does
/// not tell. beginning: the file, or at least its first 4096 bytes.
std::string JudgeForeignFile(std::string_view beginning);

/// Fatal when the name is that of a folder.
void RefuseFolder(const std::string& name);

}  // namespace morlen
