#include "common/file_text.h"

#include <fstream>
#include <vector>

namespace morlen {

std::optional<std::string> FileText(const std::filesystem::path& name)
{
  std::ifstream in(name, std::ios::binary);
  return StreamText(in);
}

std::optional<std::string> StreamText(std::istream& in)
{
  std::string text;
  std::vector<char> part(std::size_t{1} << 16);
  while (in) {
    in.read(part.data(), static_cast<std::streamsize>(part.size()));
    text.append(part.data(), static_cast<std::size_t>(in.gcount()));
  }
  if (in.bad() || !in.eof())
    return std::nullopt;
  return text;
}

}  // namespace morlen
