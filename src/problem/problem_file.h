#pragma once

#include <string>
#include <string_view>

namespace morlen {

/// True when the first two words of the text, outside comments, are "problem" and "type" in any
/// case, with or without ':' or '=' after them; the first may have a value. A text that ends within
/// these words does not count.
bool BeginsLikeProblem(std::string_view text);

/// The same for a file. Only the first MiB of a regular file is looked at; other files, and files
/// that cannot be read, never count.
bool IsProblemFile(const std::string& name);

/// True for the name of a file of load cases: it ends with ".cases".
bool IsCaseFile(std::string_view name);

/// How a file that a user has written is called, "a problem file" or "a file of load cases". Null
/// for other files, and for a name without a regular file: these may be written over.
const char* KindOfSource(const std::string& name);

}  // namespace morlen
