#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "case_file/study.h"
#include "cases/solved_cases.h"
#include "common/atomic_file.h"

namespace morlen::cases {

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
void WriteEnvelope(const Study& study, const SolvedCases& cases, const Envelope& envelope,
                   const EnvelopeFormats& formats, const std::filesystem::path& folder,
                   AtomicFile::By writer = AtomicFile::By::Program);

/// The name and the factors of a combination as members of a JSON object, without braces.
std::string JsonOf(const Study& study, const Combination& combination);

}  // namespace morlen::cases
