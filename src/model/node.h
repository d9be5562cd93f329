#pragma once

#include <istream>
#include <memory>
#include <ostream>

#include "base/object_pool.h"
#include "numeric/reavec.h"

namespace morlen {

class Constraint;
class Load;
class TextScan;

/// A point of the model: its coordinates (the ReaVec part; 2 or 3 of them), its
/// number, and what is applied to it. A node is never copied or moved.
class Node : public ReaVec, public Pooled<Node>
{
public:
  explicit Node(int ndime);  ///< all coordinates 0
  Node(const Node&) = delete;
  Node& operator=(const Node&) = delete;
  ~Node();

  /// Reads "number x y [z]", the coordinates by the node's own dimension, and skips
  /// the rest of the line. Returns 1, or 0 when there is no such line here.
  int ReadFromAscii(TextScan& text);

  /// Takes the coordinates of the other node, and its dimension.
  void MoveTo(const Node& other) { ReaVec::operator=(other); }

  int number = 0;          ///< the user's number; after a renumbering the system number
  int word = 0;            ///< scratch of the renumbering
  bool hasRotule = false;  ///< every beam end at this node is hinged
  std::unique_ptr<Constraint> constraint;
  std::unique_ptr<Load> load;
};

inline TextScan& operator>>(TextScan& text, Node& node)
{
  node.ReadFromAscii(text);
  return text;
}
/// A node is more than the coordinates that the vector would read.
std::istream& operator>>(std::istream& in, Node& node) = delete;

/// The node's number; 0 for a node that is not there.
inline int NumberOf(const Node* node)
{
  return node ? node->number : 0;
}

std::ostream& operator<<(std::ostream& out, const Node& node);

/// Number (width 5) and coordinates (width 15 each), then a newline.
void WriteNodeLine(std::ostream& out, int number, const Node& node);

/// Squared distance of two points, which may have two coordinates or three.
double dist2(const Node* a, const Node* b);

}  // namespace morlen
