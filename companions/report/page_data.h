#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "common/model_data.h"
#include "common/result_data.h"
#include "report/applied_loads.h"
#include "report/equilibrium.h"

namespace morlen {

/// A finding of the check of a problem file.
struct Finding
{
  bool error;         ///< else a warning
  std::string place;  ///< file, line and column
  std::string text;
};

/// All that a report shows. What it refers to outlives it.
struct ReportContent
{
  std::string file;  ///< name of the problem file
  std::vector<std::string> description;
  const model::Model& model;
  const results::Results& results;
  const AppliedLoads& loads;
  const Equilibrium& equilibrium;
  std::string advice;                         ///< on a bad balance; empty for none
  std::optional<std::vector<Finding>> check;  ///< absent when the problem file was not checked
};

/// The comment lines at the beginning of a problem file, without their signs: what its author
/// says of it.
std::vector<std::string> DescriptionOf(const std::filesystem::path& file);

/// The content as JSON for the page. No character of it begins or ends markup.
std::string PageData(const ReportContent& content);

}  // namespace morlen
