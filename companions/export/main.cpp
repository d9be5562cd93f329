#include <filesystem>
#include <optional>
#include <vector>

#include "base/errorwriter.h"
#include "common/atomic_file.h"
#include "common/command_line.h"
#include "common/input_files.h"
#include "common/model_data.h"
#include "common/result_data.h"
#include "common/run_record.h"
#include "common/source_files.h"
#include "export/csv.h"
#include "export/run_tables.h"
#include "export/vtu.h"

using namespace morlen;

namespace fs = std::filesystem;

namespace {

struct Options
{
  InputFiles input;
  std::optional<fs::path> vtu, csv, json;
};

void Declare(CLI::App& app, Options& options)
{
  const auto add = [&](const char* name, auto& value, const char* help) {
    return app.add_option(name, value, help)->type_name("FILE");
  };
  options.input.Declare(app);
  add("--vtu", options.vtu, "write a VTU file, for ParaView; - is standard output");
  add("--csv", options.csv, "write tables into CSV files in a folder")->type_name("DIR");
  add("--json", options.json, "write all tables into one JSON file; - is standard output");
  app.footer(
      "It runs nothing: run morlen first. MODEL is the name of the problem file without its "
      "ending.\n"
      "Exit status: 0, or 2 when something is wrong.");
}

void Export(const Options& options)
{
  if (!options.vtu && !options.csv && !options.json)
    Fatal("error: nothing to write: give --vtu, --csv or --json\n");
  const fs::path& file = options.input.Model();
  const model::Model model = model::ReadModel(file);
  const std::array files{options.vtu, options.json};
  for (const std::optional<fs::path>& output : files) {
    if (output)
      RefuseInputs(*output, options.input.All());
  }
  RefuseEqual(files);
  if (options.csv)
    RequireFolderName(*options.csv);
  const AtomicFile::By writer = WriterOf(files);
  const results::Results results = results::ReadResults(model, options.input.Files());
  if (options.vtu)
    WriteVtu(model, results, *options.vtu, {.writer = writer});
  if (!options.csv && !options.json)
    return;
  const KnownRun run = FindRun(file, results::ResultsOf(options.input.Files()));
  WriteTables(model, results, run, {"morlen-export", file, options.csv, options.json}, writer);
}

}  // namespace

int main(int argc, char** argv)
{
  CommandLine commandLine("morlen-export",
                          "Writes the results of a run of morlen in other formats.");
  Options options;
  Declare(commandLine.Options(), options);
  if (const std::optional<ExitStatus> end = commandLine.Parse(argc, argv))
    return SystemStatus(*end);
  Export(options);
  return SystemStatus(ExitStatus::Done);
}
