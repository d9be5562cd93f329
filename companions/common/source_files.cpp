#include "common/source_files.h"

#include <algorithm>
#include <system_error>

#include "base/errorwriter.h"
#include "common/standard_output.h"

namespace morlen {

namespace fs = std::filesystem;

void RefuseSources(const fs::path& output)
{
  if (const char* kind = KindOfSource(output))
    Fatal("error: ", output.string(), " is ", kind, " and would be written over\n");
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

namespace {

// The path without links, "." and "..", also of a file that is absent.
fs::path Resolved(const fs::path& name)
{
  std::error_code failed;
  const fs::path whole = fs::absolute(name, failed);
  const fs::path resolved = fs::weakly_canonical(whole, failed);
  return failed ? name : resolved;
}

}  // namespace

void RefuseEqual(std::span<const std::optional<fs::path>> outputs)
{
  const auto areOne = [](const fs::path& a, const fs::path& b) {
    if (IsStandardOutput(a) || IsStandardOutput(b))
      return IsStandardOutput(a) && IsStandardOutput(b);
    std::error_code absent;
    return Resolved(a) == Resolved(b) || fs::equivalent(a, b, absent);
  };
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    for (std::size_t k = 0; k < i; ++k) {
      if (outputs[i] && outputs[k] && areOne(*outputs[i], *outputs[k]))
        Fatal("error: two outputs are written to ", outputs[i]->string(), "\n");
    }
  }
}

}  // namespace morlen
