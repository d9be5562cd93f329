#include <iostream>
#include <optional>
#include <vector>

#include "run/process_streams.h"
#include "run_program/finish.h"
#include "run_program/job.h"
#include "run_program/open_page.h"
#include "run_program/options.h"
#include "run_program/solve_model.h"
#include "run_program/supervisor.h"

using namespace morlen;

int main(int argc, char** argv)
{
  ProtectStreams();
  CommandLine commandLine("morlen-run", "Checks, solves and reports problem files in one go.");
  run::Options options;
  run::Declare(commandLine.Options(), options);
  if (const std::optional<ExitStatus> end = commandLine.Parse(argc, argv))
    return static_cast<int>(*end);
  run::RequireConsistent(options);
  const std::vector<run::Job> jobs = run::PlanJobs(options);
  const auto work = [&](const run::Job& job, run::ProgressSender& progress) {
    return job.isCases ? run::SolveCases(job, options, progress)
                       : run::SolveModel(job, options, progress);
  };
  const auto onEnd = [&](const run::Job& job, run::Outcome outcome) {
    if (outcome.status == ExitStatus::Failed)
      run::TellOfOldResults(job, outcome.hasPage);
    if (options.open && outcome.hasPage)
      run::OpenPage(job.Result(".html"));
    else if (options.open)
      std::cerr << job.input << ": there is no new page to open\n";
  };
  return static_cast<int>(run::Supervise(jobs, options, work, onEnd));
}
