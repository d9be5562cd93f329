#pragma once

#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "check/findings.h"
#include "common/model_data.h"
#include "common/run_record.h"
#include "common/tables.h"
#include "report/applied_loads.h"
#include "report/equilibrium.h"

namespace morlen {

// The parts of a page's data that the report of a run and that of load cases share.

/// A finding of the check of a problem file.
struct Finding
{
  bool error;         ///< else a warning
  std::string place;  ///< file, line and column
  std::string text;
  std::shared_ptr<const check::Motion> motion = {};  ///< that the page can show; null for none
};

/// Program, model, units, the check, the run and the local axes of the elements. file: the name
/// that the page shows.
nlohmann::ordered_json ModelParts(const std::string& file,
                                  const std::vector<std::string>& description,
                                  const model::Model& model,
                                  const std::optional<std::vector<Finding>>& check,
                                  const KnownRun& run = {});

/// advice: on a bad balance; empty for none.
nlohmann::ordered_json BalancePart(const Equilibrium& equilibrium, const std::string& advice);

/// The loads that the view draws beside those at nodes.
nlohmann::ordered_json LoadsPart(const AppliedLoads& loads);

/// A table of a page: of the diagrams of beams without the places of the division points, which the
/// page computes from the nodes.
tables::Table TableOfPage(const tables::Table& table, int translations);

/// The data as JSON, without characters that begin or end markup.
std::string PageText(const nlohmann::ordered_json& data);

}  // namespace morlen
