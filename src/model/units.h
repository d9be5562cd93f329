#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace morlen {

/// A named unit system. Its factors are relative to a reference of the user's choice,
/// the same for all systems of a file: only their ratios count.
struct UnitsBase
{
  std::string name = {};    ///< key of the table
  std::string nameN = {};   ///< force unit
  std::string nameM = {};   ///< length unit
  std::string namePa = {};  ///< pressure unit
  double facN = 1.0;        ///< size of the force unit
  double facM = 1.0;        ///< size of the length unit
};

/// Whether the size of a unit can be one: positive and finite.
bool IsFactor(double size);

/// Order of two unit systems by name, byte by byte: below, equal to or above 0.
int CompareUnitsBase(const UnitsBase& a, const UnitsBase& b);

/// The unit systems of a problem file and the factors in force. All computation is in
/// the units of the results, so every value read is multiplied by the ratios of its own
/// factors to those.
class Units
{
public:
  /// What a value of a record is multiplied by, for its power of force and of length.
  struct Ratios
  {
    double force = 1.0;
    double length = 1.0;

    /// Factor of a value of dimension force^forcePower · length^lengthPower.
    double Of(int forcePower, int lengthPower) const;
  };

  /// Adds n unit systems and sorts the table again. Equal names are not refused; which
  /// of them a look-up finds is open.
  void AddUnitsBase(const UnitsBase* list, int n);

  /// The unit system of this name; never null. Fatal when it is not defined, and when
  /// the name has 20 characters or more.
  const UnitsBase* GiveUnitsBase(std::string_view name) const;
  /// The unit system named behind the first "units" of a line (else the first "Units",
  /// else "UNITS"); null when there is no such word or nothing follows it.
  const UnitsBase* GiveUnitsBaseFromLine(std::string_view line) const;
  /// The first unit system whose length unit has this name; fatal when there is none.
  const UnitsBase* GiveUnitsBaseFromLength(std::string_view name) const;

  /// For a material or load record without units of its own.
  Ratios DefaultRatios() const { return {matLoadForce / resForce, matLoadLength / resLength}; }
  /// For a record given in this unit system. Fatal when its factors are not positive.
  Ratios RatiosOf(const UnitsBase& given) const;
  /// For mesh coordinates.
  double MeshLengthRatio() const { return meshLength / resLength; }

  double meshLength = 1.0;    ///< length factor of mesh coordinates
  double matLoadForce = 1.0;  ///< factors of materials and loads without units of their own
  double matLoadLength = 1.0;
  double resForce = 1.0;  ///< factors of the results
  double resLength = 1.0;
  std::string resForceName = "N";  ///< printed with the results
  std::string resLengthName = "m";
  std::string resPressureName = "Pa";
  std::vector<UnitsBase> bases;  ///< in the order of CompareUnitsBase
};

}  // namespace morlen
