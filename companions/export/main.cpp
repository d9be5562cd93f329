#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/errorwriter.h"
#include "common/command_line.h"
#include "common/model_data.h"
#include "common/result_data.h"
#include "common/tables.h"
#include "export/csv.h"
#include "export/json.h"
#include "export/vtu.h"

namespace fs = std::filesystem;

namespace {

struct Options
{
  fs::path model;
  std::optional<fs::path> post, text;
  std::optional<fs::path> vtu, csv, json;
  bool anyTime = false;
};

void Declare(CLI::App& app, Options& options)
{
  const auto add = [&](const char* name, auto& value, const char* help) {
    return app.add_option(name, value, help)->type_name("FILE");
  };
  add("model", options.model, "the problem file of a run of morlen")->required();
  add("--vtu", options.vtu, "write a VTU file, for ParaView");
  add("--csv", options.csv, "write tables into CSV files in a folder")->type_name("DIR");
  add("--json", options.json, "write all tables into one JSON file");
  add("--results", options.post, "its post-process results (default: MODEL.morlen.res)");
  add("--text", options.text,
      "its text results, for rotations and end forces (default: MODEL.txt if there is one)");
  app.add_flag("--any-time", options.anyTime, "take results that are older than the model");
  app.footer(
      "It runs nothing: run morlen first. MODEL is the name of the problem file without its "
      "ending.\n"
      "Exit status: 0, or 2 when something is wrong.");
}

// Fatal when a file to be written is one that is read.
void KeepInputs(const Options& options, const results::Files& files)
{
  std::vector<fs::path> inputs = {files.model, files.post};
  if (files.text)
    inputs.push_back(*files.text);
  for (const std::optional<fs::path>& output : {options.vtu, options.json}) {
    for (const fs::path& input : inputs) {
      std::error_code absent;
      if (output && fs::equivalent(*output, input, absent))
        Fatal("error: ", output->string(), " is read and can't be written\n");
    }
  }
}

void Export(const Options& options)
{
  if (!options.vtu && !options.csv && !options.json)
    Fatal("error: nothing to write: give --vtu, --csv or --json\n");
  const model::Model model = model::ReadModel(options.model);
  results::Files files = results::UsualFiles(options.model);
  files.post = options.post.value_or(files.post);
  if (options.text)
    files.text = options.text;
  files.anyTime = options.anyTime;
  KeepInputs(options, files);
  const results::Results results = results::ReadResults(model, files);
  if (options.vtu)
    WriteVtu(model, results, *options.vtu);
  if (!options.csv && !options.json)
    return;
  const std::vector<tables::Table> tables = tables::AllTables(model, results);
  if (options.csv)
    WriteCsv(tables, *options.csv);
  if (options.json)
    WriteJson(model, options.model, tables, *options.json);
}

}  // namespace

int main(int argc, char** argv)
{
  CommandLine commandLine("morlen-export",
                          "Writes the results of a run of morlen in other formats.");
  Options options;
  Declare(commandLine.Options(), options);
  if (const std::optional<ExitStatus> end = commandLine.Parse(argc, argv))
    return static_cast<int>(*end);
  Export(options);
  return static_cast<int>(ExitStatus::Done);
}
