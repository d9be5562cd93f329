#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "check/findings.h"
#include "check/summary.h"

namespace morlen::check {

/// The content of a file of load cases without errors.
struct CasesSummary
{
  std::string model;
  int cases = 0;
  int combinations = 0;
  int envelopes = 0;
};

struct Report
{
  std::vector<Located> problems;           ///< by place
  std::optional<Summary> summary;          ///< of a problem file; only without errors
  std::optional<CasesSummary> cases = {};  ///< of a file of load cases; only without errors
  int errors = 0;
  int warnings = 0;
};

/// Whether motions inside a part are searched for, which takes a factorisation.
enum class Motions : bool
{
  Find,
  LeaveToAnalysis  ///< found only in models of few equations: an analysis follows and refuses them
};

/// Reads the text of a problem file as the program does and judges it. No error in the file ends
/// the run.
Report CheckText(std::string_view text, Motions motions = Motions::Find);

/// A report and the name of its file.
struct FileReport
{
  std::string file;
  Report report;
};

/// The reports as a JSON array of the objects that JsonOf gives for one.
std::string JsonOf(const std::vector<FileReport>& reports);

/// The report as one JSON object; `file` is named in it.
std::string JsonOf(const Report& report, const std::string& file);

}  // namespace morlen::check
