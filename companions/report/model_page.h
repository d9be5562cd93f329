#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "common/atomic_file.h"
#include "report/page_parts.h"

namespace morlen {

struct Problem;

/// The texts of the page of a model without results.
struct ModelPageTexts
{
  std::string file;  ///< name of the problem file, or of the file of load cases
  std::vector<std::string> description;
  std::vector<Finding> findings;  ///< of the check, with their motions
};

/// Writes the page of a model without results: its tables, its loads and the findings of the check.
/// problem: as read, not prepared for an analysis. Loads that the program refuses are left out.
/// Fatal on elements with unknown nodes or materials.
void WriteModelPage(Problem& problem, const ModelPageTexts& texts,
                    const std::filesystem::path& output,
                    AtomicFile::By writer = AtomicFile::By::Program);

/// The same for the text of a problem file. Returns false, and writes nothing, when the program
/// refuses to read it, or an element has an unknown node or material.
bool WriteModelPage(std::string_view text, const ModelPageTexts& texts,
                    const std::filesystem::path& output, AtomicFile::By writer);

}  // namespace morlen
