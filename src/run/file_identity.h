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

/// Fatal when one of the files to be written is a problem file or a file of load cases.
void RequireNoSource(const std::vector<RunFile>& outputs);

/// True when the file is one of the others under any name.
bool IsAmong(const RunFile& file, const std::vector<RunFile>& others);

}  // namespace morlen
