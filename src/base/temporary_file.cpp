// Temporary files with a fixed name and a lock.
//
// A process creates the file only when there is none, and then locks it. The system drops the lock
// when the process ends in any way. A file that exists and can be locked is therefore stale, and
// is removed. Between two steps of one process the file may get another name or vanish by the
// steps of another process: after a lock, and before a rename, the name is compared with the open
// file. Some network drives have no locks. There a file that exists counts as stale, and a process
// whose file has been removed fails at the end.

#include "base/temporary_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <functional>
#include <system_error>
#include <utility>

#include "base/signals_held.h"

namespace morlen {

namespace fs = std::filesystem;

namespace {

// The temporary name for a target. The end of a long name is replaced by its hash: names of files
// have at most 255 bytes.
std::string NameFor(const fs::path& target)
{
  constexpr std::size_t kLongest = 200;
  std::string file = target.filename().string();
  if (file.size() > kLongest) {
    const std::size_t hash = std::hash<std::string>()(file);
    file = file.substr(0, kLongest) + std::to_string(hash);
  }
  return (target.parent_path() / ("." + file + TemporaryFile::kEnding)).string();
}

bool HasName(int descriptor, const char* name)
{
  struct stat opened = {};
  struct stat named = {};
  return fstat(descriptor, &opened) == 0 && lstat(name, &named) == 0 &&
         opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

Descriptor OpenExisting(const char* name)
{
  constexpr int kFlags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  Descriptor file(open(name, O_RDWR | kFlags));  // locks of network drives need the right to write
  if (!file && errno == EACCES)
    file = Descriptor(open(name, O_RDONLY | kFlags));
  return file;
}

enum class Unlocked
{
  IsStale,
  MayBeUsed
};

// Removes the file when no process has locked it; where there are no locks, `unlocked` decides.
// EWOULDBLOCK: it is locked.
int RemoveIfStale(const char* name, Unlocked unlocked)
{
  const Descriptor file = OpenExisting(name);
  if (!file)
    return errno == ENOENT ? 0 : errno;
  struct stat status = {};
  if (fstat(file.Number(), &status) != 0 || !S_ISREG(status.st_mode))
    return EEXIST;
  const int error = LockFile(file.Number());
  if (error == EWOULDBLOCK || (error != 0 && unlocked == Unlocked::MayBeUsed))
    return error;
  if (HasName(file.Number(), name) && unlink(name) != 0)
    return errno;
  return 0;
}

// Gives a new file the owner and the permissions of another one.
int CopyAttributes(const struct stat& from, int descriptor)
{
  struct stat own = {};
  if (fstat(descriptor, &own) != 0)
    return errno;
  const bool sameOwner = own.st_uid == from.st_uid && own.st_gid == from.st_gid;
  if (!sameOwner && fchown(descriptor, from.st_uid, from.st_gid) != 0)
    return errno;
  return fchmod(descriptor, from.st_mode & 07777) == 0 ? 0 : errno;
}

}  // namespace

int LockFile(int descriptor)
{
  return flock(descriptor, LOCK_EX | LOCK_NB) == 0 ? 0 : errno;
}

int TemporaryFile::Create(const fs::path& targetName, const struct stat* present)
{
  if (!targetName.has_filename())
    return targetName.empty() ? ENOENT : EISDIR;
  target = targetName.string();
  name = NameFor(targetName);
  // A process that removes a stale file has it locked for a moment.
  constexpr int kAttempts = 100;
  constexpr useconds_t kPause = 1000;
  for (int i = 0; i < kAttempts; ++i) {
    int error = CreateOnce(present);
    if (error == EEXIST)
      error = RemoveIfStale(name.c_str(), Unlocked::IsStale);
    else if (error != EWOULDBLOCK)
      return error;
    if (error == EWOULDBLOCK)
      usleep(kPause);
    else if (error != 0)
      return error;
  }
  return EWOULDBLOCK;
}

int TemporaryFile::CreateOnce(const struct stat* present)
{
  const SignalsHeld held;  // a signal in between would leave a file that nobody removes
  const mode_t permissions = present ? 0600 : 0666;  // less the mask of the process
  Descriptor created(
      open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, permissions));
  if (!created)
    return errno;
  // Until it is locked, another process may take the file for stale.
  if (LockFile(created.Number()) == EWOULDBLOCK || !HasName(created.Number(), name.c_str()))
    return EWOULDBLOCK;
  unfinished.Remove(name.c_str());
  const int error = present ? CopyAttributes(*present, created.Number()) : 0;
  if (error != 0)
    unfinished.CleanUp();
  else
    descriptor = std::move(created);
  return error;
}

int TemporaryFile::Sync()
{
  const bool synced = fsync(descriptor.Number()) == 0;
  const bool unknown = errno == EINVAL || errno == ENOTSUP;  // by this file system
  return synced || unknown ? 0 : errno;
}

int TemporaryFile::Rename()
{
  if (!HasName(descriptor.Number(), name.c_str()))
    return ENOENT;
  if (std::rename(name.c_str(), target.c_str()) != 0)
    return errno;
  unfinished.Release();
  return 0;
}

void RemoveStaleTemporaries(const fs::path& folder)
{
  std::error_code end;
  for (fs::directory_iterator entry(folder, end); !end && entry != fs::directory_iterator();
       entry.increment(end)) {
    const std::string file = entry->path().filename().string();
    struct stat status = {};
    if (file.starts_with('.') && file.ends_with(TemporaryFile::kEnding) &&
        lstat(entry->path().c_str(), &status) == 0 && status.st_uid == geteuid())
      RemoveIfStale(entry->path().c_str(), Unlocked::MayBeUsed);
  }
}

}  // namespace morlen
