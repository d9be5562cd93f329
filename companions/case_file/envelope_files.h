#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "case_file/study.h"
#include "cases/solved_cases.h"
#include "common/atomic_file.h"

namespace morlen::cases {

/// The value of the largest size that a component has in an envelope.
struct Peak
{
  std::string table;      ///< "displacements", "reactions", "beam_forces" ...
  std::string component;  ///< as in the columns of the table: "u", "N", "Mz", "von_Mises" ...
  std::string unit;
  double value = 0.0;
  int number = 0;           ///< of the node or element
  std::string combination;  ///< that governs
};

/// The files of an envelope that are written beside its summary.
struct EnvelopeFormats
{
  bool csv = false;
  bool json = false;
};

/// Writes an envelope into a folder, its name being the beginning of the names of the files:
/// "NAME.beam_forces.csv" and the like, "NAME.json", and "NAME.summary.txt".
///
/// A row is an extreme of a component at a point: its number and point, the component, "min" or
/// "max", the combination that governs, and all values of the point in that combination.
///
/// Returns the peak of every component, in the order of the tables and their columns.
std::vector<Peak> WriteEnvelope(const Study& study, const SolvedCases& cases,
                                const Envelope& envelope, const EnvelopeFormats& formats,
                                const std::filesystem::path& folder,
                                AtomicFile::By writer = AtomicFile::By::Program);

/// The name and the factors of a combination as members of a JSON object, without braces.
std::string JsonOf(const Study& study, const Combination& combination);

}  // namespace morlen::cases
