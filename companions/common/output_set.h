#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "base/output_file.h"

namespace morlen {

/// Files that get their names together, at the end of a run: an early end leaves the old files.
///
/// An OutputFile keeps its content under a temporary name until it is committed. A file that is
/// written in place (see OutputFile) is an exception.
class OutputSet
{
public:
  /// A new file of the set. Fatal as OutputFile, and for a target that is a problem file or no
  /// regular file. The reference is valid until Commit.
  OutputFile& Open(const std::filesystem::path& name);

  /// Takes a file whose content is complete, and closes it. Fatal when something written to it has
  /// been lost.
  void Take(const std::filesystem::path& name, std::unique_ptr<OutputFile> file);

  /// Removes a file of an earlier run at Commit.
  void RemoveAtCommit(const std::filesystem::path& name) { stale.push_back(name); }

  /// The files that Commit will remove.
  const std::vector<std::filesystem::path>& Stale() const { return stale; }

  /// Flushes the files, so that others can read them under their temporary names. Fatal when
  /// something written has been lost.
  void Flush();

  /// Closes the files and waits until they are on the disk; then only their names are missing, and
  /// Commit is quick. Fatal when something written has been lost.
  void Complete();

  struct Member
  {
    std::filesystem::path name;
    std::unique_ptr<OutputFile> file;
    bool isComplete = false;  ///< nothing may be written any more
  };
  const std::vector<Member>& Members() const { return members; }

  /// Removes the files of earlier runs, and gives all files their names, in the order in which they
  /// were opened. Fatal when that fails.
  void Commit();

private:
  std::vector<Member> members;
  std::vector<std::filesystem::path> stale;
};

}  // namespace morlen
