#pragma once

#include <functional>
#include <vector>

#include "common/command_line.h"
#include "run_program/job.h"
#include "run_program/progress.h"

namespace morlen::run {

/// Does one job in a process for it.
using Work = std::function<Outcome(const Job&, ProgressSender&)>;
/// Called after each job, in the order of their ends.
using OnEnd = std::function<void(const Job&, Outcome)>;

/// Does the jobs, each in a process, and shows their messages. What they write on standard output
/// is printed in the order of the jobs: that of a job after those of all jobs before it. Returns
/// the highest status; Failed too when standard output does not take everything. A signal that ends
/// this process ends the others first.
ExitStatus Supervise(const std::vector<Job>& jobs, const Options& options, const Work& work,
                     const OnEnd& onEnd);

}  // namespace morlen::run
