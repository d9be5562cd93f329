#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <vector>

namespace morlen {

/// One chunk of a VoidPlex: the slots of an aligned range of numbers. With the size
/// 100 these ranges are 1..100, 101..200 and so on; the last one ends at INT_MAX.
///
/// Chunks form a ring in increasing order of `low`.
struct VoidChunk
{
  explicit VoidChunk(int size) : slots(std::make_unique<void*[]>(static_cast<std::size_t>(size))) {}

  /// Sets the range to the one that holds number i, for chunks of the given size.
  void reset(int i, int size);
  /// Empties every slot.
  void clear();

  bool Covers(int i) const { return low <= i && i <= high; }
  void*& Slot(int i) const { return slots[static_cast<std::size_t>(i - low)]; }

  std::unique_ptr<void*[]> slots;  ///< null is an empty place
  int low = 0;                     ///< range of numbers
  int high = 0;
  VoidChunk* nextChunk = this;
  VoidChunk* prevChunk = this;
};

/// Table of untyped pointers by number, from 1 to INT_MAX.
///
/// Numbers may be sparse and come in any order: there is storage only for the chunks
/// in use. The chunk used last is cached. A look-up tries it first, then a table of
/// shortcuts that finds every chunk of dense numbers, then an ordered index: random access
/// costs at most the logarithm of the number of chunks, never a walk along the ring. The
/// objects are not owned, the chunks are. Reading moves the cache, so that one container
/// must not be read by two threads at once.
///
/// Objects are reached with their type through numeric/plex_range.h.
class VoidPlex
{
public:
  /// Fatal when the size of the chunks is below 1.
  explicit VoidPlex(int size);
  VoidPlex(const VoidPlex&) = delete;

  /// Appends the pointers of the source, in their order, after the last number of this
  /// container, which is not cleared. Their numbers are not kept. Not used by the analysis itself.
  VoidPlex& operator=(const VoidPlex& source);

  /// Stores p at number i; null empties the place. Fatal when i is below 1, and when
  /// a pointer would be replaced by another.
  void set_at(int i, void* p);
  /// As set_at, but a pointer may be replaced by another; the one replaced is returned.
  void* replace_at(int i, void* p);
  /// Stores p at the lowest free number, which is returned. Not used by the analysis itself.
  int appendFirst(void* p);

  /// Makes the chunk of number i the cached one, where look-ups start; creates it when it does
  /// not exist. Fatal outside first..last.
  void cache(int i) const;
  /// The next stored pointer after number i, which is updated; null and i = 0 at the
  /// end. A loop starts from i = 0.
  void* next(int& i) const;
  /// The pointer at number i, null when there is none, whatever the number.
  void* At(int i) const
  {
    const Shortcut& shortcut = ShortcutFor(i);
    if (i >= shortcut.low && i - shortcut.low < chunkSize)
      return shortcut.slots[i - shortcut.low];
    return AtSlow(i);
  }
  /// Whether nothing is stored at number i.
  bool free(int i) const { return At(i) == nullptr; }

  /// The next stored pointer after number i, searched from the given chunk on, which must not
  /// lie after i; both are updated. Null and i = 0 at the end. The cached chunk stays, so that
  /// several loops may run at once.
  void* NextFrom(VoidChunk*& chunk, int& i) const
  {
    // i < last comes first: once the container is empty, the chunk may be gone.
    if (i < last && i >= chunk->low && i < chunk->high) {
      if (void* p = chunk->Slot(i + 1)) {
        ++i;
        return p;
      }
    }
    return NextFromSlow(chunk, i);
  }

  int Count() const;
  /// Lowest and highest number set since the container was empty; 0 when it is.
  int First() const { return first; }
  int Last() const { return last; }
  int ChunkSize() const { return chunkSize; }
  /// The chunk with the lowest range.
  VoidChunk* Head() const { return head; }

  /// Lowers the last number to the highest one that holds a pointer. Not used by the analysis
  /// itself.
  void ReCalcLast();
  /// Moves the pointers down over the empty numbers between them, keeping their order. Not used by
  /// the analysis itself.
  void TakeOutHoles();
  /// Frees every chunk but the head and empties that one.
  void clear();

private:
  using Index = std::map<int, VoidChunk>;

  /// A chunk, with copies of the two members that a look-up reads, which saves a cache miss.
  struct Shortcut
  {
    int low;
    void** slots;
    VoidChunk* chunk;
  };

  static constexpr unsigned kUsualSize = 100;  ///< of the chunks of nodes and elements

  /// Where the chunk of number i is looked for first.
  Shortcut& ShortcutFor(int i) const
  {
    const unsigned place = static_cast<unsigned>(i) - 1;
    const unsigned size = static_cast<unsigned>(chunkSize);
    // The compiler replaces the division by a constant with a multiplication.
    return shortcuts[(size == kUsualSize ? place / kUsualSize : place / size) & shortcutMask];
  }

  int LowOf(int i) const { return (i - 1) / chunkSize * chunkSize + 1; }
  void Rebase(int i);
  void ResetShortcuts(std::size_t count) const;
  VoidChunk* FindChunk(int i) const;
  VoidChunk* InsertChunk(int i) const;
  void*& SlotToWrite(int i);
  void AfterEmptying(int i);
  void* AtSlow(int i) const;
  void* NextFromSlow(VoidChunk*& chunk, int& i) const;
  int NumberAfterLast() const;

  int chunkSize;
  int first = 0;
  int last = 0;
  int filled = 0;        ///< numbers 1..filled hold pointers, perhaps more do
  mutable Index chunks;  ///< by their lowest number; never without one
  /// Chunks used before. Range k, counted from 0, has the entry k modulo the length, a power
  /// of 2. An entry for which no chunk is known yet holds the head.
  mutable std::vector<Shortcut> shortcuts;
  mutable unsigned shortcutMask = 0;  ///< the length less 1
  mutable VoidChunk* head;
  mutable VoidChunk* cached;  ///< used last
};

}  // namespace morlen
