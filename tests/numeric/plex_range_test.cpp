#include "numeric/plex_range.h"

#include <climits>
#include <vector>

#include "support/fatal.h"

namespace morlen {

namespace {

struct Thing
{
  explicit Thing(int v) : value(v) { ++alive; }
  ~Thing() { --alive; }
  int value;
  static inline int alive = 0;
};

class PlexRange : public testing::Test
{
protected:
  ~PlexRange() override { DeleteAll<Thing>(plex); }
  void Fill(const std::vector<int>& numbers)
  {
    for (int number : numbers)
      Store(plex, number, std::make_unique<Thing>(number * 10));
  }
  VoidPlex plex{10};
};

TEST_F(PlexRange, EachGoesUpTheNumbers)
{
  Fill({500, 3, 77, 1});
  std::vector<int> values;
  for (Thing& thing : Each<Thing>(plex))
    values.push_back(thing.value);
  EXPECT_EQ(values, (std::vector<int>{10, 30, 770, 5000}));
}

TEST_F(PlexRange, EachOfAnEmptyContainerDoesNothing)
{
  for (Thing& thing : Each<Thing>(plex))
    ADD_FAILURE() << thing.value;
}

TEST_F(PlexRange, EachNumberedGivesTheNumber)
{
  Fill({4, 30});
  std::vector<int> numbers;
  for (auto [number, thing] : EachNumbered<Thing>(plex)) {
    numbers.push_back(number);
    EXPECT_EQ(thing.value, number * 10);
    thing.value = 0;
  }
  EXPECT_EQ(numbers, (std::vector<int>{4, 30}));
  EXPECT_EQ(Find<Thing>(plex, 30)->value, 0);
}

TEST_F(PlexRange, LoopsAreIndependent)
{
  Fill({1, 25, 26, 300});
  std::vector<int> pairs;
  for (const Thing& a : Each<const Thing>(plex)) {
    for (const Thing& b : Each<const Thing>(plex)) {
      EXPECT_NE(Find<Thing>(plex, 300), nullptr);
      pairs.push_back(a.value * 1000 + b.value / 10);
    }
    int i = 0;
    plex.next(i);
  }
  EXPECT_EQ(pairs.size(), 16u);
  EXPECT_EQ(pairs.back(), 3000300);
}

TEST_F(PlexRange, PlacesMayBeEmptiedMeanwhile)
{
  Fill({1, 25, 26, 300});
  for (auto [number, thing] : EachNumbered<Thing>(plex)) {
    delete &thing;
    plex.set_at(number, nullptr);
  }
  EXPECT_EQ(plex.First(), 0);
  EXPECT_EQ(Thing::alive, 0);
}

TEST_F(PlexRange, FindTakesAnyNumber)
{
  EXPECT_EQ(Find<Thing>(plex, 1), nullptr);
  Fill({5, 60});
  for (int i : {INT_MIN, -1, 0, 1, 4, 6, 59, 61, INT_MAX})
    EXPECT_EQ(Find<Thing>(plex, i), nullptr) << i;
  EXPECT_EQ(Find<Thing>(plex, 5)->value, 50);
}

TEST_F(PlexRange, StoreDeletesWhatIsRefused)
{
  Fill({5});
  ExpectFatal([&] { Store(plex, 5, std::make_unique<Thing>(1)); }, "Repeated index 5 in VoidPlex");
  ExpectFatal([&] { Store(plex, 0, std::make_unique<Thing>(1)); }, "Invalid void index 0");
  EXPECT_EQ(Thing::alive, 1);
}

TEST_F(PlexRange, ReplaceHandsBackWhatWasThere)
{
  Fill({5, 7});
  EXPECT_EQ(Replace(plex, 6, std::make_unique<Thing>(1)), nullptr);
  EXPECT_EQ(Replace(plex, 5, std::make_unique<Thing>(2))->value, 50);
  EXPECT_EQ(Find<Thing>(plex, 5)->value, 2);
  ExpectFatal([&] { Replace(plex, 0, std::make_unique<Thing>(3)); }, "Invalid void index 0");
  EXPECT_EQ(Thing::alive, 3);
}

TEST_F(PlexRange, DeleteAllDeletesAndClears)
{
  Fill({5, 60, 900});
  EXPECT_EQ(Thing::alive, 3);
  DeleteAll<Thing>(plex);
  EXPECT_EQ(Thing::alive, 0);
  EXPECT_EQ(plex.Count(), 0);
}

}  // namespace

}  // namespace morlen
