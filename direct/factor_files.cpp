#include "direct/factor_files.h"

#include <cstdlib>
#include <filesystem>
#include <limits>
#include <sstream>
#include <system_error>

namespace morlen::direct {

namespace fs = std::filesystem;

FactorFiles::FactorFiles()
{
  std::error_code none;
  place = fs::temp_directory_path(none).string();
  if (none)
    place = "/tmp";
}

std::uint64_t FactorFiles::FreeBytes() const
{
  std::error_code unknown;
  const fs::space_info space = fs::space(place, unknown);
  return unknown ? std::numeric_limits<std::uint64_t>::max() : space.available;
}

std::string FactorFiles::Need(const Room& needed, const Room& free) const
{
  constexpr std::uint64_t kMegabyte = 1000000;
  std::ostringstream text;
  text << "with its factors in " << place << " it would need " << needed.memory / kMegabyte + 1
       << " MB of memory and " << needed.files / kMegabyte + 1 << " MB there; free are "
       << free.memory / kMegabyte << " MB and " << free.files / kMegabyte << " MB";
  return text.str();
}

const std::string& FactorFiles::Make()
{
  if (!folder.empty())
    return folder;
  folder = place + "/morlen-XXXXXX";
  if (!mkdtemp(folder.data())) {
    folder.clear();
    return place;
  }
  unfinished.RemoveFolder(folder.c_str());
  return folder;
}

void FactorFiles::Remove()
{
  unfinished.CleanUp();
  folder.clear();
}

}  // namespace morlen::direct
