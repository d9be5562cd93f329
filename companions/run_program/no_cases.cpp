// In the place of solve_cases.cpp where the library for the files of load cases is missing.

#include "base/errorwriter.h"
#include "run_program/solve_model.h"

namespace morlen::run {

Outcome SolveCases(const Job& /*job*/, const Options& /*options*/, ProgressSender& /*progress*/)
{
  Fatal("error: this program has been built without files of load cases\n");
}

}  // namespace morlen::run
