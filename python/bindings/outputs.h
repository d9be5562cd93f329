#pragma once

#include <optional>
#include <string>

#include "model.h"

namespace morlen::python {

/// The names of the files to write.
struct OutputNames
{
  std::optional<std::string> text;    ///< the text results of the program
  std::optional<std::string> post;    ///< its results for the post-processor
  std::optional<std::string> mesh;    ///< its mesh file
  std::optional<std::string> vtu;     ///< as of morlen-export
  std::optional<std::string> report;  ///< as of morlen-report
};

/// Writes the files; each is complete or as it was before. Fatal when one cannot be written, would
/// replace a problem file, or is named twice.
void WriteOutputs(const Solved& solved, const OutputNames& names);

}  // namespace morlen::python
