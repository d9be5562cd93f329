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

template <class Node>
struct Sums
{
  Node of[kSums];
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

/// sums += block times the numbers at x.
template <class Node>
[[gnu::always_inline]] inline void AddBlock(const double* block, const double* x, Sums<Node>& sums)
{
  using Pack = typename Node::Pack;
  for (int b = 0; b < Node::size; ++b) {
    const Pack factor = x[b] - Pack{};
    for (int k = 0; k < Node::kPacks; ++k) {
      const double* const column = block + b * Node::size + k * Node::lanes;
      sums.of[b % kSums].packs[k] +=
          factor * *reinterpret_cast<const typename Node::Loose*>(column);
    }
  }
}

template <class Node>
[[gnu::always_inline]] inline void AddUp(const Sums<Node>& sums, Node& total)
{
  for (int k = 0; k < Node::kPacks; ++k)
    total.packs[k] = (sums.of[0].packs[k] + sums.of[1].packs[k]) + sums.of[2].packs[k];
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
    for (int k = 0; k + 8 <= kSquare; k += 8)
      __builtin_prefetch(block + kAhead + k);
    AddBlock(block, x + static_cast<long long>(A.columns[s]) * Node::size, sums);
  }
}

template <class Node>
void Product(const BlockLines& A, const double* x, double* y)
{
  for (int i = 0; i < A.lines; ++i, y += Node::size) {
    Sums<Node> sums = {};
    AddLine(A, i, x, sums);
    AddUp(sums, sums.of[0]);
    Store(sums.of[0], y);
  }
}

template <class Node>
void Forward(const BlockLines& L, const double* b, double* y)
{
  for (int i = 0; i < L.lines; ++i) {
    const long long first = static_cast<long long>(i) * Node::size;
    Sums<Node> sums = {};
    Load(b + first, sums.of[0]);
    AddLine(L, i, y, sums);
    AddUp(sums, sums.of[0]);
    Store(sums.of[0], y + first);
  }
}

template <class Node>
void Backward(const BlockLines& U, double* y)
{
  for (int line = 0; line < U.lines; ++line) {
    Sums<Node> sums = {};
    AddLine(U, line, y, sums);
    AddUp(sums, sums.of[0]);
    Store(sums.of[0], y + static_cast<long long>(U.lines - 1 - line) * Node::size);
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
    AddUp(sums, sums.of[0]);
    Store(sums.of[0], target + b);
  }
}

template <class Node>
void AddProducts(const double* factor, const double* blocks, const BlockUpdate* updates, int count)
{
  constexpr long long kSquare = Node::size * Node::size;
  for (int k = 0; k < count; ++k)
    Multiply<Node, true>(factor, blocks + updates[k].block * kSquare, updates[k].target);
}

/// The opposite of a block, which a product may then replace.
template <class Node>
struct Opposite
{
  static constexpr int kSquare = Node::size * Node::size;
  explicit Opposite(const double* block)
  {
    for (int k = 0; k < kSquare; ++k)
      values[k] = -block[k];
  }
  double values[kSquare + kBlockPadding];
};

template <class Node>
void ScaleLeft(const double* factor, double* blocks, int count)
{
  const Opposite<Node> opposite(factor);
  for (int k = 0; k < count; ++k, blocks += Node::size * Node::size)
    Multiply<Node, false>(opposite.values, blocks, blocks);
}

template <class Node>
void ScaleRight(double* block, const double* factor)
{
  const Opposite<Node> opposite(block);
  Multiply<Node, false>(opposite.values, factor, block);
}

template <int size, int lanes>
constexpr BlockKernels MakeKernels()
{
  using Node = NodePacks<size, lanes>;
  return {Product<Node>,     Forward<Node>,   Backward<Node>,
          AddProducts<Node>, ScaleLeft<Node>, ScaleRight<Node>};
}

}  // namespace
