#include <gtest/gtest.h>

#include <string>

#include "base/read_observer.h"
#include "base/textscan.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "model/units.h"
#include "support/fatal.h"
#include "support/read_listener.h"

namespace morlen {

TEST(ReaderNotices, OfAMaterialRecord)
{
  static const struct
  {
    const char* record;
    Notices notices;
  } cases[] = {
      {"E=1 nu=0.3 widthY=2 widthZ=1 Euler1=0.5", {}},
      {"A=2 units kN-m", {{ReadEvent::UnitsUsed, "kN-m"}}},
      {"A=2m2", {{ReadEvent::NumberPart, "2m2"}}},
      {"area=2", {{ReadEvent::Prefix, "area"}}},
      {"A=2 Weight=", {{ReadEvent::NoValue, "Weight"}}},
      {"A=2 Weight", {{ReadEvent::NoValue, "Weight"}}},
      {"A=2,1 Iz=2.1d8", {{ReadEvent::NumberPart, "2,1"}, {ReadEvent::NumberPart, "2.1d8"}}},
      {"widthY=1 E=2", {{ReadEvent::LoneWidth, "widthY"}}},
      {"WIDTHZ=1 E=2", {{ReadEvent::LoneWidth, "WIDTHZ"}}},
      {"widthY=1 widthZ=2", {}},
      {"A=2 UnItS=kN-m", {{ReadEvent::UnitsNotFound, "UnItS=kN-m"}}},
      {"A=2 a=3 E=1 Ex=1", {{ReadEvent::RepeatedItem, "a=3"}}},
      {"units=kN-m A=2 units=N",
       {{ReadEvent::UnitsUsed, "kN-m"}, {ReadEvent::RepeatedItem, "units=N"}}},
      {"A=2 # Weight= widthY=1", {}},
  };
  const UnitsBase base{"kN-m", "kN", "m", "kPa", 1000.0, 1.0};
  Units units;
  units.AddUnitsBase(&base, 1);
  for (const auto& c : cases) {
    const ReadListener listener;
    Material material;
    material.ReadFromAsciiNoNum(c.record, &units);
    EXPECT_EQ(listener.notices, c.notices) << c.record;
  }
}

TEST(ReaderNotices, OfTheNumberOfAMaterial)
{
  for (const std::string number : {"1", "1:", "1=", "1.5", "1e2", "1x"}) {
    const ReadListener listener;
    const std::string record = number + " A=2\n";
    TextScan text(record);
    Material material;
    FatalCaught([&] { material.ReadFromAscii(text, nullptr); });
    if (number.find_first_of(".ex") == number.npos) {
      EXPECT_EQ(listener.notices, Notices()) << number;
    } else {
      ASSERT_FALSE(listener.notices.empty()) << number;
      EXPECT_EQ(listener.notices.front(), (Notices::value_type{ReadEvent::NumberPart, number}));
    }
  }
}

TEST(ReaderNotices, OfANodeRecord)
{
  static const struct
  {
    const char* record;
    int read;
    Notices notices;
  } cases[] = {
      {"1 0.5 -2e3\n", 1, {{ReadEvent::LineTail, ""}}},
      {"1 0.5 2 # x\n", 1, {{ReadEvent::LineTail, " # x"}}},
      {"1 0 2,1\n", 1, {{ReadEvent::NumberPart, "2,1"}, {ReadEvent::LineTail, ""}}},
      {"1.5 2 3\n", 1, {{ReadEvent::NumberPart, "1.5"}, {ReadEvent::LineTail, " 3"}}},
      {"1 0,5 2\n", 0, {{ReadEvent::BrokenRecord, "0,5"}}},
      {"1 0.5 x\n", 0, {{ReadEvent::BrokenRecord, "x"}}},
      {"1 0.5\nend", 0, {{ReadEvent::BrokenRecord, " 0.5"}}},
      {"1 0.5", 0, {{ReadEvent::BrokenRecord, " 0.5"}}},
  };
  for (const auto& c : cases) {
    const ReadListener listener;
    Node node(2);
    TextScan text(c.record);
    EXPECT_EQ(node.ReadFromAscii(text), c.read) << c.record;
    EXPECT_EQ(listener.notices, c.notices) << c.record;
  }
}

TEST(ReaderNotices, OfAnElementThatCannotBeRead)
{
  static const struct
  {
    const char* record;
    Notices notices;
    const char* reason;
  } cases[] = {
      {"1 4,2 1\n",
       {{ReadEvent::BrokenRecord, "4,2"}},
       "'4,2' is not a whole number: numbers are separated by blanks, write 4 2"},
      {"1 4, 2 1\n",
       {{ReadEvent::BrokenRecord, "4,"}},
       "'4,' is not a whole number: numbers are separated by blanks, write 4"},
      {"1 2 # 1\n",
       {{ReadEvent::BrokenRecord, "#"}},
       "a comment begins before all numbers are there"},
      {"1.5 2 7\n", {{ReadEvent::BrokenRecord, "1.5"}}, "'1.5' is not a whole number"},
      {"1e2 1 2 1\n", {{ReadEvent::BrokenRecord, "1e2"}}, "'1e2' is not a whole number: write 100"},
      {"1 1\nend\n",
       {{ReadEvent::BrokenRecord, " 1"}},
       "2 numbers are expected, only 1 number is there"},
  };
  for (const auto& c : cases) {
    const ReadListener listener;
    Mesh mesh(100, 100, 3, Linear, 2);
    Elem elem(&mesh, nullptr);
    TextScan text(c.record);
    ASSERT_EQ(elem.ReadFromAscii(text, mesh.GiveNodePlex(), nullptr), 0) << c.record;
    EXPECT_EQ(listener.notices, c.notices) << c.record;
    EXPECT_EQ(listener.lastDetail, c.reason) << c.record;
  }
}

TEST(ReaderNotices, OfAnElementRecord)
{
  static const struct
  {
    const char* record;
    Notices notices;
  } cases[] = {
      {"1 1 2 7\n", {}},
      {"1 1 2 0\r\n", {}},
      {"1 1 2 7 \r\n", {}},
      {"1 1 2 010", {{ReadEvent::NotDecimal, "010"}}},
      {"1 1 2 7x", {{ReadEvent::NumberPart, "7x"}}},
      {"1 1-4 7", {{ReadEvent::NumberPart, "1-4"}}},
      {"1 1 2:7", {}},
      {"1 1 2=7", {}},
      {"1 1\n2 7", {{ReadEvent::LineBreak, " 1\n2"}}},
  };
  for (const auto& c : cases) {
    const ReadListener listener;
    Mesh mesh(100, 100, 3, Linear, 2);
    Elem elem(&mesh, nullptr);
    TextScan text(c.record);
    ASSERT_EQ(elem.ReadFromAscii(text, mesh.GiveNodePlex(), nullptr), 1) << c.record;
    EXPECT_EQ(listener.notices, c.notices) << c.record;
  }
}

TEST(ReaderNotices, OfTheItemsOfAMesh)
{
  const ReadListener listener;
  Mesh mesh(100, 100, 0, ElemType(0), 0);
  TextScan text(
      "dimension 2 elemtype Linear nnode 2 coordinates\n1 0 0\n2 1 0\nend coordinates\n"
      "elements\n5 1 2\n7 2 1\nend elements\n");
  mesh.ReadFromAscii(text, nullptr);
  EXPECT_EQ(listener.stored, (Items{{ReadItem::Node, 1},
                                    {ReadItem::Node, 2},
                                    {ReadItem::Element, 5},
                                    {ReadItem::Element, 7}}));
  // Two nodes, two elements, the ends of both lists and the check of the node numbers.
  EXPECT_EQ(listener.attempts, 7);
  mesh.ClearAllElems();
  mesh.ClearAllNodes();
}

}  // namespace morlen
