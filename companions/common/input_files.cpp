#include "common/input_files.h"

#include <system_error>

#include "base/errorwriter.h"

namespace morlen {

namespace fs = std::filesystem;

void InputFiles::Declare(CLI::App& app)
{
  app.add_option("model", model, "the problem file of a run of morlen")
      ->type_name("FILE")
      ->required();
  app.add_option("--results", post, "its post-process results (default: MODEL.morlen.res)")
      ->type_name("FILE");
  app.add_option("--text", text,
                 "its text results, for rotations and end forces (default: MODEL.txt if there is "
                 "one)")
      ->type_name("FILE");
  app.add_flag("--any-time", anyTime, "take results that are older than the model");
}

results::Files InputFiles::Files() const
{
  results::Files files = results::UsualFiles(model);
  files.post = post.value_or(files.post);
  if (text)
    files.text = text;
  files.anyTime = anyTime;
  return files;
}

void InputFiles::RefuseOverwriting(std::span<const std::optional<fs::path>> outputs) const
{
  const results::Files files = Files();
  for (const std::optional<fs::path>& output : outputs) {
    for (const fs::path& input : {files.model, files.post, files.text.value_or(files.post)}) {
      std::error_code absent;
      if (output && fs::equivalent(*output, input, absent))
        Fatal("error: ", output->string(), " is read and can't be written\n");
    }
  }
}

}  // namespace morlen
