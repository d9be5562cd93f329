#include "base/object_pool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "base/large_memory.h"

namespace morlen {

namespace {

class Thing : public Pooled<Thing>
{
public:
  explicit Thing(int v) : value(v) {}
  virtual ~Thing() = default;

  int value;
  double more[3] = {};
};

class LargerThing : public Thing
{
public:
  using Thing::Thing;
  double evenMore[10] = {};
};

}  // namespace

TEST(ObjectPool, ObjectsAreApartAndAligned)
{
  constexpr int kCount = 50000;
  std::vector<std::unique_ptr<Thing>> things;
  for (int i = 0; i < kCount; ++i) {
    things.push_back(std::make_unique<Thing>(i));
    ASSERT_EQ(reinterpret_cast<std::uintptr_t>(things.back().get()) % alignof(Thing), 0u);
  }
  for (int i = 0; i < kCount; ++i)
    ASSERT_EQ(things[i]->value, i);
  std::sort(things.begin(), things.end());
  for (int i = 1; i < kCount; ++i) {
    ASSERT_GE(reinterpret_cast<std::uintptr_t>(things[i].get()) -
                  reinterpret_cast<std::uintptr_t>(things[i - 1].get()),
              sizeof(Thing));
  }
}

TEST(ObjectPool, PlacesAreUsedAgainInAnyOrder)
{
  std::vector<std::unique_ptr<Thing>> things(1000);
  for (int round = 0; round < 20; ++round) {
    for (int i = round % 3; i < 1000; i += 3)
      things[i] = std::make_unique<Thing>(1000 * round + i);
    for (int i = round % 7; i < 1000; i += 7)
      things[i].reset();
    for (int i = 0; i < 1000; ++i) {
      if (things[i]) {
        ASSERT_EQ(things[i]->value % 1000, i);
      }
    }
  }
}

TEST(ObjectPool, StartsAnewWhenEverythingIsReturned)
{
  for (const int count : {300, 20000, 300, 1, 50000}) {
    std::vector<std::unique_ptr<Thing>> things;
    for (int i = 0; i < count; ++i)
      things.push_back(std::make_unique<Thing>(i));
    for (int i = 0; i < count; ++i)
      ASSERT_EQ(things[i]->value, i);
  }
}

TEST(ObjectPool, DerivedObjectsGoElsewhereAndBackThroughTheirBase)
{
  std::vector<std::unique_ptr<Thing>> things;
  for (int i = 0; i < 100; ++i) {
    if (i % 2)
      things.push_back(std::make_unique<LargerThing>(i));
    else
      things.push_back(std::make_unique<Thing>(i));
  }
  for (int i = 0; i < 100; ++i)
    EXPECT_EQ(things[i]->value, i);
}

TEST(LargeMemory, BlocksOfAnySizeCanBeWritten)
{
  for (const std::size_t bytes : {std::size_t{1}, std::size_t{1000}, (std::size_t{1} << 21) - 1,
                                  std::size_t{1} << 21, std::size_t{5000001}}) {
    const LargeBlock block = AllocateLarge(bytes);
    std::memset(block.get(), 'x', bytes);
    EXPECT_EQ(std::count(block.get(), block.get() + bytes, 'x'),
              static_cast<std::ptrdiff_t>(bytes));
  }
}

}  // namespace morlen
