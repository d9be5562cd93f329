#include "model/units.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "support/fatal.h"

namespace morlen {

namespace {

std::vector<std::string> Names(const Units& units)
{
  std::vector<std::string> names;
  for (const UnitsBase& base : units.bases)
    names.push_back(base.name);
  return names;
}

// Two systems, added in the reverse of the table's order.
Units TwoSystems()
{
  const UnitsBase list[] = {{"kN-m", "kN", "m", "kPa", 1000.0, 1.0},
                            {"N-mm", "N", "mm", "MPa", 1.0, 0.001}};
  Units units;
  units.AddUnitsBase(list, 2);
  return units;
}

TEST(Units, DefaultsLeaveValuesAlone)
{
  const Units units;
  EXPECT_EQ(units.MeshLengthRatio(), 1.0);
  EXPECT_EQ(units.DefaultRatios().force, 1.0);
  EXPECT_EQ(units.DefaultRatios().length, 1.0);
  EXPECT_EQ(units.resForceName, "N");
  EXPECT_EQ(units.resLengthName, "m");
  EXPECT_EQ(units.resPressureName, "Pa");
  EXPECT_TRUE(units.bases.empty());
}

TEST(Units, TableIsInByteOrder)
{
  EXPECT_EQ(Names(TwoSystems()), (std::vector<std::string>{"N-mm", "kN-m"}));
  EXPECT_LT(CompareUnitsBase({.name = "Z"}, {.name = "a"}), 0);
  EXPECT_GT(CompareUnitsBase({.name = "\xc3\xa9"}, {.name = "z"}), 0) << "bytes are unsigned";
  EXPECT_EQ(CompareUnitsBase({.name = "a"}, {.name = "a"}), 0);
  EXPECT_LT(CompareUnitsBase({.name = "a"}, {.name = "ab"}), 0);
}

TEST(Units, BatchesAreMergedIntoTheTable)
{
  Units units;
  std::vector<std::string> names;
  for (int batch = 0; batch < 40; ++batch) {
    std::vector<UnitsBase> list;
    for (int i = 0; i < 50; ++i) {
      list.push_back({.name = "u" + std::to_string((batch * 50 + i) * 7919 % 2003)});
      names.push_back(list.back().name);
    }
    units.AddUnitsBase(list.data(), 50);
  }
  units.AddUnitsBase(nullptr, 0);
  std::sort(names.begin(), names.end());
  EXPECT_EQ(Names(units), names);
  for (const std::string& name : names)
    EXPECT_EQ(units.GiveUnitsBase(name)->name, name);
}

TEST(Units, GiveUnitsBaseFindsByName)
{
  const Units units = TwoSystems();
  EXPECT_EQ(units.GiveUnitsBase("kN-m")->nameN, "kN");
  EXPECT_EQ(units.GiveUnitsBase("N-mm")->facM, 0.001);
}

TEST(Units, NamesHaveUpTo20Characters)
{
  Units units = TwoSystems();
  const UnitsBase longest = {.name = "12345678901234567890"};
  units.AddUnitsBase(&longest, 1);
  EXPECT_EQ(units.GiveUnitsBase(longest.name)->name, longest.name);
  EXPECT_EQ(units.GiveUnitsBaseFromLine("units=" + longest.name)->name, longest.name);
}

TEST(Units, FindUnitsBaseGivesNullForUnknownNames)
{
  const Units units = TwoSystems();
  EXPECT_EQ(units.FindUnitsBase("kn-m"), nullptr);
  EXPECT_EQ(units.FindUnitsBase("kN-m"), units.GiveUnitsBase("kN-m"));
}

TEST(Units, GiveUnitsBaseRefusesUnknownAndLongNames)
{
  const Units units = TwoSystems();
  static const struct
  {
    const char* name;
    const char* message;
  } cases[] = {
      {"kn-m", "error: Unit name 'kn-m' has not been previously defined\n"},
      {"A", "error: Unit name 'A' has not been previously defined\n"},
      {"zz", "error: Unit name 'zz' has not been previously defined\n"},
      {"", "error: Unit name '' has not been previously defined\n"},
      {"1234567890123456789",
       "error: Unit name '1234567890123456789' has not been previously defined\n"},
      {"12345678901234567890",
       "error: Unit name '12345678901234567890' has not been previously defined\n"},
      {"123456789012345678901", "error: Unit name '123456789012345678901' is too long\n"},
  };
  for (const auto& c : cases)
    ExpectFatal([&] { units.GiveUnitsBase(c.name); }, c.message);
}

TEST(Units, LineMayNameAUnitSystem)
{
  const Units units = TwoSystems();
  static const struct
  {
    const char* line;
    const char* name;
  } cases[] = {
      {"E=1 units = kN-m A=2", "kN-m"},
      {"Units: kN-m", "kN-m"},
      {"UNITS N-mm", "N-mm"},
      {"units:=:  N-mm  ", "N-mm"},
      {"units N-mm\r", "N-mm"},
      {"Units kN-m units N-mm", "N-mm"},
      {"UNITS kN-m Units N-mm", "N-mm"},
      {"unitsN-mm", "N-mm"},
      {"UnItS kN-m", nullptr},
      {"E=1 A=2", nullptr},
      {"", nullptr},
      {"units", nullptr},
      {"units = : ", nullptr},
      {"E=1 units\r", nullptr},
  };
  for (const auto& c : cases) {
    const UnitsBase* found = units.GiveUnitsBaseFromLine(c.line);
    if (c.name)
      EXPECT_EQ(found, units.GiveUnitsBase(c.name)) << c.line;
    else
      EXPECT_EQ(found, nullptr) << c.line;
  }
}

TEST(Units, LineWithAnUnfitNameIsRefused)
{
  const Units units = TwoSystems();
  ExpectFatal([&] { units.GiveUnitsBaseFromLine("units=lbf E=1"); },
              "error: Unit name 'lbf' has not been previously defined\n");
  ExpectFatal([&] { units.GiveUnitsBaseFromLine("units=123456789012345678901 E=1"); },
              "error: Unit name '123456789012345678901' is too long\n");
  ExpectFatal([&] { units.GiveUnitsBaseFromLine("units " + std::string(150, 'x')); },
              "error: Unit name '" + std::string(99, 'x') + "' is too long\n");
}

TEST(Units, LengthUnitGivesTheFirstSystem)
{
  Units units = TwoSystems();
  const UnitsBase more[] = {{.name = "a", .nameM = "mm"}, {.name = "B", .nameM = "m"}};
  units.AddUnitsBase(more, 2);
  EXPECT_EQ(units.GiveUnitsBaseFromLength("mm")->name, "N-mm");
  EXPECT_EQ(units.GiveUnitsBaseFromLength("m")->name, "B");
  ExpectFatal([&] { units.GiveUnitsBaseFromLength("cm"); },
              "error: Unit length name 'cm' has not been previously defined\n");
  ExpectFatal([&] { units.GiveUnitsBaseFromLength("kN-m"); },
              "error: Unit length name 'kN-m' has not been previously defined\n");
}

TEST(Units, RatiosAreInputOverResult)
{
  Units units = TwoSystems();
  units.meshLength = 0.01;
  units.matLoadForce = 10.0;
  units.matLoadLength = 0.1;
  units.resForce = 1000.0;
  units.resLength = 2.0;
  EXPECT_DOUBLE_EQ(units.MeshLengthRatio(), 0.005);
  EXPECT_DOUBLE_EQ(units.DefaultRatios().force, 0.01);
  EXPECT_DOUBLE_EQ(units.DefaultRatios().length, 0.05);
  const Units::Ratios ratios = units.RatiosOf(*units.GiveUnitsBase("N-mm"));
  EXPECT_DOUBLE_EQ(ratios.force, 0.001);
  EXPECT_DOUBLE_EQ(ratios.length, 0.0005);
  const Units::Ratios simple{.force = 3.0, .length = 2.0};
  EXPECT_DOUBLE_EQ(simple.Of(1, -2), 0.75);
  EXPECT_DOUBLE_EQ(simple.Of(0, 4), 16.0);
  EXPECT_DOUBLE_EQ(simple.Of(1, 1), 6.0);
  EXPECT_DOUBLE_EQ(simple.Of(0, 0), 1.0);
}

TEST(Units, RecordsRefuseFactorsThatAreNotPositive)
{
  Units units;
  UnitsBase base{.name = "A", .nameN = "kN", .nameM = "m", .namePa = "kPa", .facN = 0.0};
  const char* const message = "error: Unit name 'A' must have two positive numbers\n";
  ExpectFatal([&] { units.RatiosOf(base); }, message);
  base.facN = 1.0;
  for (const double factor : {-1000.0, std::nan(""), HUGE_VAL}) {
    base.facM = factor;
    ExpectFatal([&] { units.RatiosOf(base); }, message);
  }
}

TEST(Units, FactorsMayBeSmall)
{
  Units units;
  units.resForce = 1e-18;
  const Units::Ratios ratios = units.RatiosOf({.facN = 1e-20, .facM = 1e-30});
  EXPECT_DOUBLE_EQ(ratios.force, 1e-2);
  EXPECT_DOUBLE_EQ(ratios.length, 1e-30);
}

TEST(Units, ANameEndsAtATabAndACommentHasNone)
{
  const Units units = TwoSystems();
  for (const char* line : {"A=2\tunits=N-mm\tE=1", "units\t=\tN-mm", "units=N-mm # units=kN-m"})
    EXPECT_EQ(units.GiveUnitsBaseFromLine(line), units.GiveUnitsBase("N-mm")) << line;
  for (const char* line : {"A=2 # units=N-mm", "A=2\t#units N-mm", "# units N-mm"})
    EXPECT_EQ(units.GiveUnitsBaseFromLine(line), nullptr) << line;
}

TEST(Units, ALineMayComeWithItsEnd)
{
  const Units units = TwoSystems();
  for (const char* line : {"units N-mm\n", "A=2 units=N-mm\r\n"})
    EXPECT_EQ(units.GiveUnitsBaseFromLine(line), units.GiveUnitsBase("N-mm")) << line;
  for (const char* line : {"units\n", "units = \r\n"})
    EXPECT_EQ(units.GiveUnitsBaseFromLine(line), nullptr) << line;
}

}  // namespace

}  // namespace morlen
