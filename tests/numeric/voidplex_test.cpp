#include "numeric/voidplex.h"

#include <algorithm>
#include <climits>
#include <map>
#include <random>
#include <vector>

#include "support/fatal.h"

namespace morlen {

namespace {

int marks[2000];

void* Mark(int i)
{
  return &marks[i];
}

std::vector<int> Numbers(const VoidPlex& plex)
{
  std::vector<int> numbers;
  for (int i = 0; plex.next(i);)
    numbers.push_back(i);
  return numbers;
}

using Ranges = std::vector<std::pair<int, int>>;

// The ranges of the chunks along the ring; the links back are checked too.
Ranges Chunks(const VoidPlex& plex)
{
  Ranges ranges;
  const VoidChunk* chunk = plex.Head();
  do {
    ranges.emplace_back(chunk->low, chunk->high);
    EXPECT_EQ(chunk->nextChunk->prevChunk, chunk);
    chunk = chunk->nextChunk;
  } while (chunk != plex.Head());
  EXPECT_TRUE(std::is_sorted(ranges.begin(), ranges.end()));
  return ranges;
}

void Fill(VoidPlex& plex, const std::vector<int>& numbers)
{
  for (int number : numbers)
    plex.set_at(number, Mark(number));
}

TEST(VoidPlex, BeginsEmptyWithOneChunk)
{
  const VoidPlex plex(100);
  EXPECT_EQ(plex.First(), 0);
  EXPECT_EQ(plex.Last(), 0);
  EXPECT_EQ(plex.Count(), 0);
  EXPECT_EQ(Chunks(plex), (Ranges{{1, 100}}));
  const VoidPlex narrow(1);
  for (const VoidPlex* empty : {&plex, &narrow}) {
    for (int from : {-3, 0, 7}) {
      int i = from;
      EXPECT_EQ(empty->next(i), nullptr);
      EXPECT_EQ(i, 0);
    }
  }
}

TEST(VoidPlex, RefusesChunksWithoutPlaces)
{
  ExpectFatal([] { VoidPlex plex(0); }, "Invalid constructor specification");
  ExpectFatal([] { VoidPlex plex(-3); }, "Invalid constructor specification");
}

TEST(VoidPlex, MakesAChunkForEachRangeInUse)
{
  VoidPlex plex(100);
  Fill(plex, {1999, 3});
  EXPECT_EQ(Chunks(plex), (Ranges{{1, 100}, {1901, 2000}}));
  EXPECT_EQ(plex.First(), 3);
  EXPECT_EQ(plex.Last(), 1999);
  EXPECT_EQ(Numbers(plex), (std::vector<int>{3, 1999}));
}

TEST(VoidPlex, FirstNumberMovesTheOnlyChunk)
{
  VoidPlex plex(100);
  plex.set_at(5000, Mark(0));
  EXPECT_EQ(Chunks(plex), (Ranges{{4901, 5000}}));
  plex.set_at(3, Mark(1));
  EXPECT_EQ(Chunks(plex), (Ranges{{1, 100}, {4901, 5000}}));
  plex.set_at(101, Mark(2));
  plex.set_at(5001, Mark(3));
  EXPECT_EQ(Chunks(plex), (Ranges{{1, 100}, {101, 200}, {4901, 5000}, {5001, 5100}}));
  EXPECT_EQ(plex.At(5000), Mark(0));
}

TEST(VoidPlex, RefusesARepeatedNumber)
{
  VoidPlex plex(100);
  Fill(plex, {7, 8});
  ExpectFatal([&] { plex.set_at(8, Mark(1)); }, "Repeated index 8 in VoidPlex");
  ExpectFatal([&] { plex.set_at(8, Mark(8)); }, "Repeated index 8 in VoidPlex");
  plex.set_at(8, nullptr);
  plex.set_at(8, Mark(1));
  EXPECT_EQ(plex.At(8), Mark(1));
  EXPECT_EQ(plex.replace_at(8, Mark(2)), Mark(1));
  EXPECT_EQ(plex.At(8), Mark(2));
}

TEST(VoidPlex, RefusesNumbersBelowOne)
{
  VoidPlex plex(100);
  ExpectFatal([&] { plex.set_at(0, Mark(0)); }, "Invalid void index 0");
  ExpectFatal([&] { plex.replace_at(-5, Mark(0)); }, "Invalid void index -5");
  ExpectFatal([&] { plex.set_at(INT_MIN, Mark(0)); }, "Invalid void index -2147483648");
  EXPECT_EQ(plex.Count(), 0);
}

TEST(VoidPlex, CacheRefusesNumbersOutsideTheRange)
{
  VoidPlex plex(100);
  ExpectFatal([&] { plex.cache(1); }, "Invalid void index -2- 1");
  Fill(plex, {10, 20});
  for (int i : {INT_MIN, 0, 9, 21, INT_MAX})
    ExpectFatal([&] { plex.cache(i); }, "Invalid void index -2- " + std::to_string(i));
}

TEST(VoidPlex, CacheCreatesTheChunk)
{
  VoidPlex plex(10);
  Fill(plex, {1, 95});
  plex.cache(50);
  EXPECT_EQ(Chunks(plex), (Ranges{{1, 10}, {41, 50}, {91, 100}}));
  EXPECT_EQ(Numbers(plex), (std::vector<int>{1, 95}));
}

TEST(VoidPlex, NullAtTheFirstNumberAdvancesIt)
{
  VoidPlex plex(10);
  Fill(plex, {4, 37, 90});
  plex.set_at(4, nullptr);
  EXPECT_EQ(plex.First(), 37);
  EXPECT_EQ(plex.Last(), 90);
  plex.set_at(2, nullptr);  // a null pointer below the first number changes nothing
  EXPECT_EQ(plex.First(), 37);
  plex.replace_at(37, nullptr);
  EXPECT_EQ(plex.First(), 90);
}

TEST(VoidPlex, NullAtTheOnlyNumberEmpties)
{
  VoidPlex plex(10);
  Fill(plex, {4, 37});
  plex.set_at(37, nullptr);
  EXPECT_EQ(plex.Last(), 37) << "the last number stays until it is recalculated";
  plex.set_at(4, nullptr);
  EXPECT_EQ(plex.First(), 0);
  EXPECT_EQ(plex.Last(), 0);
  EXPECT_EQ(Chunks(plex).size(), 1u);
  plex.set_at(8, nullptr);
  EXPECT_EQ(plex.First(), 0);
  plex.set_at(150, Mark(1));
  EXPECT_EQ(Chunks(plex), (Ranges{{141, 150}}));
}

TEST(VoidPlex, NextStartsAnywhere)
{
  VoidPlex plex(10);
  Fill(plex, {5, 6, 300, 301});
  static const struct
  {
    int from, number;
  } cases[] = {{INT_MIN, 5}, {-1, 5},    {0, 5},     {4, 5},     {5, 6},   {6, 300},
               {7, 300},     {150, 300}, {299, 300}, {300, 301}, {301, 0}, {INT_MAX, 0}};
  for (const auto& c : cases) {
    int i = c.from;
    EXPECT_EQ(plex.next(i), c.number ? Mark(c.number) : nullptr) << c.from;
    EXPECT_EQ(i, c.number) << c.from;
  }
  EXPECT_EQ(Chunks(plex), (Ranges{{1, 10}, {291, 300}, {301, 310}})) << "no chunk was made";
}

TEST(VoidPlex, FreeAndAtTakeAnyNumber)
{
  VoidPlex plex(10);
  Fill(plex, {5, 300});
  for (int i : {INT_MIN, -1, 0, 4, 6, 100, 299, 301, INT_MAX}) {
    EXPECT_TRUE(plex.free(i)) << i;
    EXPECT_EQ(plex.At(i), nullptr) << i;
  }
  EXPECT_FALSE(plex.free(5));
  EXPECT_EQ(plex.At(300), Mark(300));
  EXPECT_EQ(Chunks(plex).size(), 2u);
}

TEST(VoidPlex, AppendFirstFillsTheLowestHole)
{
  static const struct
  {
    std::vector<int> numbers;
    int stored;
  } cases[] = {{{1, 2, 4}, 3}, {{2, 3, 4}, 1}, {{}, 1}, {{1, 2, 3}, 4}, {{1, 2, 99}, 3}};
  for (const auto& c : cases) {
    VoidPlex plex(2);
    Fill(plex, c.numbers);
    EXPECT_EQ(plex.appendFirst(Mark(0)), c.stored);
    EXPECT_EQ(plex.At(c.stored), Mark(0));
  }
}

TEST(VoidPlex, AppendFirstSeesNewHoles)
{
  VoidPlex plex(4);
  for (int i = 1; i <= 10; ++i)
    EXPECT_EQ(plex.appendFirst(Mark(i)), i);
  plex.set_at(7, nullptr);
  plex.set_at(1, nullptr);
  EXPECT_EQ(plex.appendFirst(Mark(1)), 1);
  EXPECT_EQ(plex.appendFirst(Mark(7)), 7);
  EXPECT_EQ(plex.appendFirst(Mark(11)), 11);
  plex.clear();
  EXPECT_EQ(plex.appendFirst(Mark(1)), 1);
}

TEST(VoidPlex, ReCalcLastFindsTheHighestPointer)
{
  VoidPlex plex(10);
  plex.ReCalcLast();
  EXPECT_EQ(plex.Last(), 0);
  Fill(plex, {1, 15, 47, 300});
  plex.ReCalcLast();
  EXPECT_EQ(plex.Last(), 300);
  plex.set_at(300, nullptr);
  plex.set_at(47, nullptr);
  EXPECT_EQ(plex.Last(), 300);
  plex.ReCalcLast();
  EXPECT_EQ(plex.Last(), 15);
  plex.set_at(15, nullptr);
  plex.ReCalcLast();
  EXPECT_EQ(plex.Last(), 1);
}

TEST(VoidPlex, TakeOutHolesKeepsTheOrder)
{
  VoidPlex plex(100);
  Fill(plex, {2, 5, 9});
  plex.TakeOutHoles();
  EXPECT_EQ(Numbers(plex), (std::vector<int>{2, 3, 4}));
  EXPECT_EQ(plex.At(2), Mark(2));
  EXPECT_EQ(plex.At(3), Mark(5));
  EXPECT_EQ(plex.At(4), Mark(9));
  EXPECT_EQ(plex.Last(), 4);
}

TEST(VoidPlex, TakeOutHolesAcrossMissingChunks)
{
  VoidPlex plex(3);
  Fill(plex, {3, 100, 101, 102, 103, 104, 105, 900});
  plex.TakeOutHoles();
  EXPECT_EQ(Numbers(plex), (std::vector<int>{3, 4, 5, 6, 7, 8, 9, 10}));
  EXPECT_EQ(plex.At(10), Mark(900));
  VoidPlex empty(3);
  empty.TakeOutHoles();
  EXPECT_EQ(empty.Last(), 0);
}

TEST(VoidPlex, ClearKeepsTheHeadOnly)
{
  VoidPlex plex(10);
  Fill(plex, {15, 35, 95});
  plex.clear();
  EXPECT_EQ(Chunks(plex), (Ranges{{11, 20}}));
  EXPECT_EQ(plex.Count(), 0);
  EXPECT_EQ(plex.First(), 0);
  EXPECT_EQ(plex.Last(), 0);
  EXPECT_TRUE(plex.free(15));
}

TEST(VoidPlex, AssignmentAppends)
{
  VoidPlex source(10), target(7);
  Fill(source, {4, 30, 1500});
  Fill(target, {2, 9});
  target = source;
  EXPECT_EQ(Numbers(target), (std::vector<int>{2, 9, 10, 11, 12}));
  EXPECT_EQ(target.At(10), Mark(4));
  EXPECT_EQ(target.At(11), Mark(30));
  EXPECT_EQ(target.At(12), Mark(1500));
  EXPECT_EQ(source.Count(), 3);
  VoidPlex empty(10);
  empty = source;
  EXPECT_EQ(Numbers(empty), (std::vector<int>{1, 2, 3}));
  VoidPlex& self = empty;
  empty = self;
  EXPECT_EQ(Numbers(empty), (std::vector<int>{1, 2, 3, 4, 5, 6}));
}

TEST(VoidPlex, HoldsTheHighestNumbers)
{
  for (int size : {1, 100, 1 << 20}) {
    VoidPlex plex(size);
    plex.set_at(INT_MAX, Mark(1));
    EXPECT_EQ(plex.Head()->high, INT_MAX);
    plex.TakeOutHoles();
    EXPECT_EQ(plex.Last(), INT_MAX);
    plex.set_at(INT_MAX - 1, Mark(2));
    plex.set_at(1, Mark(3));
    EXPECT_EQ(Numbers(plex), (std::vector<int>{1, INT_MAX - 1, INT_MAX}));
    VoidPlex other(10);
    other.set_at(6, Mark(6));
    ExpectFatal([&] { plex = other; }, "Invalid void index 2147483648");
    EXPECT_EQ(plex.appendFirst(Mark(4)), 2);
    plex.set_at(INT_MAX, nullptr);
    plex.set_at(INT_MAX - 1, nullptr);
    plex.ReCalcLast();
    EXPECT_EQ(plex.Last(), 2);
  }
}

TEST(VoidPlex, AgreesWithAnOrderedMap)
{
  std::mt19937 random(1);
  VoidPlex plex(7);
  std::map<int, void*> model;
  for (int step = 0; step < 20000; ++step) {
    const int i = 1 + static_cast<int>(random() % 500);
    void* p = random() % 3 ? Mark(static_cast<int>(random() % 2000)) : nullptr;
    const auto before = model.find(i);
    ASSERT_EQ(plex.replace_at(i, p), before == model.end() ? nullptr : before->second);
    if (p)
      model[i] = p;
    else
      model.erase(i);
    const int k = static_cast<int>(random() % 520);
    const auto found = model.find(k);
    ASSERT_EQ(plex.At(k), found == model.end() ? nullptr : found->second);
    int n = k;
    const auto after = model.upper_bound(k);
    ASSERT_EQ(plex.next(n), after == model.end() ? nullptr : after->second);
    ASSERT_EQ(n, after == model.end() ? 0 : after->first);
    ASSERT_EQ(plex.First(), model.empty() ? 0 : model.begin()->first);
    if (step % 100 == 0) {
      ASSERT_EQ(plex.Count(), static_cast<int>(model.size()));
    }
  }
  EXPECT_EQ(plex.Count(), static_cast<int>(model.size()));
  Chunks(plex);
}

TEST(VoidPlex, FarNumbersAreFoundWithoutAWalk)
{
  constexpr int kChunks = 200000;
  VoidPlex plex(1);
  for (int i = kChunks; i >= 1; --i)
    plex.set_at(i * 10, Mark(i % 2000));
  std::mt19937 random(2);
  for (int step = 0; step < 500000; ++step) {
    const int i = 1 + static_cast<int>(random() % kChunks);
    ASSERT_EQ(plex.At(i * 10), Mark(i % 2000));
  }
}

TEST(VoidPlex, ClearForgetsWhichNumbersWereTaken)
{
  VoidPlex plex(4);
  for (int i = 1; i <= 10; ++i)
    plex.appendFirst(Mark(i));
  plex.clear();
  plex.set_at(3, Mark(3));
  EXPECT_EQ(plex.First(), 3);
  EXPECT_EQ(plex.Last(), 3);
  EXPECT_EQ(plex.appendFirst(Mark(1)), 1);
  EXPECT_EQ(plex.appendFirst(Mark(2)), 2);
  EXPECT_EQ(plex.appendFirst(Mark(4)), 4);
  EXPECT_EQ(Numbers(plex), (std::vector<int>{1, 2, 3, 4}));
}

// After clear, a container behaves like a new one.
TEST(VoidPlex, ClearResetsEverything)
{
  VoidPlex plex(10);
  for (int round = 0; round < 3; ++round) {
    Fill(plex, {15, 35, 1995, 36});
    EXPECT_EQ(plex.First(), 15);
    EXPECT_EQ(plex.Last(), 1995);
    EXPECT_EQ(Numbers(plex), (std::vector<int>{15, 35, 36, 1995}));
    plex.clear();
    for (int i : {15, 35, 36, 1995})
      EXPECT_TRUE(plex.free(i)) << i;
    ExpectFatal([&] { plex.cache(35); }, "Invalid void index -2- 35");
    int i = 0;
    EXPECT_EQ(plex.next(i), nullptr);
  }
  // The only chunk left moves to the first number.
  Fill(plex, {1500, 1495});
  EXPECT_EQ(Chunks(plex), (Ranges{{1491, 1500}}));
}

}  // namespace

}  // namespace morlen
