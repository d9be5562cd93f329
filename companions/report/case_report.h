#pragma once

#include <filesystem>

#include "common/command_line.h"

namespace morlen {

/// Solves a file of load cases and writes the page of all cases, combinations and envelopes.
/// Found when loads and reactions of a case are not in equilibrium. Fatal when the page cannot be
/// made, and in a program without load cases.
ExitStatus ReportCases(const std::filesystem::path& file, const std::filesystem::path& output);

}  // namespace morlen
