#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <optional>
#include <vector>

#include "common/result_data.h"

namespace morlen {

/// The problem file and the result files that a companion reads, as its command line names them.
class InputFiles
{
public:
  /// Declares the model and the options --results, --text and --any-time. The other functions are
  /// valid once the command line has been parsed.
  void Declare(CLI::App& app);

  const std::filesystem::path& Model() const { return model; }
  results::Files Files() const;
  /// True when the command line has one of the options.
  bool NamesResults() const { return post || text || anyTime; }

  /// The model and the result files, for RefuseInputs.
  std::vector<std::filesystem::path> All() const;

private:
  std::filesystem::path model;
  std::optional<std::filesystem::path> post, text;
  bool anyTime = false;
};

}  // namespace morlen
