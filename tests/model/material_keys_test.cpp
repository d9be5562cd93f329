#include "model/material_keys.h"

#include <gtest/gtest.h>

#include <string>

namespace morlen {

TEST(MaterialKeys, OtherNotationsHaveAMeaning)
{
  static const struct
  {
    const char* word;
    const char* key;
  } cases[] = {
      {"young", "E"},        {"Poisson", "nu"},    {"density", "Weight"}, {"T", "t"},
      {"Thickness", "t"},    {"It", "J"},          {"I_y", "Iy"},         {"Iyy", "Iy"},
      {"Izz", "Iz"},         {"Area", "A"},        {"EX", "Ex"},          {"widht_y", "widthY"},
      {"width_y", "widthY"}, {"A", "A"},           {"units", "units"},    {"colour", ""},
      {"alpha", ""},         {"Wieght", "Weight"}, {"Ix", "J"},           {"nuxy", "nuXY"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(MeantMaterialKey(c.word), c.key) << c.word;
}

TEST(MaterialKeys, FaultsNameTheCause)
{
  EXPECT_EQ(FaultOfMaterialKey("young", ""), "'young' is no key of a material: did you mean E?");
  EXPECT_EQ(FaultOfMaterialKey("5", "E = Iz"),
            "the number '5' is in the place of a key: the item before it is 'E = Iz'");
  EXPECT_EQ(FaultOfMaterialKey("5", ""), "the number '5' is in the place of a key");
  EXPECT_EQ(FaultOfMaterialKey(",", "E=1"), "items are separated by blanks, not by ','");
  EXPECT_EQ(FaultOfMaterialKey("//", "E=1"),
            "'//' is no key of a material: a comment begins with '#'");
  EXPECT_EQ(FaultOfMaterialKey("mm2", "A=1"),
            "'mm2' is no key of a material: units are not written after values, an item units=... "
            "names a unit system");
  EXPECT_EQ(FaultOfMaterialKey("colour", "E=1"), "'colour' is no key of a material");
}

}  // namespace morlen
