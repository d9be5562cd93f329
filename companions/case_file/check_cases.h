#pragma once

#include <string>
#include <string_view>

#include "check/check.h"

namespace morlen::cases {

/// Checks a file of load cases with its model and its loads.
check::Report CheckCases(const std::string& file, std::string_view text);

}  // namespace morlen::cases
