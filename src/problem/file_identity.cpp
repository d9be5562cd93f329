// Which names stand for the same file: by device and inode, so that links and other
// spellings of a name are seen through.

#include "problem/file_identity.h"

#include <sys/stat.h>
#include <unistd.h>

#include <optional>

#include "base/errorwriter.h"

namespace {

// An existing file, or a name that is free yet in an existing folder.
struct Identity
{
  dev_t device;
  ino_t inode;           // of the file, or of the folder
  std::string freeName;  // empty for a file that exists

  bool operator==(const Identity&) const = default;
};

// None for what may be written several times, or cannot be written.
std::optional<Identity> IdentityOf(const std::string& name)
{
  struct stat found = {};
  const int result = name.empty() ? fstat(STDOUT_FILENO, &found) : stat(name.c_str(), &found);
  if (result == 0) {
    if (!S_ISREG(found.st_mode))
      return {};
    return Identity{found.st_dev, found.st_ino, {}};
  }
  const std::size_t slash = name.rfind('/');
  const std::string folder = slash == std::string::npos ? "." : name.substr(0, slash + 1);
  const std::string last = slash == std::string::npos ? name : name.substr(slash + 1);
  if (last.empty() || stat(folder.c_str(), &found) != 0)
    return {};
  return Identity{found.st_dev, found.st_ino, last};
}

}  // namespace

void RequireDifferentFiles(const std::vector<RunFile>& files)
{
  std::vector<std::optional<Identity>> identities;
  for (const RunFile& file : files) {
    const std::optional<Identity> own = IdentityOf(file.name);
    for (std::size_t i = 0; own && i < identities.size(); ++i) {
      if (identities[i] == own)
        Fatal("error: the ", files[i].role, " and the ", file.role,
              " are the same file: ", file.name.empty() ? "standard output" : file.name, "\n");
    }
    identities.push_back(own);
  }
}
