#include "common/input_files.h"

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

std::vector<fs::path> InputFiles::All() const
{
  const results::Files files = Files();
  std::vector<fs::path> all = {files.model, files.post};
  if (files.text)
    all.push_back(*files.text);
  return all;
}

}  // namespace morlen
