#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "base/read_observer.h"

namespace morlen {

struct Problem;

namespace check {

class Recorder;

/// Watches which factors of units the values of a file are read with, and reports those that a
/// later line about units should have governed.
///
/// All values are converted to the units of the results where they are read, so that a line about
/// units has no effect on the values before it.
class UnitOrder
{
public:
  /// The problem is borrowed; the readers fill it.
  explicit UnitOrder(const Problem& problemRead) : problem(problemRead) {}

  /// A keyword with this topic at this place.
  void Entered(ReadTopic topic, std::ptrdiff_t place);
  /// The item has been read from the record at this place. named: the record names its unit system.
  void Stored(ReadItem item, int number, std::ptrdiff_t place, bool named);

  /// After reading: an error for each kind of values that is read with other factors than meant.
  void Report(Recorder& recorder);

private:
  enum class Kind : int
  {
    Coordinates,
    Materials,
    Supports,
    Loads
  };

  /// Sizes of the units of force and length.
  struct Sizes
  {
    double force = 1.0;
    double length = 1.0;
    bool operator==(const Sizes&) const = default;
  };

  /// Exponents of force and length in a value.
  struct Powers
  {
    int force, length;
    bool operator==(const Powers&) const = default;
  };

  /// Values of one kind that are read with the same factors.
  struct Group
  {
    Kind kind;
    bool named;     ///< by unit systems in their records
    bool governed;  ///< a line in front gives the units of the kind
    Sizes from, to;
    std::ptrdiff_t place;  ///< of the first record
    std::vector<Powers> powers = {};
  };

  /// Values that lines about units should have governed, by the line to be reported.
  struct Fault
  {
    std::ptrdiff_t place;
    std::string head;   ///< the message up to the names of the values
    std::string names;  ///< "coordinates (line 5), loads (line 19)"
    std::string lengths, forces;
  };

  /// A line about units, and the sizes that it gives.
  struct Line
  {
    std::ptrdiff_t place;
    std::optional<Sizes> sizes;  ///< unknown until the line is read
  };

  Group& GroupOf(Kind kind, bool named, std::ptrdiff_t place);
  void AddPowers(Group& group, ReadItem item, int number) const;
  void AddPowersOfMaterial(Group& group, ReadItem item, int number) const;
  void AddPowersOfSupport(Group& group, int number) const;
  void AddPowersOfElementLoad(Group& group, int number) const;
  void LearnSizes();
  Sizes SizesFor(Kind kind) const;
  const std::optional<Line>& LineFor(Kind kind) const;
  std::optional<Fault> LateLine(const Group& group) const;
  std::optional<Fault> MissingLine(const Group& group) const;
  static void Add(Group& group, bool given, Powers powers);
  static Kind KindOf(ReadItem item);
  static const char* NameOf(Kind kind);
  static const char* KeywordFor(Kind kind);
  static bool Has(const Group& group, int Powers::*power);
  static bool Changes(const Group& group, const Sizes& ratio);

  const Problem& problem;
  std::vector<Group> groups;
  std::optional<Line> meshLine;                ///< the first
  std::optional<Line> materialsLine;           ///< the first
  std::optional<std::ptrdiff_t> resultsPlace;  ///< of the last line on the units of the results
};

}  // namespace check

}  // namespace morlen
