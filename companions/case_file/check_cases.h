#pragma once

#include <string>
#include <string_view>

#include "check/check.h"

namespace morlen::cases {

/// True for the name of a file of load cases: it ends with ".cases".
bool IsCaseFile(std::string_view name);

/// Checks a file of load cases with its model and its loads.
check::Report CheckCases(const std::string& file, std::string_view text);

}  // namespace morlen::cases
