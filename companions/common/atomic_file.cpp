#include "common/atomic_file.h"

#include <algorithm>
#include <iostream>
#include <string>
#include <system_error>

#include "base/errorwriter.h"
#include "base/unfinished_files.h"
#include "common/source_files.h"
#include "common/standard_output.h"

namespace morlen {

namespace fs = std::filesystem;

namespace {

// Returns the name of a file that may be written.
std::string Checked(const fs::path& name)
{
  std::error_code absent;
  if (fs::is_directory(name, absent))
    Fatal("can't write file ", name.string(), ": it is no regular file\n");
  RefuseSources(name);
  return name.string();
}

}  // namespace

AtomicFile::AtomicFile(const fs::path& givenName, By writer) : name(givenName), by(writer)
{
  if (!IsStandardOutput(name))
    file.emplace(Checked(name));
  CleanUpOnSignals();
}

void AtomicFile::Write(std::string_view text)
{
  Stream().write(text.data(), static_cast<std::streamsize>(text.size()));
}

std::ostream& AtomicFile::Stream()
{
  if (file)
    return file->Stream();
  return std::cout;
}

void AtomicFile::Commit()
{
  if (!file)
    return FinishStandardOutput();
  file->Stream();  // an empty file is written too
  file->Commit();
  std::fprintf(NotesOf(by), "wrote %s\n", name.c_str());
}

AtomicFile::By WriterOf(std::span<const std::optional<fs::path>> outputs)
{
  const bool filters = std::any_of(
      outputs.begin(), outputs.end(),
      [](const std::optional<fs::path>& output) { return output && IsStandardOutput(*output); });
  return filters ? AtomicFile::By::Filter : AtomicFile::By::Program;
}

std::FILE* NotesOf(AtomicFile::By writer)
{
  return writer == AtomicFile::By::Filter ? stderr : stdout;
}

}  // namespace morlen
