#pragma once

#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "common/atomic_file.h"
#include "common/run_record.h"
#include "report/equilibrium.h"
#include "report/page_parts.h"

namespace morlen {

struct Problem;

namespace results {
struct Results;
}

/// The balance of loads and reactions, and advice where it is bad.
struct Balance
{
  Equilibrium equilibrium;
  std::string advice;  ///< empty for a good balance
};

/// The texts of a report beside the model and its results.
struct ReportTexts
{
  std::string file;  ///< name of the problem file
  std::vector<std::string> description;
  std::optional<std::vector<Finding>> check;  ///< absent when the problem file was not checked
  KnownRun run;
};

/// Writes the page of one run. problem: as read, not prepared for an analysis; its loads are
/// prepared here. model: the data of the same problem. Fatal as PrepareLoads.
Balance WriteRunReport(Problem& problem, const model::Model& model, const results::Results& results,
                       const ReportTexts& texts, std::ostream& out);
/// The same as an AtomicFile.
Balance WriteRunReport(Problem& problem, const model::Model& model, const results::Results& results,
                       const ReportTexts& texts, const std::filesystem::path& output,
                       AtomicFile::By writer = AtomicFile::By::Program);

/// The same without a page.
Balance BalanceOf(Problem& problem, const model::Model& model, const results::Results& results);

}  // namespace morlen
