// The way of the elements into the matrix.

#include <algorithm>
#include <cstddef>

#include "solvers/sparse_matrix.h"

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

/// For each of at most kKeys nodes, from 1, how many of the columns, which may be free, are
/// before it; kKeys counts are written. A free column is stored as its complement, which the
/// sign tells.
void CountBefore(const int* columns, int length, std::span<const int> nodes, int* counts)
{
  Keys keys{};
  for (std::size_t k = 0; k < nodes.size(); ++k)
    keys[k] = nodes[k] - 1;
  Keys before{};
  int s = 0;
  for (; s + 4 <= length; s += 4) {
    Keys four = *reinterpret_cast<const LooseKeys*>(columns + s);
    four ^= four >> 31;
    before -= __builtin_shufflevector(four, four, 0, 0, 0, 0) < keys;
    before -= __builtin_shufflevector(four, four, 1, 1, 1, 1) < keys;
    before -= __builtin_shufflevector(four, four, 2, 2, 2, 2) < keys;
    before -= __builtin_shufflevector(four, four, 3, 3, 3, 3) < keys;
  }
  for (; s < length; ++s)
    before -= (columns[s] ^ (columns[s] >> 31)) < keys;
  for (std::size_t k = 0; k < kKeys; ++k)
    counts[k] = before[k];
}

}  // namespace

void SparseMatrix::AddNodeBlock(int p, int q, const double* m, bool transposed)
{
  const int block = size == ndof ? FindBlock(p, q) : EndOfBlocks();
  if (block == EndOfBlocks()) {
    for (int a = 0; a < ndof; ++a)
      for (int b = 0; b < ndof; ++b)
        addToLhs(p * ndof + a, q * ndof + b, transposed ? m[b * ndof + a] : m[a * ndof + b]);
    return;
  }
  Give(block, q);
  double* const value = &values[Place(block, 0, 0)];
  if (size == 3)
    AddByRows<3>(m, transposed, value);
  else if (size == 6)
    AddByRows<6>(m, transposed, value);
  else
    *value += *m;
}

void SparseMatrix::AddElement(const ElementBlocks& element)
{
  const int* const places = size > 1 ? PlacesOf(element.nodes) : nullptr;
  if (places) {
    GiveAll(element.nodes, places);
    size == 3 ? AddAtPlaces<3>(element, places) : AddAtPlaces<6>(element, places);
    return;
  }
  for (const int node : element.nodes)
    RequireNode(node);
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

// Null when one of the blocks is missing.
const int* SparseMatrix::PlacesOf(std::span<const int> nodes)
{
  const auto isNext = [&] {
    const std::span<const int> rest = std::span(expected.nodes).subspan(expected.added);
    return expected.count == nodes.size() && rest.size() >= nodes.size() &&
           std::equal(nodes.begin(), nodes.end(), rest.begin());
  };
  if (!isNext())
    Expect(nodes, static_cast<int>(nodes.size()));
  const std::size_t before = expected.added * nodes.size();
  expected.added += nodes.size();
  return expected.complete ? &expected.places[before] : nullptr;
}

void SparseMatrix::Expect(std::span<const int> nodes, int count)
{
  for (const int node : nodes)
    RequireNode(node);
  if (size == 1)
    return;
  for (const int node : nodes)
    __builtin_prefetch(&columns[starts[node - 1]]);
  expected.nodes.assign(nodes.begin(), nodes.end());
  expected.count = static_cast<std::size_t>(count);
  expected.places.resize(nodes.size() * expected.count + kKeys);
  expected.added = 0;
  expected.complete = true;
  expected.someFree = false;
  int* places = expected.places.data();
  for (std::size_t k = 0; k < nodes.size(); ++k, places += count)
    FindInLine(nodes[k] - 1, nodes.subspan(k - k % expected.count, expected.count), places);
}

// Behind the places of the line it writes up to kKeys − 1 numbers without meaning.
void SparseMatrix::FindInLine(int line, std::span<const int> nodes, int* places)
{
  const int first = starts[line];
  const int length = starts[line + 1] - first;
  for (std::size_t k = 0; k < nodes.size(); k += kKeys)
    CountBefore(&columns[first], length, nodes.subspan(k, std::min(kKeys, nodes.size() - k)),
                places + k);
  bool complete = true;
  bool someFree = false;
  const int square = size * size;
  for (std::size_t k = 0; k < nodes.size(); ++k) {
    if (places[k] == length) {
      complete = false;
      continue;
    }
    places[k] += first;
    const int column = columns[places[k]];
    someFree |= column < 0;
    complete &= (column ^ (column >> 31)) == nodes[k] - 1;
    const double* const value = &values[Place(places[k], 0, 0)];
    __builtin_prefetch(value, 1);
    __builtin_prefetch(value + square - 1, 1);
  }
  expected.complete &= complete;
  expected.someFree |= someFree;
}

void SparseMatrix::GiveAll(std::span<const int> nodes, const int* places)
{
  if (!expected.someFree)
    return;
  for (std::size_t i = 0; i < nodes.size(); ++i)
    for (const int node : nodes)
      Give(*places++, node - 1);
}

template <int blockSize>
void SparseMatrix::AddAtPlaces(const ElementBlocks& element, const int* places)
{
  const std::size_t count = element.nodes.size();
  const double* m = element.values;
  for (std::size_t i = 0; i < count; ++i) {
    for (std::size_t j = i; j < count; ++j, m += blockSize * blockSize) {
      AddByRows<blockSize>(m, false, &values[Place(places[i * count + j], 0, 0)]);
      if (element.nodes[i] != element.nodes[j])
        AddByRows<blockSize>(m, true, &values[Place(places[j * count + i], 0, 0)]);
    }
  }
}

}  // namespace morlen
