#pragma once

#include <filesystem>
#include <fstream>
#include <string_view>

#include "base/output_file.h"

namespace morlen {

/// An OutputFile of a companion: Commit tells the user its name.
///
/// Until Commit the target keeps its old content. Without Commit no file remains, also after a
/// signal. Fatal: a target that is a problem file, or no regular file (a device or a folder); a
/// folder or a disk where the file cannot be written.
class AtomicFile
{
public:
  /// By a program, signals that end the process clean up, and Commit tells the user; by a library
  /// neither.
  enum class By : bool
  {
    Program,
    Library
  };

  explicit AtomicFile(const std::filesystem::path& name, By writer = By::Program);

  std::ofstream& Stream() { return file.Stream(); }
  void Write(std::string_view text);

  /// Finishes the file. A program prints "wrote" and its name on standard output.
  void Commit();

private:
  std::filesystem::path name;
  OutputFile file;
  By by;
};

}  // namespace morlen
