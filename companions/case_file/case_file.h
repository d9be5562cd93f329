#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cases/en1990.h"
#include "check/findings.h"

/// The file of load cases, combinations and envelopes (TOML).
namespace morlen::cases {

/// A place in a file, from 1; both 0 for the whole file.
struct Place
{
  int line = 0;
  int column = 0;
};

/// Collects the problems of a file and of those that it names.
class Problems
{
public:
  /// Data lost, which the program accepts, is doubtful or an error.
  enum class LostData : bool
  {
    Warning,
    Error
  };

  explicit Problems(LostData lost_) : lost(lost_) {}

  void Error(Place place, std::string message, std::string hint = "");
  void Warn(check::Code code, Place place, std::string message);
  /// Of another file, or at a place that has been found already.
  void Add(check::Located problem);

  bool HasErrors() const { return errors > 0; }
  int Errors() const { return errors; }
  /// By file and place; those of the file itself first. Without repetitions.
  std::vector<check::Located> Sorted() const;

private:
  LostData lost;
  std::vector<check::Located> all;
  int errors = 0;
};

/// A text with loads, and where it begins.
struct LoadText
{
  std::string text;
  Place place;         ///< of the value
  bool exact = false;  ///< the text begins at `begin` and is line by line that of the file
  Place begin;
};

struct NamedPlace
{
  std::string name;
  Place place;
};

struct CaseEntry
{
  NamedPlace name;
  std::string title;
  bool gravity = false;
  bool fromModel = false;
  std::optional<NamedPlace> loads;  ///< a file, as written
  std::optional<LoadText> text;
};

struct Term
{
  NamedPlace name;
  double factor;
};

struct CombinationEntry
{
  NamedPlace name;
  std::vector<Term> terms;
};

struct EnvelopeEntry
{
  NamedPlace name;
  std::vector<NamedPlace> patterns;
};

struct VariableEntry
{
  NamedPlace name;
  std::vector<NamedPlace> cases;
  bool together = false;
  double psi[3] = {};
};

struct ActionsEntry
{
  Place place;
  std::vector<std::vector<NamedPlace>> permanent;
  std::vector<VariableEntry> variable;
  ActionFactors factors;
  std::vector<Formula> make;
};

/// The content of the file, in its order.
struct CaseFile
{
  NamedPlace model;  ///< as written
  std::vector<CaseEntry> cases;
  std::vector<CombinationEntry> combinations;
  std::vector<EnvelopeEntry> envelopes;
  std::optional<ActionsEntry> actions;
};

/// Reads the text of a file. Nothing after a syntax error, which is then the only problem; else
/// what could be read.
std::optional<CaseFile> ReadCaseFile(std::string_view text, Problems& problems);

/// "; did you mean 'x'?", or nothing when no candidate is near.
std::string DidYouMean(std::string_view word, const std::vector<std::string_view>& candidates);

}  // namespace morlen::cases
