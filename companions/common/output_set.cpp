#include "common/output_set.h"

#include <system_error>
#include <utility>

#include "base/errorwriter.h"
#include "common/atomic_file.h"

namespace morlen {

namespace fs = std::filesystem;

namespace {

void FlushOne(OutputFile& file)
{
  if (!file.Stream().flush())
    Fatal("error: Failed writing to disk. Probably the disk is full\n");
}

void RemoveFile(const fs::path& name)
{
  std::error_code error;
  fs::remove(name, error);
  if (!error)
    return;
  Explain(error.message());
  Fatal("can't remove file ", name.string(), ", which is of an earlier run\n");
}

}  // namespace

OutputFile& OutputSet::Open(const fs::path& name)
{
  RequireReplaceable(name);
  members.push_back({name, std::make_unique<OutputFile>(name.string())});
  return *members.back().file;
}

void OutputSet::Take(const fs::path& name, std::unique_ptr<OutputFile> file)
{
  file->Complete();
  members.push_back({name, std::move(file), true});
}

void OutputSet::Flush()
{
  for (const Member& member : members) {
    if (!member.isComplete)
      FlushOne(*member.file);
  }
}

void OutputSet::Complete()
{
  for (Member& member : members) {
    if (!member.isComplete)
      member.file->Complete();
    member.isComplete = true;
  }
}

void OutputSet::Commit()
{
  Complete();
  for (const fs::path& name : stale)
    RemoveFile(name);
  stale.clear();
  for (const Member& member : members)
    member.file->Commit();
  members.clear();
}

}  // namespace morlen
