#include "run_program/options.h"

#include <algorithm>

#include "base/errorwriter.h"
#include "common/source_files.h"

namespace morlen::run {

void Declare(CLI::App& app, Options& options)
{
  app.add_option("models", options.files,
                 "the problem files, and files of load cases (.cases); - is standard input")
      ->type_name("FILE")
      ->required();
  app.add_option("-o,--output", options.folder,
                 "the folder of the results (default: next to each file); - writes the text "
                 "results of one file to standard output, and no file")
      ->type_name("DIR");
  app.add_option("-j,--jobs", options.jobs, "how many files are solved at the same time")
      ->type_name("N")
      ->check(CLI::Range(1, 1024));
  app.add_flag("--vtu", options.vtu, "write MODEL.vtu, for ParaView");
  app.add_flag("--csv", options.csv, "write tables into CSV files in the folder MODEL_csv");
  app.add_flag("--json", options.json, "write all tables into MODEL.json");
  app.add_flag("--strict", options.strict, "stop at warnings of the check too");
  app.add_flag("--open", options.open, "open the report in the browser");
  app.footer(
      "Writes MODEL.txt, MODEL.morlen.res, MODEL.html and, last, MODEL.morlen.run; MODEL is the "
      "name of the file without its ending. Load cases give MODEL.results, MODEL.html and "
      "MODEL.morlen.run.\n"
      "Exit status, the highest of all files: 0; 1 when the balance of loads and reactions or the "
      "estimated error is worse than 1e-4; 2 when a file has errors or cannot be solved.");
}

void RequireConsistent(const Options& options)
{
  const auto count = std::count(options.files.begin(), options.files.end(), "-");
  if (count > 1)
    Fatal("error: standard input can be read once only\n");
  if (!options.ToStandardOutput())
    return;
  if (options.files.size() > 1)
    Fatal("error: -o - writes the results of one file\n");
  if (IsCaseFile(options.files.front()))
    Fatal("error: -o - is for problem files: load cases have no text results\n");
  if (options.vtu || options.csv || options.json || options.open)
    Fatal("error: -o - writes no file: leave out --vtu, --csv, --json and --open\n");
}

}  // namespace morlen::run
