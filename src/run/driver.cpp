#include "run/driver.h"

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <string>
#include <vector>

#include "base/errorwriter.h"
#include "base/output_file.h"
#include "base/stprintf.h"
#include "base/unfinished_files.h"
#include "problem/foreign_file.h"
#include "run/file_identity.h"
#include "run/process_streams.h"
#include "run/project.h"
#include "run/result_files.h"

namespace morlen {

namespace {

constexpr const char* kResultsEnding = ".morlen.res";
constexpr const char* kMeshEnding = ".morlen.bon";

struct Options
{
  bool writeMesh = false;
  bool renumber = true;
  const char* infoName = nullptr;
  const char* errorName = nullptr;
  const char* inputName = nullptr;
  const char* outputName = nullptr;
};

// Returns false unless one or two names follow the options.
bool ParseArguments(int argc, char** argv, Options& options)
{
  int next = 1;
  for (; next < argc; ++next) {
    const std::string_view arg = argv[next];
    if (arg == "-p")
      options.writeMesh = true;
    else if (arg == "-r0")
      options.renumber = false;
    else if (arg == "-i")
      options.infoName = argv[++next];
    else if (arg == "-e")
      options.errorName = argv[++next];
    else
      break;
  }
  const int names = argc - next;
  if (names != 1 && names != 2)
    return false;
  options.inputName = argv[next];
  options.outputName = names == 2 ? argv[next + 1] : nullptr;
  return true;
}

bool IsStandardOutput(const char* name)
{
  return name[0] == '-';
}

std::FILE* OpenFile(const char* name)
{
  std::FILE* file = IsStandardOutput(name) ? stdout : std::fopen(name, "w");
  if (!file)
    CannotOpen(name, errno);
  return file;
}

// Each message is flushed: a failed write of any of them shows here.
void Close(std::FILE* info, const char* name)
{
  const bool isWhole = std::ferror(info) == 0;
  if (std::fclose(info) == 0 && isWhole)
    return;
  Explain("the results are complete; information is missing in ",
          IsStandardOutput(name) ? "the standard output" : name);
  Fatal("error: Failed writing to disk. Probably the disk is full\n");
}

// The name with another ending after its last '.', which may be in the name of a folder.
std::string NameWithEnding(const std::string& name, const char* ending)
{
  return name.substr(0, name.rfind('.')) + ending;
}

ResultNames ResultNamesOf(const Options& options)
{
  ResultNames names;
  if (options.outputName)
    names.text = options.outputName;
  names.results = NameWithEnding(options.inputName, kResultsEnding);
  names.mesh = NameWithEnding(options.inputName, kMeshEnding);
  names.writeMesh = options.writeMesh;
  return names;
}

// The problem file and all files that the run writes.
std::vector<RunFile> FilesOf(const Options& options, const ResultNames& results)
{
  std::vector<RunFile> files = {{"problem file", options.inputName}};
  bool standardOutput = false;
  const auto addStream = [&](const char* role, const char* name) {
    if (name && IsStandardOutput(name))
      standardOutput = true;
    else if (name)
      files.push_back({role, name});
  };
  addStream("information file", options.infoName);
  addStream("error file", options.errorName);
  if (standardOutput)
    files.push_back({"standard output", "standard output", true});
  if (results.text)
    files.push_back({"text results file", *results.text});
  files.push_back({"results file", results.results});
  if (results.writeMesh)
    files.push_back({"mesh file", results.mesh});
  return files;
}

void RequireFreeToWrite(const std::vector<RunFile>& files)
{
  RequireDifferentFiles(files);
  RequireNoSource({files.begin() + 1, files.end()});
}

void PrintUsage(const char* program)
{
  std::printf(
      "error. usage: %s [-p] [-i infofile] [-r0] [-e errorfile] inputfile [outputfile]\n"
      "    -p: write mesh Kiv file\n"
      "    -i: write some information in file 'infofile'\n"
      "    -e: write error messages in file 'errorfile'\n"
      "    -r0: inhibit renumbering of the nodes\n",
      program);
}

// Reads a problem, solves it and writes the result files. info: receives the progress, may be null.
//
// Results of earlier runs are kept until the problem file has been read and all result files can be
// written. From then on no file has older results, also when the analysis fails.
void Solve(Project& project, std::ifstream& input, const Options& options, std::FILE* info)
{
  const ResultNames names = ResultNamesOf(options);
  RemoveRestsOfKilledRuns(names);
  project.ReadFromAscii(input);
  ResultFiles files(names);
  files.Empty();
  if (!names.writeMesh)
    EmptyStaleMesh(names.mesh, FilesOf(options, names));
  project.Calc(options.renumber, info);
  Progress(info, "Beginning calc strengths and reactions\n");
  project.CalcStrengthsAndReactions(info);
  Progress(info, "End of calc strengths and reactions\nTransfering results\n");
  files.Write(project);
}

}  // namespace

int RunMorlen(int argc, char** argv, const SolverKit& kit)
{
  const std::clock_t start = std::clock();
  ProtectStreams();
  CleanUpOnSignals();
  Options options;
  if (!ParseArguments(argc, argv, options)) {
    PrintUsage(argc > 0 ? argv[0] : "morlen");
    return ErrorWriter::kExitStatus;
  }
  RefuseFolder(options.inputName);
  std::ifstream input(options.inputName);
  if (!input)
    Fatal("can't open file ", options.inputName, "\n");
  RequireFreeToWrite(FilesOf(options, ResultNamesOf(options)));
  Project project(100, kit);
  std::FILE* info = options.infoName ? OpenFile(options.infoName) : nullptr;
  if (options.errorName)
    errorwriter.SetErrorFile(OpenFile(options.errorName));
  Solve(project, input, options, info);
  if (info) {
    const double seconds = static_cast<double>(std::clock() - start) / 1e6;
    Progress(info, "Total time = %.2g min. = %.2g seg.\n", seconds / 60.0, seconds);
    Close(info, options.infoName);
  }
  return 0;
}

}  // namespace morlen
