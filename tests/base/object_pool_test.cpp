#include "base/object_pool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <barrier>
#include <cstdint>
#include <cstring>
#include <memory>
#include <set>
#include <thread>
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

TEST(ObjectPool, ResetsWhenEverythingIsReleased)
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

// Each thread makes objects, hands them to another thread, and deletes those that it receives.
TEST(ObjectPool, ThreadsShareAPool)
{
  constexpr int kThreads = 4;
  constexpr int kRounds = 60;
  constexpr int kEach = 2500;  // more than a thread borrows at a time
  std::vector<std::vector<std::unique_ptr<Thing>>> handed(kThreads);
  std::vector<int> wrong(kThreads, 0);
  std::barrier together(kThreads);
  const auto work = [&](int me) {
    for (int round = 0; round < kRounds; ++round) {
      std::vector<std::unique_ptr<Thing>> mine;
      for (int i = 0; i < kEach; ++i)
        mine.push_back(std::make_unique<Thing>(me * kEach + i));
      for (int i = 0; i < kEach; ++i)
        wrong[me] += mine[i]->value != me * kEach + i;
      const int giver = (me + round) % kThreads;
      handed[me] = std::move(mine);
      together.arrive_and_wait();
      mine = std::move(handed[giver]);
      for (int i = 0; i < kEach; ++i)
        wrong[me] += mine[i]->value != giver * kEach + i;
      for (int i = me; i < kEach; i += 2)
        mine[i].reset();
      together.arrive_and_wait();
    }
  };
  std::vector<std::thread> threads;
  for (int me = 0; me < kThreads; ++me)
    threads.emplace_back(work, me);
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(wrong, std::vector<int>(kThreads, 0));
}

// Threads that make and delete the same number of objects give all their places back.
TEST(ObjectPool, ThreadsLeaveNoPlacesBehind)
{
  const auto place = [] { return std::make_unique<Thing>(0).get(); };
  if (place() != place())
    GTEST_SKIP() << "a sanitizer holds places back";
  std::set<const Thing*> places;
  for (int i = 0; i < 200; ++i) {
    std::thread([&] {
      std::vector<std::unique_ptr<Thing>> things;
      for (int k = 0; k < 100; ++k) {
        things.push_back(std::make_unique<Thing>(k));
        places.insert(things.back().get());
      }
    }).join();
  }
  EXPECT_LE(places.size(), 2000u) << "of the 20000 objects";
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
