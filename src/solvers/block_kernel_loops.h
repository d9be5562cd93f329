#pragma once

// The loops over blocks, compiled once for each set of instructions. Everything is in an anonymous
// namespace and nothing of the standard library is used, so that the linker cannot replace a
// function by a copy that was compiled for another processor.
//
// A column of a block is read in packs of as many numbers as the processor adds at once. The last
// pack reads into the next column; the surplus lanes of a sum are never stored. Three independent
// sums, one for every third column, keep the additions from waiting for each other.

#include "solvers/block_kernel.h"

namespace morlen {

namespace {

constexpr int kSums = 3;

/// Distance of the prefetch, in numbers: memory arrives while the blocks before it are in work.
constexpr int kAhead = 512;

template <int lanes>
struct PackOf;

template <>
struct PackOf<2>
{
  using Type [[gnu::vector_size(2 * sizeof(double))]] = double;
  using Loose [[gnu::vector_size(2 * sizeof(double)), gnu::aligned(8), gnu::may_alias]] = double;
};

template <>
struct PackOf<4>
{
  using Type [[gnu::vector_size(4 * sizeof(double))]] = double;
  using Loose [[gnu::vector_size(4 * sizeof(double)), gnu::aligned(8), gnu::may_alias]] = double;
};

/// The numbers of a node in packs; surplus lanes are undefined.
template <int size_, int lanes_>
struct NodePacks
{
  using Pack = typename PackOf<lanes_>::Type;
  using Loose = typename PackOf<lanes_>::Loose;
  static constexpr int size = size_;
  static constexpr int lanes = lanes_;
  static constexpr int kPacks = (size + lanes - 1) / lanes;

  Pack packs[kPacks];
};

/// One value for each of the vectors that share a pass: every block is loaded once for all of them,
/// and the result of each is bit for bit that of a separate call.
template <class Type, int vectors>
struct PerVector
{
  Type of[vectors];
};

/// The independent sums for a node, for each of the vectors.
template <class Node, int count = kSums, int vectors = 1>
struct Sums
{
  Node of[vectors][count];
};

/// Loads the last numbers of a node, fewer than fill a pack; the other lanes are 0.
template <int count, class Pack>
[[gnu::always_inline]] inline void LoadRest(const double* x, Pack& pack)
{
  if constexpr (count == 1)
    pack = Pack{x[0]};
  else if constexpr (count == 2)
    pack = Pack{x[0], x[1]};
  else if constexpr (count == 3)
    pack = Pack{x[0], x[1], x[2]};
}

template <class Node>
[[gnu::always_inline]] inline void Load(const double* x, Node& node)
{
  constexpr int kFull = Node::size / Node::lanes;
  for (int k = 0; k < kFull; ++k)
    node.packs[k] = *reinterpret_cast<const typename Node::Loose*>(x + k * Node::lanes);
  if constexpr (kFull < Node::kPacks)
    LoadRest<Node::size % Node::lanes>(x + kFull * Node::lanes, node.packs[kFull]);
}

template <class Node>
[[gnu::always_inline]] inline void Store(const Node& node, double* x)
{
  using Pair = typename PackOf<2>::Type;
  using LoosePair = typename PackOf<2>::Loose;
  for (int k = 0; k < Node::kPacks; ++k) {
    const int first = k * Node::lanes;
    const int count = Node::size - first;
    if (count >= Node::lanes) {
      *reinterpret_cast<typename Node::Loose*>(x + first) = node.packs[k];
      continue;
    }
    if (count >= 2)
      *reinterpret_cast<LoosePair*>(x + first) = Pair{node.packs[k][0], node.packs[k][1]};
    if (count % 2 != 0)
      x[first + count - 1] = node.packs[k][count - 1];
  }
}

/// Pack k of a line of a block: of a column or of a row, as it is stored.
template <class Node>
[[gnu::always_inline]] inline typename Node::Pack LinePack(const double* block, int line, int k)
{
  return *reinterpret_cast<const typename Node::Loose*>(block + line * Node::size +
                                                        k * Node::lanes);
}

/// Adds each line of a block times its x to the sums; x(v, b): number b of vector v, or a pack
/// of it.
template <class Node, int count, int vectors, class Numbers>
[[gnu::always_inline]] inline void AddBlock(const double* block, Numbers x,
                                            Sums<Node, count, vectors>& sums)
{
  for (int b = 0; b < Node::size; ++b) {
    typename Node::Pack factors[vectors];
    for (int v = 0; v < vectors; ++v)
      factors[v] = x(v, b) - typename Node::Pack{};
    for (int k = 0; k < Node::kPacks; ++k) {
      const typename Node::Pack line = LinePack<Node>(block, b, k);
      for (int v = 0; v < vectors; ++v)
        sums.of[v][b % count].packs[k] += factors[v] * line;
    }
  }
}

/// Adds the sums of a vector to the first of them.
template <class Node, int count>
[[gnu::always_inline]] inline const Node& AddUp(Node (&sums)[count])
{
  for (int sum = 1; sum < count; ++sum)
    for (int k = 0; k < Node::kPacks; ++k)
      sums[0].packs[k] += sums[sum].packs[k];
  return sums[0];
}

/// Prefetches a block.
template <class Node>
[[gnu::always_inline]] inline void FetchBlock(const double* block)
{
  for (int k = 0; k + 8 <= Node::size * Node::size; k += 8)
    __builtin_prefetch(block + k);
}

/// sums += line times x.
template <class Node, int vectors>
[[gnu::always_inline]] inline void AddLine(const BlockLines& A, int line,
                                           const PerVector<const double*, vectors>& x,
                                           Sums<Node, kSums, vectors>& sums)
{
  constexpr int kSquare = Node::size * Node::size;
  const int end = A.starts[line + 1];
  const double* block = A.values + static_cast<long long>(A.starts[line]) * kSquare;
  for (int s = A.starts[line]; s < end; ++s, block += kSquare) {
    FetchBlock<Node>(block + kAhead);
    const long long first = static_cast<long long>(A.columns[s]) * Node::size;
    AddBlock(
        block, [&](int v, int b) { return x.of[v][first + b]; }, sums);
  }
}

template <class Node, int vectors>
[[gnu::always_inline]] inline void MultiplyLines(const BlockLines& A,
                                                 PerVector<const double*, vectors> x,
                                                 PerVector<double*, vectors> y)
{
  for (int i = 0; i < A.lines; ++i) {
    Sums<Node, kSums, vectors> sums = {};
    AddLine(A, i, x, sums);
    for (int v = 0; v < vectors; ++v)
      Store(AddUp(sums.of[v]), y.of[v] + static_cast<long long>(i) * Node::size);
  }
}

// Once a node is solved, subtracts its products from the later nodes. The first block of a line is
// done first: its node may be the next to be solved.
template <class Node, int vectors>
[[gnu::always_inline]] inline void SolveForward(const BlockLines& U, PerVector<double*, vectors> y)
{
  constexpr int kSquare = Node::size * Node::size;
  const double* block = U.values;
  for (int i = 0; i < U.lines; ++i) {
    typename Node::Pack own[vectors][Node::size];
    for (int v = 0; v < vectors; ++v)
      for (int a = 0; a < Node::size; ++a)
        own[v][a] = y.of[v][static_cast<long long>(i) * Node::size + a] - typename Node::Pack{};
    for (int s = U.starts[i]; s < U.starts[i + 1]; ++s, block += kSquare) {
      FetchBlock<Node>(block + kAhead);
      const long long other = static_cast<long long>(U.columns[s]) * Node::size;
      Sums<Node, Node::size / 3, vectors> sums = {};
      for (int v = 0; v < vectors; ++v)
        Load(y.of[v] + other, sums.of[v][0]);
      AddBlock(
          block, [&](int v, int b) { return own[v][b]; }, sums);
      for (int v = 0; v < vectors; ++v)
        Store(AddUp(sums.of[v]), y.of[v] + other);
    }
  }
}

/// A pack for each row of a block; the sum of the row is the sum of the lanes.
template <class Node, int vectors>
struct RowSums
{
  using Pack = typename Node::Pack;
  static constexpr int kRows = Node::kPacks * Node::lanes;  ///< surplus rows are 0

  Pack of[vectors][kRows];

  /// Adds block·x, the block row by row; the surplus lanes of x are 0.
  [[gnu::always_inline]] void Add(const double* block, const PerVector<Node, vectors>& x)
  {
    for (int a = 0; a < Node::size; ++a)
      for (int k = 0; k < Node::kPacks; ++k) {
        const Pack line = LinePack<Node>(block, a, k);
        for (int v = 0; v < vectors; ++v)
          of[v][a] += line * x.of[v].packs[k];
      }
  }

  [[gnu::always_inline]] void AddTo(int vector, Node& total) const
  {
    for (int k = 0; k < Node::kPacks; ++k)
      total.packs[k] += Across(of[vector] + k * Node::lanes);
  }

private:
  /// The sums of the lanes of as many packs as a pack has lanes.
  [[gnu::always_inline]] static Pack Across(const Pack* p)
  {
    if constexpr (Node::lanes == 2) {
      return __builtin_shufflevector(p[0], p[1], 0, 2) + __builtin_shufflevector(p[0], p[1], 1, 3);
    } else {
      const Pack low = __builtin_shufflevector(p[0], p[1], 0, 4, 2, 6) +
                       __builtin_shufflevector(p[0], p[1], 1, 5, 3, 7);
      const Pack high = __builtin_shufflevector(p[2], p[3], 0, 4, 2, 6) +
                        __builtin_shufflevector(p[2], p[3], 1, 5, 3, 7);
      return __builtin_shufflevector(low, high, 0, 1, 4, 5) +
             __builtin_shufflevector(low, high, 2, 3, 6, 7);
    }
  }
};

// The first block of a line is done last: its node may have been solved just before, and its value
// is not available at once.
template <class Node, int vectors>
[[gnu::always_inline]] inline void SolveBackward(const BlockLines& U, const double* inverse,
                                                 PerVector<double*, vectors> y)
{
  constexpr int kSquare = Node::size * Node::size;
  const double* block = U.values + static_cast<long long>(U.starts[U.lines]) * kSquare;
  for (int i = U.lines - 1; i >= 0; --i) {
    const long long own = static_cast<long long>(i) * Node::size;
    const double* const divisor = inverse + static_cast<long long>(i) * kSquare;
    FetchBlock<Node>(divisor - kAhead);
    Sums<Node, kSums, vectors> sums = {};
    AddBlock(
        divisor, [&](int v, int b) { return y.of[v][own + b]; }, sums);
    RowSums<Node, vectors> rows = {};
    for (int s = U.starts[i + 1] - 1; s >= U.starts[i]; --s) {
      block -= kSquare;
      FetchBlock<Node>(block - kAhead);
      PerVector<Node, vectors> x;
      for (int v = 0; v < vectors; ++v)
        Load(y.of[v] + static_cast<long long>(U.columns[s]) * Node::size, x.of[v]);
      rows.Add(block, x);
    }
    for (int v = 0; v < vectors; ++v) {
      Node total = AddUp(sums.of[v]);
      rows.AddTo(v, total);
      Store(total, y.of[v] + own);
    }
  }
}

template <class Node>
void Product(const BlockLines& A, const double* x, double* y)
{
  MultiplyLines<Node, 1>(A, {x}, {y});
}

template <class Node>
void ProductOfTwo(const BlockLines& A, const double* const* x, double* const* y)
{
  MultiplyLines<Node, 2>(A, {x[0], x[1]}, {y[0], y[1]});
}

template <class Node>
void Forward(const BlockLines& U, double* y)
{
  SolveForward<Node, 1>(U, {y});
}

template <class Node>
void ForwardOfTwo(const BlockLines& U, double* const* y)
{
  SolveForward<Node, 2>(U, {y[0], y[1]});
}

template <class Node>
void Backward(const BlockLines& U, const double* inverse, double* y)
{
  SolveBackward<Node, 1>(U, inverse, {y});
}

template <class Node>
void BackwardOfTwo(const BlockLines& U, const double* inverse, double* const* y)
{
  SolveBackward<Node, 2>(U, inverse, {y[0], y[1]});
}

/// target = start·target + left·right, start 0 or 1.
template <class Node, bool add>
[[gnu::always_inline]] inline void Multiply(const double* left, const double* right, double* target)
{
  for (int b = 0; b < Node::size * Node::size; b += Node::size) {
    Sums<Node> sums = {};
    if constexpr (add)
      Load(target + b, sums.of[0][0]);
    AddBlock(
        left, [&](int, int a) { return right[b + a]; }, sums);
    Store(AddUp(sums.of[0]), target + b);
  }
}

template <class Node>
void AddProducts(const double* factor, const double* blocks, const BlockUpdate* updates, int count)
{
  constexpr long long kSquare = Node::size * Node::size;
  for (int k = 0; k < count; ++k)
    Multiply<Node, true>(blocks + updates[k].block * kSquare, factor, updates[k].target);
}

template <class Node>
void Scale(double* blocks, int count, const double* factor)
{
  constexpr int kSquare = Node::size * Node::size;
  double opposite[kSquare + kBlockPadding];
  for (double* block = blocks; block < blocks + count * kSquare; block += kSquare) {
    for (int k = 0; k < kSquare; ++k)
      opposite[k] = -block[k];
    Multiply<Node, false>(opposite, factor, block);
  }
}

template <int size, int lanes>
constexpr BlockKernels MakeKernels()
{
  using Node = NodePacks<size, lanes>;
  return {Product<Node>,      Forward<Node>,       Backward<Node>,    ProductOfTwo<Node>,
          ForwardOfTwo<Node>, BackwardOfTwo<Node>, AddProducts<Node>, Scale<Node>};
}

}  // namespace

}  // namespace morlen
