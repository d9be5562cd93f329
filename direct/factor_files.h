#pragma once

#include <cstdint>
#include <filesystem>
#include <list>
#include <string>

#include "base/unfinished_files.h"

namespace morlen::direct {

/// The files of factors that do not fit into memory: in the folder for temporary files (TMPDIR, or
/// /tmp), with a name that no other solver has. MUMPS makes and removes them.
class FactorFiles
{
public:
  FactorFiles();

  const std::string& Folder() const { return folder; }
  /// The beginning of the names.
  const std::string& Prefix() const { return prefix; }
  /// The bytes that are free in the folder; the largest number when that is not known.
  std::uint64_t FreeBytes() const;

  /// Lets an early end of the run remove the files that exist by now. See UnfinishedFile.
  void Watch();
  /// Removes the files that exist.
  void Remove();

private:
  template <class Visit>
  void ForEachFile(Visit visit) const;

  struct Watched
  {
    std::string name;
    UnfinishedFile file;
  };

  std::string folder;
  std::string prefix;
  std::list<Watched> watched;
};

}  // namespace morlen::direct
