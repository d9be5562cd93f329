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

  const cases::Study& Study() const { return *study; }
  const SolvedCases& Solved() const { return *solved; }
  const std::shared_ptr<Analysis>& Common() const { return analysis; }

private:
  std::unique_ptr<cases::Study> study;
  std::unique_ptr<SolvedCases> solved;
  std::shared_ptr<Analysis> analysis;
};

/// The results of a case or a combination (from 0), which keep all of them alive.
std::shared_ptr<Solved> ResultsOf(const std::shared_ptr<CaseResults>& all, int combination);

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
