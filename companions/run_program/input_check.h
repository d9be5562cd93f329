#pragma once

#include <string>

#include "check/check.h"

namespace morlen::run {

/// Prints the problems of a file on standard error, as morlen-check does. name: of the file.
void PrintProblems(const check::Report& report, const std::string& name);

/// True when a file with these problems is not solved: it has errors or loses data, or, when
/// `strict`, warnings.
bool StopsAt(const check::Report& report, bool strict);

/// "3 errors, 1 warning"
std::string CountsOf(const check::Report& report);

}  // namespace morlen::run
