// A table of pointers by number, in chunks of aligned ranges of numbers. The chunks form a ring in
// increasing order, along which loops move. Three ways lead to the chunk of a number: the cached
// chunk (used last), the shortcuts (a table of chunks used before) and the ordered index. The
// shortcuts are at least as many as the chunks, so that dense numbers never share an entry.

#include "numeric/voidplex.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <utility>

#include "base/errorwriter.h"

namespace morlen {

void VoidChunk::reset(int i, int size)
{
  low = (i - 1) / size * size + 1;
  const std::int64_t end = std::int64_t{low} + size - 1;
  high = static_cast<int>(std::min<std::int64_t>(end, std::numeric_limits<int>::max()));
}

void VoidChunk::clear()
{
  std::fill(&Slot(low), &Slot(high) + 1, nullptr);
}

VoidPlex::VoidPlex(int size) : chunkSize(size)
{
  if (size < 1)
    Fatal("Invalid constructor specification");
  Rebase(1);
}

// Makes the only chunk one that covers i.
void VoidPlex::Rebase(int i)
{
  chunks.clear();
  head = cached = &chunks.try_emplace(LowOf(i), chunkSize).first->second;
  head->reset(i, chunkSize);
  ResetShortcuts(1);
}

// A container assigned to itself appends a copy of its pointers: the loop ends at the old last one.
// NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
VoidPlex& VoidPlex::operator=(const VoidPlex& source)
{
  const int end = source.last;
  VoidChunk* chunk = source.head;
  int i = 0;
  for (void* p = source.NextFrom(chunk, i); p && i <= end; p = source.NextFrom(chunk, i))
    set_at(NumberAfterLast(), p);
  return *this;
}

void VoidPlex::ResetShortcuts(std::size_t count) const
{
  shortcuts.assign(count, {head->low, head->slots.get(), head});
  shortcutMask = static_cast<unsigned>(count - 1);
}

// The chunk that covers i, or null when there is none.
VoidChunk* VoidPlex::FindChunk(int i) const
{
  if (cached->Covers(i))
    return cached;
  Shortcut& shortcut = ShortcutFor(i);
  if (!shortcut.chunk->Covers(i)) {
    const auto found = chunks.find(LowOf(i));
    if (found == chunks.end())
      return nullptr;
    VoidChunk& chunk = found->second;
    shortcut = {chunk.low, chunk.slots.get(), &chunk};
  }
  return shortcut.chunk;
}

// Makes the chunk that covers i and links it into the ring, in the order of the ranges.
VoidChunk* VoidPlex::InsertChunk(int i) const
{
  const auto place = chunks.try_emplace(LowOf(i), chunkSize).first;
  VoidChunk* chunk = &place->second;
  chunk->reset(i, chunkSize);
  const auto following = std::next(place);
  VoidChunk* after = following == chunks.end() ? head : &following->second;
  VoidChunk* before = after->prevChunk;
  chunk->prevChunk = before;
  chunk->nextChunk = after;
  before->nextChunk = after->prevChunk = chunk;
  head = &chunks.begin()->second;
  if (chunks.size() > shortcuts.size())
    ResetShortcuts(2 * shortcuts.size());
  return chunk;
}

void VoidPlex::cache(int i) const
{
  if (i < 1 || i < first || i > last)
    Fatal("Invalid void index -2- ", i);
  if (cached->Covers(i))
    return;
  VoidChunk* const found = FindChunk(i);
  cached = found ? found : InsertChunk(i);
}

// The steps that set_at and replace_at have in common: checks i, moves the first and the last
// number, and caches the chunk. An empty container moves its chunk to i instead of adding one.
void*& VoidPlex::SlotToWrite(int i)
{
  if (i < 1)
    Fatal("Invalid void index ", i);
  if (first == 0) {
    if (!cached->Covers(i))
      Rebase(i);
    first = last = i;
  } else {
    first = std::min(first, i);
    last = std::max(last, i);
  }
  cache(i);
  return cached->Slot(i);
}

// Null has been written at i: the first number advances to the next pointer, and without one the
// container is cleared.
void VoidPlex::AfterEmptying(int i)
{
  filled = std::min(filled, i - 1);
  if (i != first)
    return;
  int number = i;
  if (next(number))
    first = number;
  else
    clear();
}

void VoidPlex::set_at(int i, void* p)
{
  void*& slot = SlotToWrite(i);
  if (p && slot)
    Fatal("Repeated index ", i, " in VoidPlex");
  slot = p;
  if (!p)
    AfterEmptying(i);
}

void* VoidPlex::replace_at(int i, void* p)
{
  void* const replaced = std::exchange(SlotToWrite(i), p);
  if (!p)
    AfterEmptying(i);
  return replaced;
}

int VoidPlex::NumberAfterLast() const
{
  if (last == std::numeric_limits<int>::max())
    Fatal("Invalid void index ", std::int64_t{last} + 1);
  return last + 1;
}

int VoidPlex::appendFirst(void* p)
{
  while (filled < last && !free(filled + 1))
    ++filled;
  const int number = filled < last ? filled + 1 : NumberAfterLast();
  set_at(number, p);
  return number;
}

void* VoidPlex::AtSlow(int i) const
{
  if (i < 1 || i < first || i > last)
    return nullptr;
  VoidChunk* chunk = FindChunk(i);
  return chunk ? chunk->Slot(i) : nullptr;
}

void* VoidPlex::NextFromSlow(VoidChunk*& chunk, int& i) const
{
  const std::int64_t from = std::max(std::int64_t{i} + 1, std::int64_t{first});
  i = 0;
  if (first == 0 || from > last)
    return nullptr;
  for (;; chunk = chunk->nextChunk) {
    const int end = std::min(chunk->high, last);
    for (std::int64_t number = std::max<std::int64_t>(from, chunk->low); number <= end; ++number) {
      void* p = chunk->Slot(static_cast<int>(number));
      if (!p)
        continue;
      i = static_cast<int>(number);
      return p;
    }
    if (chunk->nextChunk == head)
      return nullptr;
  }
}

void* VoidPlex::next(int& i) const
{
  if (first == 0 || i >= last) {
    i = 0;
    return nullptr;
  }
  // Scan from the first number or from i + 1, in the chunk that covers it or the next one, and
  // move the cache along.
  const int from = std::max(first, i + 1);
  VoidChunk* chunk = FindChunk(from);
  if (!chunk)
    chunk = &chunks.lower_bound(LowOf(from))->second;
  void* const p = NextFrom(chunk, i);
  if (p)
    cached = chunk;
  return p;
}

int VoidPlex::Count() const
{
  std::ptrdiff_t count = 0;
  const VoidChunk* chunk = head;
  do {
    void* const* const slots = &chunk->Slot(chunk->low);
    const std::ptrdiff_t size = std::ptrdiff_t{chunk->high} - chunk->low + 1;
    count += size - std::count(slots, slots + size, nullptr);
    chunk = chunk->nextChunk;
  } while (chunk != head);
  return static_cast<int>(count);
}

void VoidPlex::ReCalcLast()
{
  if (first == 0)
    return;
  for (VoidChunk* chunk = FindChunk(last);; chunk = chunk->prevChunk) {
    for (last = std::min(last, chunk->high); last >= chunk->low; --last)
      if (chunk->Slot(last))  // met at the first number at the latest
        return;
  }
}

void VoidPlex::TakeOutHoles()
{
  if (first == 0)
    return;
  int target = first - 1;
  VoidChunk* chunk = head;
  int i = 0;
  for (void* p = NextFrom(chunk, i); p; p = NextFrom(chunk, i)) {
    if (i == ++target)
      continue;
    chunk->Slot(i) = nullptr;
    cache(target);
    cached->Slot(target) = p;
  }
  last = target;
}

void VoidPlex::clear()
{
  chunks.erase(std::next(chunks.begin()), chunks.end());
  head = cached = &chunks.begin()->second;
  head->nextChunk = head->prevChunk = head;
  head->clear();
  ResetShortcuts(1);
  first = last = filled = 0;
}

}  // namespace morlen
