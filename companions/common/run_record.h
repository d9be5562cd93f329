#pragma once

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "assembly/solution.h"
#include "assembly/solver_account.h"
#include "common/tables.h"

namespace morlen {

// The record of a run of morlen-run: a JSON file next to the results, "MODEL.morlen.run", which is
// written last. The result files do not tell which solver has made them, nor how exact they are.

/// How a run has solved a model, and how well.
struct RunFacts
{
  std::string version;  ///< of the program
  std::string solver;
  std::string why;              ///< this solver
  int iterations = 0;           ///< 0 after a direct solution
  double residual = 0.0;        ///< relative: SolutionAccuracy::residual
  double estimatedError = 0.0;  ///< relative: SolutionAccuracy::error
  int equations = 0;
};

/// The facts of a run of this program.
RunFacts FactsOf(const SolverAccount& account, const SolutionAccuracy& accuracy, int equations);

/// The size of a file and the FNV-1a hash of its bytes, 64 bits (G. Fowler, L. C. Noll, K.-P. Vo,
/// D. Eastlake, The FNV Non-Cryptographic Hash Algorithm, 2011).
struct Fingerprint
{
  std::uintmax_t size = 0;
  std::uint64_t hash = 0;

  bool operator==(const Fingerprint&) const = default;
};

Fingerprint FingerprintOf(std::string_view bytes);
/// Nothing when the file cannot be read.
std::optional<Fingerprint> FingerprintOf(const std::filesystem::path& file);

/// A file that a run has read or written.
struct RecordedFile
{
  std::string name;  ///< relative to the folder of the record
  Fingerprint content;
};

struct RunRecord
{
  RunFacts facts;
  std::vector<RecordedFile> inputs;   ///< the problem file first; its name may be "-"
  std::vector<RecordedFile> results;  ///< in the order in which they got their names
};

/// The name of the record for a model or its results: "a/m.morlen.run" for "a/m.dat" and
/// "a/m.morlen.res".
std::filesystem::path RunRecordName(const std::filesystem::path& file);

void WriteRunRecord(const RunRecord& record, std::ostream& out);
/// Nothing when the text is no record, or one of a later format.
std::optional<RunRecord> ReadRunRecord(std::string_view text);

/// The facts of the run that has made some results, as far as they are known.
struct KnownRun
{
  enum class State
  {
    Matches,
    Absent,  ///< there is no record
    Differs  ///< the problem file or the results are others than those of the record
  };

  State state = State::Absent;
  RunFacts facts = {};  ///< empty unless it matches
};

/// Compares the record next to the results with the problem file and with the results. results:
/// the files that have been read; at least one.
KnownRun FindRun(const std::filesystem::path& model,
                 std::span<const std::filesystem::path> results);

/// A JSON object: state ("matches", "absent", "differs"), version, solver, why, iterations,
/// residual, estimatedError, equations. The values are null unless the state is "matches".
std::string JsonOf(const KnownRun& run);

/// The table "run" of one row: "unknown" in every cell unless the run matches. Borrows the texts.
tables::Table RunTable(const KnownRun& run);

}  // namespace morlen
