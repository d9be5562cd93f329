// Two names are the same file when device and inode are the same. This also finds links and other
// spellings of a path. A file that does not exist yet is identified by its folder and its name.

#include "run/file_identity.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <optional>

#include "base/errorwriter.h"
#include "base/link_chain.h"
#include "problem/problem_file.h"

namespace morlen {

namespace {

namespace fs = std::filesystem;

// An existing file, or an unused name in an existing folder.
struct Identity
{
  dev_t device;
  ino_t inode;           // of the file, or of the folder
  std::string freeName;  // the unused name; empty for a file that exists

  bool operator==(const Identity&) const = default;
};

// Empty for names that need no check: devices and pipes can be written several times, and files in
// missing folders cannot be opened.
std::optional<Identity> IdentityOf(const RunFile& file)
{
  struct stat found = {};
  const int result =
      file.isStandardOutput ? fstat(STDOUT_FILENO, &found) : stat(file.name.c_str(), &found);
  if (result == 0) {
    if (!S_ISREG(found.st_mode))
      return {};
    return Identity{found.st_dev, found.st_ino, {}};
  }
  const fs::path name = LinkChain(file.name).back();
  const fs::path folder = name.has_parent_path() ? name.parent_path() : ".";
  if (!name.has_filename() || stat(folder.c_str(), &found) != 0)
    return {};
  return Identity{found.st_dev, found.st_ino, name.filename().string()};
}

}  // namespace

void RequireDifferentFiles(const std::vector<RunFile>& files)
{
  std::vector<std::optional<Identity>> identities;
  for (const RunFile& file : files) {
    const std::optional<Identity> own = IdentityOf(file);
    for (std::size_t i = 0; own && i < identities.size(); ++i) {
      if (identities[i] == own)
        Fatal("error: the ", files[i].role, " and the ", file.role,
              " are the same file: ", file.name, "\n");
    }
    identities.push_back(own);
  }
}

void RequireNoSource(const std::vector<RunFile>& outputs)
{
  for (const RunFile& file : outputs) {
    const char* kind = file.isStandardOutput ? nullptr : KindOfSource(file.name);
    if (!kind)
      continue;
    Explain("a run takes one problem file, after the options; the files that it writes have other ",
            "names");
    Fatal("error: the ", file.role, " ", file.name, " is ", kind, " and would be written over\n");
  }
}

bool IsAmong(const RunFile& file, const std::vector<RunFile>& others)
{
  const std::optional<Identity> own = IdentityOf(file);
  return own && std::any_of(others.begin(), others.end(),
                            [&](const RunFile& other) { return IdentityOf(other) == own; });
}

}  // namespace morlen
