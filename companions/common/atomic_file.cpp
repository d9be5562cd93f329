#include "common/atomic_file.h"

#include <cstdio>
#include <string>
#include <system_error>

#include "base/errorwriter.h"
#include "base/unfinished_files.h"
#include "common/source_files.h"

namespace morlen {

namespace fs = std::filesystem;

namespace {

// Returns the name of a file that may be written.
std::string Checked(const fs::path& name)
{
  std::error_code absent;
  if (fs::exists(name, absent) && !fs::is_regular_file(name, absent))
    Fatal("can't write file ", name.string(), ": it is no regular file\n");
  RefuseSources(name);
  return name.string();
}

}  // namespace

AtomicFile::AtomicFile(const fs::path& givenName) : name(givenName), file(Checked(givenName))
{
  CleanUpOnSignals();
}

void AtomicFile::Write(std::string_view text)
{
  Stream().write(text.data(), static_cast<std::streamsize>(text.size()));
}

void AtomicFile::Commit()
{
  file.Stream();  // an empty file is written too
  file.Commit();
  std::printf("wrote %s\n", name.c_str());
}

}  // namespace morlen
