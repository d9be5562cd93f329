// Adds elements to a matrix of node blocks.
//
// Finding the blocks of an element is a search in the line of each of its nodes. A group of
// elements that was announced is searched for at once, four columns at a time, and the memory of
// its blocks is requested on the way, so that it arrives while the elements are computed. Elements
// that come otherwise than announced are searched for when they come.

#include <algorithm>
#include <cstddef>

#include "solvers/node_block_matrix.h"

namespace morlen {

namespace {

/// Adds a block given row by row, or its transpose, to one kept column by column.
template <int size>
void AddByRows(const double* m, bool transposed, double* value)
{
  // One column at a time when it is whole pairs of numbers, else all: they are added in pairs.
  constexpr int kColumns = size % 2 == 0 ? 1 : size;
  for (int first = 0; first < size; first += kColumns) {
    double sums[kColumns * size];
    double* sum = sums;
    for (int b = first; b < first + kColumns; ++b)
      for (int a = 0; a < size; ++a)
        *sum++ = value[b * size + a] + (transposed ? m[b * size + a] : m[a * size + b]);
    std::copy_n(sums, kColumns * size, value + first * size);
  }
}

/// Nodes that are looked for in a line at once.
constexpr std::size_t kKeys = 4;
using Keys [[gnu::vector_size(kKeys * sizeof(int))]] = int;
using LooseKeys [[gnu::vector_size(kKeys * sizeof(int)), gnu::aligned(4), gnu::may_alias]] = int;

/// For each of at most kKeys nodes, from 1, how many of the columns are before it. Always writes
/// kKeys counts.
void CountBefore(const int* columns, int length, std::span<const int> nodes, int* counts)
{
  Keys keys{};
  for (std::size_t k = 0; k < nodes.size(); ++k)
    keys[k] = nodes[k] - 1;
  Keys before{};
  int s = 0;
  for (; s + 4 <= length; s += 4) {
    const Keys four = *reinterpret_cast<const LooseKeys*>(columns + s);
    before -= __builtin_shufflevector(four, four, 0, 0, 0, 0) < keys;
    before -= __builtin_shufflevector(four, four, 1, 1, 1, 1) < keys;
    before -= __builtin_shufflevector(four, four, 2, 2, 2, 2) < keys;
    before -= __builtin_shufflevector(four, four, 3, 3, 3, 3) < keys;
  }
  for (; s < length; ++s)
    before -= columns[s] < keys;
  for (std::size_t k = 0; k < kKeys; ++k)
    counts[k] = before[k];
}

}  // namespace

void NodeBlockMatrix::AddNodeBlock(int p, int q, const double* m, bool transposed)
{
  double* const value = &values[Place(RequireBlock(p * ndof, q * ndof), 0, 0)];
  if (ndof == 3)
    AddByRows<3>(m, transposed, value);
  else
    AddByRows<6>(m, transposed, value);
}

void NodeBlockMatrix::AddElement(const ElementBlocks& element)
{
  const int* const places = NextPlaces(element.nodes);
  if (!places)
    AddElementSlow(element);
  else if (ndof == 3)
    AddAtPlaces<3>(element, places);
  else
    AddAtPlaces<6>(element, places);
}

// One block after the other, up to the one that is not in the pattern.
void NodeBlockMatrix::AddElementSlow(const ElementBlocks& element)
{
  const double* m = element.values;
  for (std::size_t i = 0; i < element.nodes.size(); ++i) {
    for (std::size_t j = i; j < element.nodes.size(); ++j, m += ndof * ndof) {
      const int p = element.nodes[i] - 1;
      const int q = element.nodes[j] - 1;
      AddNodeBlock(p, q, m, false);
      if (p != q)
        AddNodeBlock(q, p, m, true);
    }
  }
}

template <int size>
void NodeBlockMatrix::AddAtPlaces(const ElementBlocks& element, const int* places)
{
  const std::size_t count = element.nodes.size();
  const double* m = element.values;
  for (std::size_t i = 0; i < count; ++i) {
    for (std::size_t j = i; j < count; ++j, m += size * size) {
      AddByRows<size>(m, false, &values[Place(places[i * count + j], 0, 0)]);
      if (element.nodes[i] != element.nodes[j])
        AddByRows<size>(m, true, &values[Place(places[j * count + i], 0, 0)]);
    }
  }
}

const int* NodeBlockMatrix::NextPlaces(std::span<const int> nodes)
{
  const auto isNext = [&] {
    const std::span<const int> rest = std::span(announced.nodes).subspan(announced.added);
    return announced.count == nodes.size() && rest.size() >= nodes.size() &&
           std::equal(nodes.begin(), nodes.end(), rest.begin());
  };
  if (!isNext())
    Prefetch(nodes, static_cast<int>(nodes.size()));
  const std::size_t before = announced.added * nodes.size();
  announced.added += nodes.size();
  return announced.complete ? &announced.places[before] : nullptr;
}

void NodeBlockMatrix::Prefetch(std::span<const int> nodes, int count)
{
  for (const int node : nodes)
    RequireNode(node);
  for (const int node : nodes)
    __builtin_prefetch(&columns[starts[node - 1]]);
  announced.nodes.assign(nodes.begin(), nodes.end());
  announced.count = static_cast<std::size_t>(count);
  announced.places.resize(nodes.size() * announced.count + kKeys);
  announced.added = 0;
  announced.complete = true;
  int* places = announced.places.data();
  for (std::size_t k = 0; k < nodes.size(); ++k, places += count)
    announced.complete &=
        FindInLine(nodes[k] - 1, nodes.subspan(k - k % announced.count, announced.count), places);
}

// Finds the blocks of the nodes, from 1, in a line, and asks for their memory. False when one is
// missing. After the places it writes up to kKeys − 1 numbers without meaning.
bool NodeBlockMatrix::FindInLine(int line, std::span<const int> nodes, int* places) const
{
  const int first = starts[line];
  const int length = starts[line + 1] - first;
  for (std::size_t k = 0; k < nodes.size(); k += kKeys)
    CountBefore(&columns[first], length, nodes.subspan(k, std::min(kKeys, nodes.size() - k)),
                places + k);
  bool complete = true;
  const int square = ndof * ndof;
  for (std::size_t k = 0; k < nodes.size(); ++k) {
    if (places[k] == length)
      return false;
    places[k] += first;
    complete &= columns[places[k]] == nodes[k] - 1;
    const double* const value = &values[Place(places[k], 0, 0)];
    __builtin_prefetch(value, 1);
    __builtin_prefetch(value + square - 1, 1);
  }
  return complete;
}

}  // namespace morlen
