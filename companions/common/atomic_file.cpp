#include "common/atomic_file.h"

#include <algorithm>
#include <iostream>
#include <string>
#include <system_error>
#include <utility>

#include "base/errorwriter.h"
#include "base/unfinished_files.h"
#include "common/output_set.h"
#include "common/source_files.h"
#include "common/standard_output.h"

namespace morlen {

namespace fs = std::filesystem;

void RequireReplaceable(const fs::path& name)
{
  std::error_code absent;
  if (fs::is_directory(name, absent))
    Fatal("can't write file ", name.string(), ": it is no regular file\n");
  RefuseSources(name);
}

AtomicFile::AtomicFile(const fs::path& givenName, By writer) : name(givenName), by(writer)
{
  if (by.Set() || !IsStandardOutput(name)) {
    RequireReplaceable(name);
    file = std::make_unique<OutputFile>(name.string());
  }
  if (!by.Set())
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
  if (by.Set())
    return by.Set()->Take(name, std::move(file));
  file->Commit();
  std::fprintf(by.Notes(), "wrote %s\n", name.c_str());
}

AtomicFile::By WriterOf(std::span<const std::optional<fs::path>> outputs)
{
  const bool filters = std::any_of(
      outputs.begin(), outputs.end(),
      [](const std::optional<fs::path>& output) { return output && IsStandardOutput(*output); });
  return filters ? AtomicFile::By::Filter : AtomicFile::By::Program;
}

std::FILE* AtomicFile::By::Notes() const
{
  if (set)
    return nullptr;
  return isFilter ? stderr : stdout;
}

}  // namespace morlen
