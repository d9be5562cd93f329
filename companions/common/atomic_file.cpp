#include "common/atomic_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "base/errorwriter.h"

namespace morlen {

namespace fs = std::filesystem;

namespace {

// The permissions of a new file: reading and writing, less the mask of the process.
mode_t UsualPermissions()
{
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

// Permissions of the present file, or the usual ones without a file. Fatal when it is not a regular
// file: a device or a folder must not be replaced.
mode_t PermissionsFor(const fs::path& target, const fs::path& shown)
{
  struct stat status;
  if (stat(target.c_str(), &status) != 0)
    return UsualPermissions();
  if (!S_ISREG(status.st_mode))
    Fatal("can't write file ", shown.string(), ": it is no regular file\n");
  return status.st_mode & 07777;
}

// The file that a name leads to through symbolic links.
fs::path ResolveLinks(const fs::path& name)
{
  std::error_code error;
  const fs::path resolved = fs::weakly_canonical(name, error);
  return error ? name : resolved;
}

}  // namespace

AtomicFile::AtomicFile(const fs::path& name) : shown(name), target(ResolveLinks(name))
{
  const mode_t permissions = PermissionsFor(target, shown);
  std::string hidden = ".";
  hidden += target.filename().string().substr(0, 200);
  hidden += ".XXXXXX";
  std::string pattern = (target.parent_path() / hidden).string();
  descriptor = mkstemp(pattern.data());
  if (descriptor < 0)
    Fail(errno);
  temporary = pattern;
  if (fchmod(descriptor, permissions) != 0)
    Fail(errno);
  stream.open(temporary, std::ios::binary);
  if (!stream)
    Fail(errno);
}

AtomicFile::~AtomicFile()
{
  RemoveTemporary();
}

void AtomicFile::Write(std::string_view text)
{
  stream.write(text.data(), static_cast<std::streamsize>(text.size()));
}

void AtomicFile::Commit()
{
  errno = 0;
  stream.close();
  if (!stream || fsync(descriptor) != 0)
    Fail(errno);
  if (std::rename(temporary.c_str(), target.c_str()) != 0)
    Fail(errno);
  temporary.clear();
  std::printf("wrote %s\n", shown.c_str());
}

// Removes the temporary file first: Fatal may end the process, which runs no destructor.
void AtomicFile::Fail(int error)
{
  RemoveTemporary();
  Fatal("can't write file ", shown.string(), ": ", error ? std::strerror(error) : "disk full?",
        "\n");
}

void AtomicFile::RemoveTemporary()
{
  if (descriptor >= 0)
    close(descriptor);
  descriptor = -1;
  if (!temporary.empty())
    unlink(temporary.c_str());
  temporary.clear();
}

}  // namespace morlen
