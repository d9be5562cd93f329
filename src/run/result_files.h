#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/output_file.h"
#include "run/file_identity.h"

namespace morlen {

class Project;

/// The names of the result files of a run.
struct ResultNames
{
  std::optional<std::string> text;  ///< none: no text results are written
  std::string results;
  std::string mesh;
  bool writeMesh = false;
};

/// The result files of a run, from the test whether they can be written to their final names.
class ResultFiles
{
public:
  /// Tests all files. Fatal when one cannot be written; then all are as before.
  explicit ResultFiles(const ResultNames& names);

  /// Removes the results of earlier runs from the files. Fatal when that fails.
  void Empty();

  /// Writes the results of an analysis: text results, mesh file, results. Each file is complete
  /// before the next one is written. Fatal when something is lost.
  void Write(const Project& project);

private:
  std::optional<OutputFile> text;
  std::optional<OutputFile> results;
  std::optional<OutputFile> mesh;
};

/// Removes the temporary files that killed runs have left in the folders of the results.
void RemoveRestsOfKilledRuns(const ResultNames& names);

/// Removes the content of a mesh file that the run does not write, since it belongs to an earlier
/// run. Problem files, and the files of this run, are left alone; so are devices and pipes. A file
/// that cannot be emptied gives a warning.
void EmptyStaleMesh(const std::string& name, const std::vector<RunFile>& filesOfRun);

}  // namespace morlen
