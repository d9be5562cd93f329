#include "common/source_files.h"

#include <algorithm>
#include <system_error>

#include "base/errorwriter.h"
#include "problem/problem_file.h"

namespace morlen {

namespace fs = std::filesystem;

bool IsCaseFile(std::string_view name)
{
  return name.ends_with(".cases");
}

void RefuseSources(const fs::path& output)
{
  std::error_code absent;
  const fs::path present = fs::canonical(output, absent);
  if (absent)
    return;
  if (IsProblemFile(present))
    Fatal("error: ", output.string(), " is a problem file and would be written over\n");
  if (IsCaseFile(output.native()) || IsCaseFile(present.native()))
    Fatal("error: ", output.string(), " is a file of load cases and would be written over\n");
}

void RefuseInputs(const fs::path& output, std::span<const fs::path> inputs, std::string_view hint)
{
  const bool isInput = std::any_of(inputs.begin(), inputs.end(), [&](const fs::path& input) {
    std::error_code absent;
    return fs::equivalent(output, input, absent);
  });
  if (!isInput)
    return;
  if (!hint.empty())
    Explain(hint);
  Fatal("error: ", output.string(), " is read and can't be written\n");
}

}  // namespace morlen
