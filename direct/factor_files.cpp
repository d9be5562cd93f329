#include "direct/factor_files.h"

#include <unistd.h>

#include <chrono>
#include <limits>
#include <system_error>

namespace morlen::direct {

namespace fs = std::filesystem;

// The time tells apart the solvers of a process, and processes with the same number in different
// containers.
FactorFiles::FactorFiles()
{
  std::error_code none;
  folder = fs::temp_directory_path(none).string();
  if (none)
    folder = "/tmp";
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  prefix = "morlen-" + std::to_string(getpid()) + "-" +
           std::to_string(std::chrono::duration_cast<std::chrono::microseconds>(now).count());
}

std::uint64_t FactorFiles::FreeBytes() const
{
  std::error_code unknown;
  const fs::space_info space = fs::space(folder, unknown);
  return unknown ? std::numeric_limits<std::uint64_t>::max() : space.available;
}

template <class Visit>
void FactorFiles::ForEachFile(Visit visit) const
{
  std::error_code end;
  for (fs::directory_iterator entry(folder, end); !end && entry != fs::directory_iterator();
       entry.increment(end)) {
    if (entry->path().filename().string().starts_with(prefix))
      visit(entry->path());
  }
}

void FactorFiles::Watch()
{
  ForEachFile([this](const fs::path& path) {
    Watched& added = watched.emplace_back();
    added.name = path.string();
    added.file.Remove(added.name.c_str());
  });
}

void FactorFiles::Remove()
{
  watched.clear();
  ForEachFile([](const fs::path& path) {
    std::error_code ignored;
    fs::remove(path, ignored);
  });
}

}  // namespace morlen::direct
