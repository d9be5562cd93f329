#include "run_program/finish.h"

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

}  // namespace

ExitStatus CannotRead(const std::string& file)
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
  return ExitStatus::Failed;
}

ExitStatus NotSolved(const std::string& file, const check::Report& report)
{
  std::cerr << file << ": not solved: " << CountsOf(report) << "\n";
  return ExitStatus::Failed;
}

void TellOfOldResults(const Job& job)
{
  std::error_code absent;
  const fs::path page = job.Result(".html");
  if (fs::exists(page, absent))
    std::cerr << job.input << ": the results of an earlier run stay, such as " << page.string()
              << "\n";
}

void PrepareFolder(const fs::path& folder)
{
  MakeFolder(folder);
  RemoveStaleTemporaries(folder);
}

void RequireWritable(std::span<const fs::path> files)
{
  for (const fs::path& name : files) {
    RequireReplaceable(name);
    const OutputFile test(name.string());
  }
}

void Publish(const Job& job, std::vector<RecordedFile> inputs, const RunFacts& facts,
             OutputSet& files)
{
  files.Flush();
  const RunRecord record = {facts, std::move(inputs), RecordedIn(files, job.base.parent_path())};
  WriteRunRecord(record, files.Open(job.Result(".morlen.run")).Stream());
  std::string lines;
  for (const OutputSet::Member& member : files.Members())
    lines += "wrote " + member.name.string() + "\n";
  const SignalsHeld held;
  files.Commit();
  std::fputs(lines.c_str(), stdout);
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
