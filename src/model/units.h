#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace morlen {

/// A named unit system. Its factors refer to units that the user chooses, the same for all
/// systems of a file, so that only their ratios matter.
struct UnitsBase
{
  static constexpr std::size_t kLongestName = 20;  ///< characters of every name in a problem file

  bool operator==(const UnitsBase&) const = default;

  std::string name = {};    ///< key of the table
  std::string nameN = {};   ///< force unit
  std::string nameM = {};   ///< length unit
  std::string namePa = {};  ///< pressure unit
  double facN = 1.0;        ///< size of the force unit
  double facM = 1.0;        ///< size of the length unit
};

/// True for a size that a unit can have: positive and finite.
bool IsFactor(double size);

/// Order of two unit systems by name, byte by byte: below 0 when a comes first, above 0 when b
/// does, else 0.
int CompareUnitsBase(const UnitsBase& a, const UnitsBase& b);

/// The unit systems of a problem file, and the factors of the units used. All computation is in
/// the units of the results: every value read is multiplied by the ratios of the factors of its
/// units to those of the results.
class Units
{
public:
  /// Ratios of the units of a record to those of the results.
  struct Ratios
  {
    double force = 1.0;
    double length = 1.0;

    /// Factor of a value of dimension force^forcePower · length^lengthPower.
    double Of(int forcePower, int lengthPower) const;
  };

  /// Adds n unit systems and keeps the table sorted. Equal names are allowed; a look-up finds
  /// any of them. The reader of problem files refuses equal names with different contents.
  void AddUnitsBase(const UnitsBase* list, int n);

  /// The unit system of this name; null when it is not defined.
  const UnitsBase* FindUnitsBase(std::string_view name) const;
  /// The same; never null. Fatal when it is not defined, and when the name has more than
  /// UnitsBase::kLongestName characters.
  const UnitsBase* GiveUnitsBase(std::string_view name) const;
  /// The unit system named after the first "units" of a record's items (else the first "Units",
  /// else "UNITS"); null when there is no such word or nothing follows it. A comment is not
  /// searched.
  const UnitsBase* GiveUnitsBaseFromLine(std::string_view line) const;
  /// The first unit system whose length unit has this name; fatal when there is none.
  const UnitsBase* GiveUnitsBaseFromLength(std::string_view name) const;

  /// For a material or load record that names no unit system.
  Ratios DefaultRatios() const { return {matLoadForce / resForce, matLoadLength / resLength}; }
  /// For a record that names this unit system. Fatal when its factors are not positive.
  Ratios RatiosOf(const UnitsBase& given) const;
  /// For mesh coordinates.
  double MeshLengthRatio() const { return meshLength / resLength; }

  double meshLength = 1.0;    ///< length factor of mesh coordinates
  double matLoadForce = 1.0;  ///< factors of materials and loads that name no unit system
  double matLoadLength = 1.0;
  double resForce = 1.0;  ///< factors of the results
  double resLength = 1.0;
  std::string resForceName = "N";  ///< printed with the results
  std::string resLengthName = "m";
  std::string resPressureName = "Pa";
  std::vector<UnitsBase> bases;  ///< in the order of CompareUnitsBase
};

}  // namespace morlen
