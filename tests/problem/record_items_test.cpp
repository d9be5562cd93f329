#include "problem/record_items.h"

#include <gtest/gtest.h>

#include <string_view>

#include "support/fatal.h"

namespace morlen {
namespace {

constexpr const char* kMisread = "Not reading item. Number=";

Units TestUnits()
{
  Units units;
  const UnitsBase systems[] = {{.name = "N-m"}, {.name = "kN-cm", .facN = 1000.0, .facM = 0.01}};
  units.AddUnitsBase(systems, 2);
  units.matLoadForce = 10.0;
  units.matLoadLength = 4.0;
  units.resForce = 2.0;
  units.resLength = 0.5;
  return units;
}

RecordItems Read(std::string_view tail, AngleItems angles = AngleItems::kRead)
{
  return ReadRecordItems(tail, TestUnits(), angles, kMisread, 7);
}

TEST(RecordItems, ARecordWithoutItemsHasTheDefaultRatios)
{
  const RecordItems items = Read(" \r\n");
  EXPECT_FALSE(items.anglesGiven);
  EXPECT_EQ(items.ratios.force, 5.0);
  EXPECT_EQ(items.ratios.length, 8.0);
}

TEST(RecordItems, HaveAnyOrder)
{
  for (const char* const tail :
       {"units=kN-cm Euler1=0.5 Euler3=-1", " Euler3: -1 UNITS kN-cm euler1 = 0.5"}) {
    const RecordItems items = Read(tail);
    EXPECT_TRUE(items.anglesGiven) << tail;
    EXPECT_EQ(items.angles[0], 0.5) << tail;
    EXPECT_EQ(items.angles[1], 0.0) << tail;
    EXPECT_EQ(items.angles[2], -1.0) << tail;
    EXPECT_EQ(items.ratios.force, 500.0) << tail;
    EXPECT_EQ(items.ratios.length, 0.02) << tail;
  }
}

TEST(RecordItems, UnknownKeysAreIgnored)
{
  const RecordItems items = Read("colour=red Euler2=1 size 3");
  EXPECT_EQ(items.angles[1], 1.0);
  EXPECT_EQ(items.ratios.force, 5.0);
}

// Where angles are read, "Euler4" is refused.
TEST(RecordItems, IgnoredAnglesAreNotChecked)
{
  const RecordItems items = Read("Euler1=1 Euler4=2 units=N-m", AngleItems::kIgnored);
  EXPECT_FALSE(items.anglesGiven);
  EXPECT_EQ(items.angles[0], 0.0);
  EXPECT_EQ(items.ratios.force, 0.5);
  ExpectFatal([] { Read("Euler4=2"); }, "error: Euler angles must be: Euler1,Euler2 or Euler3\n");
}

TEST(RecordItems, AKeyNeedsAValue)
{
  for (const char* const tail : {"units", "Euler1=", "N-m=1 colour"})
    ExpectFatal([tail] { Read(tail); }, "Not reading item. Number=7\n");
}

}  // namespace
}  // namespace morlen
