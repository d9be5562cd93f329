#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/read_observer.h"
#include "base/textscan.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/units.h"

namespace morlen {

namespace {

using Notices = std::vector<std::pair<ReadEvent, std::string>>;
using Items = std::vector<std::pair<ReadItem, int>>;

/// Records the places of the notices and the stored items; runs the steps unchanged.
class Listener : public ReadObserver
{
public:
  bool Attempt(TextScan*, const std::function<void()>& step) override
  {
    ++attempts;
    step();
    return true;
  }
  bool AttemptOn(ReadItem, int, const std::function<void()>& step) override
  {
    step();
    return true;
  }
  void Notice(ReadEvent event, std::string_view place, std::string_view) override
  {
    notices.emplace_back(event, place);
  }
  void Entered(ReadTopic) override {}
  void Stored(ReadItem item, int number) override { stored.emplace_back(item, number); }

  Notices notices;
  Items stored;
  int attempts = 0;

private:
  ObserverScope scope{*this};
};

}  // namespace

TEST(ReaderNotices, OfAMaterialRecord)
{
  static const struct
  {
    const char* record;
    Notices notices;
  } cases[] = {
      {"E=1 nu=0.3 widthY=2 Euler1=0.5", {}},
      {"A=2 units kN-m", {{ReadEvent::UnitsUsed, "kN-m"}}},
      {"A=2m2", {{ReadEvent::NumberPart, "2m2"}}},
      {"area=2", {{ReadEvent::Prefix, "area"}}},
  };
  const UnitsBase base{"kN-m", "kN", "m", "kPa", 1000.0, 1.0};
  Units units;
  units.AddUnitsBase(&base, 1);
  for (const auto& c : cases) {
    const Listener listener;
    Material material;
    material.ReadFromAsciiNoNum(c.record, &units);
    EXPECT_EQ(listener.notices, c.notices) << c.record;
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
      {"1 1\n2 7", {{ReadEvent::LineBreak, " 1\n2"}}},
  };
  for (const auto& c : cases) {
    const Listener listener;
    Mesh mesh(100, 100, 3, Linear, 2);
    Elem elem(&mesh, nullptr);
    TextScan text(c.record);
    ASSERT_EQ(elem.ReadFromAscii(text, mesh.GiveNodePlex(), nullptr), 1) << c.record;
    EXPECT_EQ(listener.notices, c.notices) << c.record;
  }
}

TEST(ReaderNotices, OfTheItemsOfAMesh)
{
  const Listener listener;
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
