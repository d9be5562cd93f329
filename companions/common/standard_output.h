#pragma once

#include <filesystem>

namespace morlen {

/// True for "-" and for the names that the system gives the standard output of this process, such
/// as "/dev/stdout". A file whose name is "-" is written as "./-".
bool IsStandardOutput(const std::filesystem::path& name);

/// Fatal when anything written to the standard output has been lost, for example because a disk is
/// full.
void FinishStandardOutput();

}  // namespace morlen
