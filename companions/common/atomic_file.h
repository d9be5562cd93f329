#pragma once

#include <filesystem>
#include <fstream>
#include <string_view>

#include "base/output_file.h"

namespace morlen {

/// An OutputFile of a companion: Commit tells the user its name.
///
/// Until Commit the target keeps its old content. Without Commit no file remains, also after a
/// signal. Fatal: a target that RefuseSources refuses, or that is no regular file (a device or a
/// folder); a folder or a disk where the file cannot be written.
class AtomicFile
{
public:
  explicit AtomicFile(const std::filesystem::path& name);

  std::ofstream& Stream() { return file.Stream(); }
  void Write(std::string_view text);

  /// Finishes the file; prints "wrote" and its name on standard output.
  void Commit();

private:
  std::filesystem::path name;
  OutputFile file;
};

}  // namespace morlen
