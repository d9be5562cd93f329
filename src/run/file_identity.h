#pragma once

#include <string>
#include <vector>

namespace morlen {

/// A file that a run reads or writes.
struct RunFile
{
  const char* role;  ///< for messages: "problem file"
  std::string name;  ///< of the file; for standard output, its name in messages
  bool isStandardOutput = false;
};

/// Fatal when two of the names are one file, which may not exist yet. Devices and pipes may be
/// named several times.
void RequireDifferentFiles(const std::vector<RunFile>& files);

}  // namespace morlen
