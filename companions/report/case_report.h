#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "case_file/case_facts.h"
#include "common/atomic_file.h"
#include "common/command_line.h"
#include "common/run_record.h"
#include "report/case_data.h"

namespace morlen {

struct Problem;
class SolvedCases;

/// The texts of a report of load cases beside the cases and their results.
struct CaseReportTexts
{
  std::string file;  ///< name of the file of load cases
  std::vector<std::string> description;
  std::vector<Finding> findings;
};

/// The balance of loads and reactions of every case.
struct CaseBalances
{
  std::vector<Equilibrium> equilibria;
  std::vector<std::string> advice;  ///< empty for a good balance
  std::size_t worst = 0;            ///< the case with the largest residual

  const Equilibrium& Worst() const { return equilibria[worst]; }
};

/// Solves a file of load cases and writes the page of all cases, combinations and envelopes.
/// Found when loads and reactions of a case are not in equilibrium. Fatal when the page cannot be
/// made, and in a program without load cases.
ExitStatus ReportCases(const std::filesystem::path& file, const std::filesystem::path& output);

/// Writes the page of load cases that are solved. actions: of the study before its solution. Fatal
/// when the page cannot be written.
CaseBalances WriteCaseReport(const cases::Study& study, const std::vector<CaseActions>& actions,
                             const SolvedCases& solved, const CaseReportTexts& texts,
                             const std::filesystem::path& output,
                             AtomicFile::By writer = AtomicFile::By::Program);

/// Warns on standard error of every case whose loads and reactions are not in equilibrium.
void WarnOfBalances(const cases::Study& study, const CaseBalances& balances);

}  // namespace morlen
