#pragma once

#include <filesystem>
#include <istream>
#include <optional>
#include <string>
#include <vector>

#include "common/model_data.h"
#include "common/result_data.h"
#include "report/applied_loads.h"
#include "report/equilibrium.h"
#include "report/page_parts.h"

namespace morlen {

/// The content of a report. The objects that it refers to are borrowed.
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
  KnownRun run = {};
};

/// The comment lines at the beginning of a problem file, without their signs: the author's
/// description of the model.
std::vector<std::string> DescriptionOf(const std::filesystem::path& file);
/// The same of the text of a problem file.
std::vector<std::string> DescriptionIn(std::istream& text);

/// The content as JSON for the page, without characters that begin or end markup.
std::string PageData(const ReportContent& content);

/// The same for a model without results: its tables, its loads and the findings of the check.
std::string PageDataOfModel(const std::string& file, const std::vector<std::string>& description,
                            const model::Model& model, const AppliedLoads& loads,
                            const std::vector<Finding>& check);

}  // namespace morlen
