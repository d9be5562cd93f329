// Output files that are complete or empty under their names. A present file is opened for writing
// first, as a test: the folder alone would let a write-protected file be replaced. Then a temporary
// file is made; where that is impossible or would break a link, the present file is written itself.

#include "base/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/errorwriter.h"
#include "base/link_chain.h"

namespace morlen {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void DiskIsFull()
{
  Fatal("error: Failed writing to disk. Probably the disk is full\n");
}

void RequireNoOtherWriter(const std::string& name, int lockError)
{
  if (lockError != EWOULDBLOCK)
    return;
  Explain("wait until that run has ended, or end it");
  Fatal("error: another run is writing the file ", name, "\n");
}

// Devices and pipes are opened when they are written: the opening of a pipe waits for its reader.
// Folders and sockets cannot be opened.
void RequireWritableDevice(const std::string& name, const struct stat& device)
{
  if (S_ISDIR(device.st_mode))
    CannotOpen(name, EISDIR);
  if (S_ISSOCK(device.st_mode))
    CannotOpen(name, ENXIO);
  if (faccessat(AT_FDCWD, name.c_str(), W_OK, AT_EACCESS) != 0)
    CannotOpen(name, errno);
}

// True for names such as "/dev/stdout", which others may write at the same time.
bool IsNameOfDescriptor(const std::vector<fs::path>& chain)
{
  return std::any_of(chain.begin(), chain.end(), [](const fs::path& name) {
    const std::string text = name.string();
    return text.starts_with("/proc/") || text.starts_with("/dev/fd/");
  });
}

}  // namespace

void CannotOpen(const std::string& name, int error)
{
  Explain(std::strerror(error));
  Fatal("can't open file ", name, "\n");
}

void OpenOutput(std::ofstream& file, const std::string& name)
{
  file.open(name);
  if (!file)
    CannotOpen(name, errno);
}

void CloseOutput(std::ofstream& file)
{
  file.close();
  if (!file)
    DiskIsFull();
}

OutputFile::OutputFile(const std::string& givenName) : name(givenName)
{
  struct stat status = {};
  if (stat(name.c_str(), &status) == 0) {
    if (S_ISREG(status.st_mode))
      OpenPresent(status);
    else
      RequireWritableDevice(name, status);
    return;
  }
  if (errno != ENOENT)
    CannotOpen(name, errno);
  const int error = temporary.Create(LinkChain(name).back(), nullptr);
  RequireNoOtherWriter(name, error);
  if (error != 0)
    CannotOpen(name, error);
}

void OutputFile::OpenPresent(const struct stat& status)
{
  present = Descriptor(open(name.c_str(), O_WRONLY | O_CLOEXEC));
  if (!present)
    CannotOpen(name, errno);
  const std::vector<fs::path> chain = LinkChain(name);
  const bool inPlace = status.st_nlink > 1 || IsNameOfDescriptor(chain);
  const int error = inPlace ? 0 : temporary.Create(chain.back(), &status);
  RequireNoOtherWriter(name, error);
  if (!temporary.IsCreated())
    RequireNoOtherWriter(name, LockFile(present.Number()));
}

void OutputFile::EmptyUnlessCommitted()
{
  if (present && !temporary.IsCreated())
    unfinished.Empty(present.Number());
}

void OutputFile::Empty()
{
  EmptyUnlessCommitted();
  if (present && ftruncate(present.Number(), 0) != 0)
    CannotOpen(name, errno);
}

std::ofstream& OutputFile::Stream()
{
  if (stream.is_open())
    return stream;
  EmptyUnlessCommitted();
  stream.open(WrittenName());
  if (!stream)
    CannotOpen(name, errno);
  return stream;
}

void OutputFile::Complete()
{
  if (stream.is_open())
    CloseOutput(stream);
  if (temporary.IsCreated() && temporary.Sync() != 0)
    DiskIsFull();
}

void OutputFile::Commit()
{
  Complete();
  if (temporary.IsCreated()) {
    if (const int error = temporary.Rename())
      CannotOpen(name, error);
  }
  unfinished.Release();
}

}  // namespace morlen
