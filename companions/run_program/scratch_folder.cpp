#include "run_program/scratch_folder.h"

#include <cstdlib>
#include <system_error>

#include "base/errorwriter.h"
#include "base/signals_held.h"
#include "export/csv.h"

namespace morlen::run {

namespace fs = std::filesystem;

ScratchFolder::ScratchFolder()
{
  const SignalsHeld held;
  std::error_code error;
  name = (fs::temp_directory_path(error) / "morlen-run-XXXXXX").string();
  if (error || !mkdtemp(name.data()))
    Fatal("can't make folder ", name, "\n");
  unfinished.RemoveFolder(name.c_str());
}

NewFolder::NewFolder(const fs::path& folder) : name(folder.string())
{
  const SignalsHeld held;
  std::error_code absent;
  const bool isNew = !fs::exists(folder, absent);
  MakeFolder(folder);
  if (isNew)
    unfinished.RemoveFolder(name.c_str());
}

}  // namespace morlen::run
