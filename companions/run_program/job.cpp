#include "run_program/job.h"

#include <map>
#include <system_error>

#include "base/errorwriter.h"
#include "common/source_files.h"

namespace morlen::run {

namespace fs = std::filesystem;

namespace {

constexpr const char* kEndings[] = {".txt", ".morlen.res", ".html", ".vtu", ".json", ".morlen.run"};

Job JobOf(const std::string& input, const Options& options)
{
  Job job{input == "/dev/stdin" ? "-" : input, {}, IsCaseFile(input)};
  const fs::path file = job.IsStandardInput() ? fs::path("stdin") : fs::path(input);
  job.base = options.folder.value_or(file.parent_path()) / file.stem();
  return job;
}

// Names of one file are equal here, as long as its folder exists.
fs::path Unique(const fs::path& name)
{
  std::error_code error;
  const fs::path unique = fs::weakly_canonical(fs::absolute(name), error);
  return error ? name : unique;
}

void RequireDifferentResults(const std::vector<Job>& jobs)
{
  std::map<fs::path, const Job*> known;
  for (const Job& job : jobs) {
    const auto [other, added] = known.try_emplace(Unique(job.base), &job);
    if (!added) {
      Explain("give one of the files another name, or another folder by -o in a run of its own");
      Fatal("error: ", other->second->input, " and ", job.input, " would write the same results, ",
            job.Result(".html").string(), "\n");
    }
  }
}

void RequireInputsKept(const std::vector<Job>& jobs)
{
  for (const Job& job : jobs) {
    for (const Job& other : jobs) {
      for (const char* ending : kEndings) {
        std::error_code absent;
        if (fs::equivalent(job.Result(ending), other.input, absent))
          Fatal("error: ", other.input, " is an input, and a result of ", job.input,
                " would replace it\n");
      }
    }
  }
}

}  // namespace

fs::path Job::Result(const char* ending) const
{
  fs::path name = base;
  name += ending;
  return name;
}

fs::path Job::Folder() const
{
  return base.has_parent_path() ? base.parent_path() : ".";
}

std::vector<Job> PlanJobs(const Options& options)
{
  std::vector<Job> jobs;
  for (const std::string& file : options.files)
    jobs.push_back(JobOf(file, options));
  if (options.ToStandardOutput())
    return jobs;
  RequireDifferentResults(jobs);
  RequireInputsKept(jobs);
  return jobs;
}

}  // namespace morlen::run
