#pragma once

#include "common/command_line.h"
#include "run_program/job.h"
#include "run_program/options.h"
#include "run_program/progress.h"

namespace morlen::run {

/// Checks, solves and reports one problem file. Prints the problems on standard error, the names of
/// the results and the summary on standard output; with `-o -` the text results there, and the
/// summary on standard error. Failed when the check stops the run; later errors end the process.
Outcome SolveModel(const Job& job, const Options& options, ProgressSender& progress);

/// The same for a file of load cases.
Outcome SolveCases(const Job& job, const Options& options, ProgressSender& progress);

}  // namespace morlen::run
