#pragma once

#include <string>
#include <vector>

namespace morlen {

/// A file that a run reads or writes.
struct RunFile
{
  const char* role;  ///< what it is to the user: "problem file"
  std::string name;  ///< of the file, or of the standard output for the user
  bool isStandardOutput = false;
};

/// Fatal when two of the files are one: the same regular file, under whatever names, or one
/// that does not exist yet. Devices and pipes may stand several times.
void RequireDifferentFiles(const std::vector<RunFile>& files);

}  // namespace morlen
