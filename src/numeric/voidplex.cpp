#include "numeric/voidplex.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>

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
  StartAt(1);
}

// Makes one chunk, covering i, the only one.
void VoidPlex::StartAt(int i)
{
  chunks.clear();
  head = lastChunk = &chunks.try_emplace(LowOf(i), chunkSize).first->second;
  head->reset(i, chunkSize);
  ResetShortcuts(1);
}

// To itself it appends a copy of what it held before.
// NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
VoidPlex& VoidPlex::operator=(const VoidPlex& source)
{
  const int end = source.last;
  VoidChunk* chunk = source.head;
  int i = 0;
  for (void* p = source.NextFrom(chunk, i); p && i <= end; p = source.NextFrom(chunk, i))
    set_at(NumberBehindLast(), p);
  return *this;
}

void VoidPlex::ResetShortcuts(std::size_t count) const
{
  shortcuts.assign(count, {head->low, head->slots.get(), head});
  lastShortcut = static_cast<unsigned>(count - 1);
}

// The chunk of number i among those that exist, or null.
VoidChunk* VoidPlex::FindChunk(int i) const
{
  if (lastChunk->Covers(i))
    return lastChunk;
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

VoidChunk* VoidPlex::MakeChunk(int i) const
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
  VoidChunk* found = FindChunk(i);
  lastChunk = found ? found : MakeChunk(i);
}

VoidChunk* VoidPlex::ChunkToSet(int i)
{
  if (i < 1)
    Fatal("Invalid void index ", i);
  if (first == 0) {
    if (!head->Covers(i))
      StartAt(i);
    first = i;
  }
  first = std::min(first, i);
  last = std::max(last, i);
  cache(i);
  return lastChunk;
}

// Returns what was there.
void* VoidPlex::Write(VoidChunk* chunk, int i, void* p)
{
  void* const before = std::exchange(chunk->Slot(i), p);
  if (p)
    return before;
  taken = std::min(taken, i - 1);
  if (i != first)
    return before;
  int number = i;
  if (next(number))
    first = number;
  else
    clear();
  return before;
}

void VoidPlex::SetOther(int i, void* p)
{
  VoidChunk* chunk = ChunkToSet(i);
  if (p && chunk->Slot(i))
    Fatal("Repeated index ", i, " in VoidPlex");
  Write(chunk, i, p);
}

void* VoidPlex::ReplaceOther(int i, void* p)
{
  return Write(ChunkToSet(i), i, p);
}

int VoidPlex::NumberBehindLast() const
{
  if (last == std::numeric_limits<int>::max())
    Fatal("Invalid void index ", std::int64_t{last} + 1);
  return last + 1;
}

int VoidPlex::appendFirst(void* p)
{
  while (taken < last && !free(taken + 1))
    ++taken;
  const int number = taken < last ? taken + 1 : NumberBehindLast();
  set_at(number, p);
  return number;
}

void* VoidPlex::SearchAt(int i) const
{
  if (i < 1 || i < first || i > last)
    return nullptr;
  VoidChunk* chunk = FindChunk(i);
  return chunk ? chunk->Slot(i) : nullptr;
}

void* VoidPlex::SearchFrom(VoidChunk*& chunk, int& i) const
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
  if (first == 0) {
    i = 0;
    return nullptr;
  }
  const int from = i < first ? first : i < last ? i + 1 : last;
  VoidChunk* chunk = FindChunk(from);
  if (!chunk)
    chunk = &chunks.lower_bound(LowOf(from))->second;
  void* p = NextFrom(chunk, i);
  if (p)
    lastChunk = chunk;
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
    lastChunk->Slot(target) = p;
  }
  last = target;
}

void VoidPlex::clear()
{
  chunks.erase(std::next(chunks.begin()), chunks.end());
  head = lastChunk = &chunks.begin()->second;
  head->nextChunk = head->prevChunk = head;
  head->clear();
  ResetShortcuts(1);
  first = last = taken = 0;
}

}  // namespace morlen
