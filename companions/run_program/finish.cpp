#include "run_program/finish.h"

#include <sys/resource.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <system_error>
#include <utility>

#include "base/errorwriter.h"
#include "base/signals_held.h"
#include "base/temporary_file.h"
#include "common/atomic_file.h"
#include "common/file_text.h"
#include "export/csv.h"
#include "report/findings_of.h"
#include "report/model_page.h"
#include "run_program/input_check.h"

namespace morlen::run {

namespace fs = std::filesystem;

namespace {

std::vector<RecordedFile> RecordedIn(const OutputSet& files, const fs::path& folder)
{
  std::vector<RecordedFile> recorded;
  for (const OutputSet::Member& member : files.Members())
    recorded.push_back(
        {member.name.lexically_relative(folder).string(),
         FingerprintOf(fs::path(member.file->WrittenName())).value_or(Fingerprint{})});
  return recorded;
}

bool IsOf(const OutputSet& files, const fs::path& name)
{
  return std::any_of(files.Members().begin(), files.Members().end(),
                     [&](const OutputSet::Member& member) {
                       return member.name == name || member.name.parent_path() == name;
                     });
}

// The files that runs may have written without being asked for in this one. Nothing is removed: a
// file with such a name may be of the user.
std::vector<fs::path> NotOfThisRun(const Job& job, const OutputSet& files)
{
  std::vector<fs::path> others;
  const auto judge = [&](const fs::path& name) {
    std::error_code absent;
    if (fs::exists(name, absent) && !fs::is_empty(name, absent) && !IsOf(files, name))
      others.push_back(name);
  };
  if (!job.isCases) {
    for (const char* ending : {".vtu", "_csv", ".json", ".morlen.bon"})
      judge(job.Result(ending));
    return others;
  }
  std::error_code absent;
  for (const fs::directory_entry& entry : fs::directory_iterator(job.Result(".results"), absent)) {
    if (!entry.path().filename().native().starts_with('.'))  // a temporary name of this run
      judge(entry.path());
  }
  std::sort(others.begin(), others.end());
  return others;
}

std::optional<RunRecord> OldRecord(const Job& job)
{
  const std::optional<std::string> text = FileText(job.Result(".morlen.run"));
  return text ? ReadRunRecord(*text) : std::nullopt;
}

// A problem file and a file of load cases that differ in their endings have one report and one
// record. Returns the other one when the record is of that; else nothing.
std::string OtherInput(const Job& job)
{
  const std::optional<RunRecord> record = OldRecord(job);
  if (!record || record->inputs.empty() ||
      fs::path(record->inputs.front().name).filename() == fs::path(job.input).filename())
    return {};
  return record->inputs.front().name;
}

// The results of an earlier run, by its record, or else those whose names tell it.
std::vector<fs::path> OldResults(const Job& job)
{
  std::vector<fs::path> old;
  if (const std::optional<RunRecord> record = OldRecord(job)) {
    for (const RecordedFile& file : record->results)
      old.push_back(job.base.parent_path() / file.name);
  } else {
    old = {job.Result(".html"), job.Result(".morlen.res")};
  }
  std::erase_if(old, [](const fs::path& file) {
    std::error_code absent;
    return !fs::exists(file, absent);
  });
  return old;
}

}  // namespace

std::string TitleOf(const Job& job)
{
  return job.IsStandardInput() ? "stdin" : fs::path(job.input).filename().string();
}

Outcome CannotRead(const std::string& file)
{
  std::error_code fault;
  const bool folder = fs::is_directory(file, fault);
  errno = 0;
  const bool opens = std::ifstream(file).is_open();
  std::cerr << "can't read file " << file
            << (folder  ? ": it is a folder"
                : opens ? ""
                        : std::string(": ") + std::strerror(errno))
            << "\n";
  return {ExitStatus::Failed};
}

Outcome NotSolved(const std::string& file, const check::Report& report)
{
  std::cerr << file << ": not solved: " << CountsOf(report) << "\n";
  return {ExitStatus::Failed};
}

Outcome NotSolved(const Job& job, const Options& options, const check::Report& report,
                  std::string_view model, std::vector<std::string> description)
{
  Outcome outcome = NotSolved(job.input, report);
  if (options.ToStandardOutput())
    return outcome;
  PrepareFolder(job.Folder());
  const fs::path page = job.Result(".html");
  const std::string title = TitleOf(job);
  OutputSet files;
  if (!WriteModelPage(model, {title, std::move(description), FindingsOf(report.problems, title)},
                      page, files))
    return outcome;
  const SignalsHeld held;
  files.Commit();
  std::printf("wrote %s: the model with the findings of the check, no results\n", page.c_str());
  outcome.hasPage = true;
  return outcome;
}

void TellOfOldResults(const Job& job, bool hasNewPage)
{
  std::vector<fs::path> old = OldResults(job);
  if (hasNewPage)
    std::erase(old, job.Result(".html"));
  if (!old.empty())
    std::cerr << job.input
              << ": the results of an earlier run stay" +
                     std::string(hasNewPage ? ", and the page does not show them" : "") + ": " +
                     Listed(old) + "\n";
}

void PrepareFolder(const fs::path& folder)
{
  MakeFolder(folder);
  RemoveStaleTemporaries(folder);
}

void AllowManyFiles()
{
  rlimit limit = {};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0)
    return;
  limit.rlim_cur = limit.rlim_max;
  setrlimit(RLIMIT_NOFILE, &limit);
}

void RequireWritable(std::span<const fs::path> files)
{
  for (const fs::path& name : files) {
    RequireReplaceable(name);
    const OutputFile test(name.string());
  }
}

Neighbours Publish(const Job& job, std::vector<RecordedFile> inputs, const RunFacts& facts,
                   OutputSet& files)
{
  files.Flush();
  const RunRecord record = {facts, std::move(inputs), RecordedIn(files, job.base.parent_path())};
  WriteRunRecord(record, files.Open(job.Result(".morlen.run")).Stream());
  std::string lines;
  for (const fs::path& name : files.Stale())
    lines += "removed " + name.string() + ", which is of an earlier run\n";
  for (const OutputSet::Member& member : files.Members())
    lines += "wrote " + member.name.string() + "\n";
  Neighbours neighbours = {NotOfThisRun(job, files), OtherInput(job)};
  files.Complete();
  const SignalsHeld held;
  files.Commit();
  std::fputs(lines.c_str(), stdout);
  return neighbours;
}

void PrintFile(const fs::path& file)
{
  const std::optional<std::string> text = FileText(file);
  if (!text)
    Fatal("can't read file ", file.string(), "\n");
  if (std::fwrite(text->data(), 1, text->size(), stdout) != text->size() ||
      std::fflush(stdout) != 0) {
    Explain(std::strerror(errno));
    Fatal("error: can't write to standard output\n");
  }
}

ExitStatus Tell(const Summary& summary, std::FILE* out)
{
  std::cerr << WarningsOf(summary) << std::flush;
  std::fputs(TextOf(summary).c_str(), out);
  return StatusOf(summary);
}

}  // namespace morlen::run
