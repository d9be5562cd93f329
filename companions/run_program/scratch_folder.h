#pragma once

#include <filesystem>
#include <string>

#include "base/unfinished_files.h"

namespace morlen::run {

/// A new folder for temporary files, removed with them at the end of the scope or of the process.
class ScratchFolder
{
public:
  /// In the folder for temporary files of the system (TMPDIR). Fatal when that fails.
  ScratchFolder();

  std::filesystem::path Path() const { return name; }

private:
  std::string name;
  UnfinishedFile unfinished;
};

/// A folder of results, which is made unless it exists. Until Keep a folder that has been made is
/// removed at the end of the scope or of the process.
class NewFolder
{
public:
  /// Fatal when the folder cannot be made.
  explicit NewFolder(const std::filesystem::path& folder);

  std::filesystem::path Path() const { return name; }
  void Keep() { unfinished.Release(); }

private:
  std::string name;
  UnfinishedFile unfinished;
};

}  // namespace morlen::run
