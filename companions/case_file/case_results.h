#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "case_file/envelope_files.h"
#include "case_file/study.h"
#include "common/atomic_file.h"

namespace morlen {

class SolvedCases;

namespace cases {

/// Where the results of load cases go.
struct CaseTargets
{
  std::filesystem::path folder;
  std::string stem;               ///< of the list of VTU files, "stem.pvd"
  std::set<std::string> formats;  ///< of text, post, csv, json, vtu
};

/// Before the solution: makes the folder. Fatal when that fails, and when a result would replace
/// one of the files that were read.
void PrepareCaseResults(const Study& study, const Selection& selection, const CaseTargets& targets);

/// Writes the selected cases, combinations and envelopes. Fatal when a file cannot be written.
/// Returns the peaks of each selected envelope.
std::vector<std::vector<Peak>> WriteCaseResults(Study& study, const SolvedCases& solved,
                                                const Selection& selection,
                                                const CaseTargets& targets,
                                                AtomicFile::By writer = AtomicFile::By::Program);

}  // namespace cases

}  // namespace morlen
