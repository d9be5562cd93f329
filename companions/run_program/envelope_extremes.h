#pragma once

#include <span>
#include <vector>

#include "case_file/envelope_files.h"
#include "common/model_data.h"
#include "run_program/extremes.h"

namespace morlen::run {

/// The largest results of an envelope, the same as ExtremesOf tells of a model, each with the
/// combination that governs. Results that are all 0 are left out.
std::vector<Extreme> ExtremesOf(const model::Model& model, std::span<const cases::Peak> peaks);

}  // namespace morlen::run
