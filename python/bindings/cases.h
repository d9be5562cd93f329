#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "case_file/study.h"
#include "cases/solved_cases.h"
#include "model.h"
#include "places.h"
#include "session.h"

namespace morlen::python {

/// A file of load cases that is refused: its first error.
struct RefusedCases
{
  FatalError error;
  Place place;
};

/// Reads a file of load cases with everything that it names. Throws RefusedCases for errors; its
/// other problems are warnings.
std::unique_ptr<cases::Study> ReadCases(const std::string& file, std::string_view text);

/// The load cases of a file, solved.
class CaseResults
{
public:
  /// Fatal as Solve. solver: as there.
  CaseResults(std::unique_ptr<cases::Study> study, std::optional<SolverType> solver,
              std::FILE* info);
  /// From State. Fatal for other bytes.
  explicit CaseResults(std::span<const char> state);

  /// All as bytes. Nothing has to be read or solved again.
  Bytes State() const;

  /// As in the study: the cases come first.
  const std::vector<Combination>& Combinations() const { return combinations; }
  const std::vector<cases::Envelope>& Envelopes() const { return envelopes; }
  const SolvedCases& Solved() const { return *solved; }
  const std::shared_ptr<Analysis>& Common() const { return analysis; }

private:
  void GetCombinations(ByteGetter& get);
  void RequireMembers() const;

  std::vector<Combination> combinations;
  std::vector<cases::Envelope> envelopes;
  std::shared_ptr<Analysis> analysis;  ///< its problem is borrowed by `solved`
  std::unique_ptr<SolvedCases> solved;
};

/// The results of a case or a combination (from 0). They share the model with all others.
std::shared_ptr<Solved> ResultsOf(const CaseResults& all, int combination);

/// The extremes of values of one kind. Rows: items in the order of the file, each with its points;
/// values that an item lacks are not numbers, by -1.
struct EnvelopeTable
{
  std::vector<int> numbers;  ///< of the nodes or elements
  int points = 0;
  int width = 0;  ///< values of a point
  std::vector<double> minimum, maximum;
  std::vector<int> minimumBy, maximumBy;  ///< places in the envelope's list, from 0
};

/// Beam forces in the plane are N, Vy, Vz, T, My, Mz too, with zeros.
EnvelopeTable TableOf(const CaseResults& all, const cases::Envelope& envelope, ValueKind kind);

}  // namespace morlen::python
