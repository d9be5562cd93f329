#pragma once

// The loops over blocks, to be compiled once for each set of instructions. Everything is in
// an anonymous namespace and nothing of the standard library is used, so that no function
// compiled for one processor can come to be called on another.
//
// A column of a block is taken in packs of as many numbers as the processor adds at once. The
// last pack reads into the next column; what that brings to the surplus places of a sum is
// never stored. Three sums side by side, for every third column, keep the additions from
// waiting for each other.

#include "solvers/block_kernel.h"

namespace {

constexpr int kSums = 3;

/// How far ahead of a block, in numbers, memory is asked for: what arrives while the blocks
/// before it are worked on.
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

/// The numbers of a node in packs; those behind the last are undefined.
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

/// What is added up side by side for a node.
template <class Node, int count = kSums>
struct Sums
{
  Node of[count];
};

/// The last numbers of a node, fewer than fill a pack; zeros behind them.
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

/// Adds each line of a block times its x, a number or a pack of it, to the sums.
template <class Node, int count, class Number>
[[gnu::always_inline]] inline void AddBlock(const double* block, const Number* x,
                                            Sums<Node, count>& sums)
{
  for (int b = 0; b < Node::size; ++b) {
    const typename Node::Pack factor = x[b] - typename Node::Pack{};
    for (int k = 0; k < Node::kPacks; ++k)
      sums.of[b % count].packs[k] += factor * LinePack<Node>(block, b, k);
  }
}

/// Adds the sums up in the first of them.
template <class Node, int count>
[[gnu::always_inline]] inline const Node& AddUp(Sums<Node, count>& sums)
{
  for (int sum = 1; sum < count; ++sum)
    for (int k = 0; k < Node::kPacks; ++k)
      sums.of[0].packs[k] += sums.of[sum].packs[k];
  return sums.of[0];
}

/// Asks for the memory of a block.
template <class Node>
[[gnu::always_inline]] inline void FetchBlock(const double* block)
{
  for (int k = 0; k + 8 <= Node::size * Node::size; k += 8)
    __builtin_prefetch(block + k);
}

/// sums += line times x.
template <class Node>
[[gnu::always_inline]] inline void AddLine(const BlockLines& A, int line, const double* x,
                                           Sums<Node>& sums)
{
  constexpr int kSquare = Node::size * Node::size;
  const int end = A.starts[line + 1];
  const double* block = A.values + static_cast<long long>(A.starts[line]) * kSquare;
  for (int s = A.starts[line]; s < end; ++s, block += kSquare) {
    FetchBlock<Node>(block + kAhead);
    AddBlock(block, x + static_cast<long long>(A.columns[s]) * Node::size, sums);
  }
}

template <class Node>
void Product(const BlockLines& A, const double* x, double* y)
{
  for (int i = 0; i < A.lines; ++i, y += Node::size) {
    Sums<Node> sums = {};
    AddLine(A, i, x, sums);
    Store(AddUp(sums), y);
  }
}

// Takes what was found for a node out of the nodes behind it. The next node comes first, since
// it is waited for.
template <class Node>
void Forward(const BlockLines& U, double* y)
{
  constexpr int kSquare = Node::size * Node::size;
  const double* block = U.values;
  for (int i = 0; i < U.lines; ++i) {
    typename Node::Pack own[Node::size];
    for (int a = 0; a < Node::size; ++a)
      own[a] = y[static_cast<long long>(i) * Node::size + a] - typename Node::Pack{};
    for (int s = U.starts[i]; s < U.starts[i + 1]; ++s, block += kSquare) {
      FetchBlock<Node>(block + kAhead);
      double* const other = y + static_cast<long long>(U.columns[s]) * Node::size;
      Sums<Node, Node::size / 3> sums = {};
      Load(other, sums.of[0]);
      AddBlock(block, own, sums);
      Store(AddUp(sums), other);
    }
  }
}

/// A sum for each row of a block, still apart by the places of the packs.
template <class Node>
struct RowSums
{
  using Pack = typename Node::Pack;
  static constexpr int kRows = Node::kPacks * Node::lanes;  ///< those behind the last are 0

  Pack of[kRows];

  /// Adds block·x, the block row by row; x has zeros behind its last number.
  [[gnu::always_inline]] void Add(const double* block, const Node& x)
  {
    for (int a = 0; a < Node::size; ++a)
      for (int k = 0; k < Node::kPacks; ++k)
        of[a] += LinePack<Node>(block, a, k) * x.packs[k];
  }

  [[gnu::always_inline]] void AddTo(Node& total) const
  {
    for (int k = 0; k < Node::kPacks; ++k)
      total.packs[k] += Across(of + k * Node::lanes);
  }

private:
  /// The sums over the places of as many packs as these are.
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

// The next node comes last in a line, since it is waited for.
template <class Node>
void Backward(const BlockLines& U, const double* inverse, double* y)
{
  constexpr int kSquare = Node::size * Node::size;
  const double* block = U.values + static_cast<long long>(U.starts[U.lines]) * kSquare;
  for (int i = U.lines - 1; i >= 0; --i) {
    double* const own = y + static_cast<long long>(i) * Node::size;
    const double* const divisor = inverse + static_cast<long long>(i) * kSquare;
    FetchBlock<Node>(divisor - kAhead);
    Sums<Node> sums = {};
    AddBlock(divisor, own, sums);
    Node total = AddUp(sums);
    RowSums<Node> rows = {};
    for (int s = U.starts[i + 1] - 1; s >= U.starts[i]; --s) {
      block -= kSquare;
      FetchBlock<Node>(block - kAhead);
      Node x;
      Load(y + static_cast<long long>(U.columns[s]) * Node::size, x);
      rows.Add(block, x);
    }
    rows.AddTo(total);
    Store(total, own);
  }
}

/// target = start·target + left·right, start 0 or 1.
template <class Node, bool add>
[[gnu::always_inline]] inline void Multiply(const double* left, const double* right, double* target)
{
  for (int b = 0; b < Node::size * Node::size; b += Node::size) {
    Sums<Node> sums = {};
    if constexpr (add)
      Load(target + b, sums.of[0]);
    AddBlock(left, right + b, sums);
    Store(AddUp(sums), target + b);
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
  return {Product<Node>, Forward<Node>, Backward<Node>, AddProducts<Node>, Scale<Node>};
}

}  // namespace
