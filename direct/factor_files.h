#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "base/unfinished_files.h"

namespace morlen::direct {

/// The files of factors that do not fit into memory: in a new folder inside the folder for
/// temporary files (TMPDIR, or /tmp). MUMPS makes the files. The end of the object removes the new
/// folder, and so does an early end of the run: see UnfinishedFile.
class FactorFiles
{
public:
  FactorFiles();

  /// The folder for temporary files.
  const std::string& Place() const { return place; }
  /// The bytes that are free there; the largest number when that is not known.
  std::uint64_t FreeBytes() const;

  /// The sizes of factors in files, in bytes.
  struct Room
  {
    std::uint64_t memory = 0;
    std::uint64_t files = 0;
  };
  /// The hint of a solver whose factors fit neither into memory nor into files.
  std::string Need(const Room& needed, const Room& free) const;

  /// Makes the new folder and writes its name and the beginning of the names of the files, for
  /// MUMPS (`ooc_tmpdir`, `ooc_prefix`). Returns false when there is no room for the name.
  ///
  /// Where the folder cannot be made, it is the folder for temporary files: MUMPS then says that it
  /// cannot make its files.
  template <std::size_t folderSize, std::size_t prefixSize>
  bool MakeFolder(char (&folderName)[folderSize], char (&prefix)[prefixSize])
  {
    return Copy(Make(), folderName) && Copy("factors", prefix);
  }
  /// Removes the new folder and its files.
  void Remove();

private:
  const std::string& Make();
  template <std::size_t size>
  static bool Copy(const std::string& text, char (&to)[size])
  {
    to[text.copy(to, size - 1)] = '\0';
    return text.size() < size;
  }

  std::string place;
  std::string folder;  ///< empty before Make
  UnfinishedFile unfinished;
};

}  // namespace morlen::direct
