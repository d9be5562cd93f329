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

/// Writes the files: all of them, or none. Fatal when one cannot be written, is named twice, or is
/// refused by RefuseSources or RefuseInputs; then all are as they were before, but for those that
/// OutputFile writes in place.
void WriteOutputs(const Solved& solved, const OutputNames& names);

}  // namespace morlen::python
