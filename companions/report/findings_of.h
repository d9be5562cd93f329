#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "check/findings.h"
#include "report/page_parts.h"

namespace morlen {

/// Problems of a file, as the page shows them.
std::vector<Finding> FindingsOf(std::span<const check::Located> problems, const std::string& file);

/// The problems that morlen-check finds in a problem file.
std::vector<Finding> FindingsIn(const std::filesystem::path& file);

/// True when a finding is an error.
bool HasErrors(const std::vector<Finding>& findings);

/// Tells on standard error that findings have errors. file: to be given to morlen-check.
void WarnOfErrors(const std::vector<Finding>& findings, const std::string& file);

}  // namespace morlen
