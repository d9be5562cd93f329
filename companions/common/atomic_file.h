#pragma once

#include <filesystem>
#include <fstream>
#include <string_view>

namespace morlen {

/// A file that appears whole or not at all: it is written under a temporary name in the
/// folder of its target and takes the target's name at the end.
///
/// Until then the target keeps its old content; its permissions are kept in any case. Without
/// Commit no file remains. Fatal: a target that is not a regular file; a folder or a disk where the
/// file cannot be written.
class AtomicFile
{
public:
  explicit AtomicFile(const std::filesystem::path& name);
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;
  ~AtomicFile();

  std::ofstream& Stream() { return stream; }
  void Write(std::string_view text);

  /// Gives the file its name and prints "wrote" and the name on standard output.
  void Commit();

private:
  [[noreturn]] void Fail(int error);
  void RemoveTemporary();

  std::filesystem::path shown;   ///< as the user gave it
  std::filesystem::path target;  ///< the file at the end of symbolic links
  std::filesystem::path temporary;
  int descriptor = -1;
  std::ofstream stream;
};

}  // namespace morlen
