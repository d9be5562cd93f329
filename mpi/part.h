#pragma once

#include <memory>
#include <vector>

#include "mpi/bytes.h"
#include "problem/problem.h"

namespace morlen::mpi {

/// The elements of one rank as a problem of its own.
///
/// It has all meshes of the whole problem, each with those of its elements that belong to the part,
/// under the numbers of the file; the nodes of these elements, numbered anew from 1 in the same
/// order, with their supports; the materials, and the settings that elements need. It has no loads.
struct Part
{
  Problem problem{kChunk};
  std::vector<int> nodes;   ///< the system number in the whole problem of each node
  std::vector<char> owned;  ///< by node: 1 in one of the parts that have the node

private:
  static constexpr int kChunk = 100;
};

/// An element of the whole problem, borrowed, and its place in its mesh, from 0.
struct PlacedElem
{
  int place;
  const Elem* elem;
};

/// The elements of a part, of each mesh in its order.
using ElementsOfPart = std::vector<std::vector<PlacedElem>>;

/// The parts of a prepared problem, from the part of each node. An element belongs to one of the
/// parts of its nodes.
std::vector<ElementsOfPart> ElementsOfParts(const Problem& whole,
                                            const std::vector<int>& partOfNode, int parts);

/// The nodes of a part, by system number, ascending.
struct NodesOfPart
{
  std::vector<int> numbers;
  std::vector<char> owned;  ///< 1 for the nodes of which the part is the owner
};

/// The nodes of the elements of each part. The first part also gets the nodes without elements.
std::vector<NodesOfPart> NodesOfParts(const Problem& whole,
                                      const std::vector<ElementsOfPart>& elements);

/// Writes parts of a problem, to be sent. Borrows the problem.
class PartWriter
{
public:
  explicit PartWriter(const Problem& whole);
  void Write(const ElementsOfPart& elements, const NodesOfPart& nodes, ByteWriter& out) const;

private:
  const Problem& whole;
  std::vector<const Node*> byNumber;  ///< all nodes, by system number less 1
};

std::unique_ptr<Part> UnpackPart(ByteReader& in);

}  // namespace morlen::mpi
