#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "base/descriptor.h"
#include "base/unfinished_files.h"

namespace morlen {

/// The place where the new content of a target file is written: a file in the folder of the target,
/// which takes the target's name at the end. For "model.txt" it is ".model.txt.morlen-tmp".
///
/// The name is fixed and the file is locked, so that one process at a time writes a target. A file
/// without a lock is the rest of a process that was killed; it is removed. Without Rename the
/// destructor removes the file, and so does an early end of the process (UnfinishedFile). Functions
/// return 0 or the number of the system's error.
class TemporaryFile
{
public:
  static constexpr const char* kEnding = ".morlen-tmp";

  TemporaryFile() = default;
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  /// Creates the file. present: of the target, whose owner and permissions the file gets; null for
  /// a target that does not exist. EWOULDBLOCK: another process writes the target.
  int Create(const std::filesystem::path& target, const struct stat* present);

  bool IsCreated() const { return static_cast<bool>(descriptor); }
  const std::string& Name() const { return name; }

  /// Waits until the content is on the disk.
  int Sync();
  /// Gives the file the name of its target, in place of a file there.
  int Rename();

private:
  /// One attempt. EEXIST: there is a file; EWOULDBLOCK: another process was faster.
  int CreateOnce(const struct stat* present);

  std::string target;
  std::string name;
  Descriptor descriptor;
  UnfinishedFile unfinished;
};

/// Locks an open file for this process. Returns 0 or the number of the error; EWOULDBLOCK when
/// another process has the lock.
int LockFile(int descriptor);

/// Removes the temporary files in the folder whose processes have been killed, as far as the locks
/// of the file system tell. Files of other users stay.
void RemoveStaleTemporaries(const std::filesystem::path& folder);

}  // namespace morlen
