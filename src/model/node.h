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

  /// Copies the coordinates and the dimension of the other node.
  void MoveTo(const Node& other) { ReaVec::operator=(other); }

  int number = 0;          ///< the user's number; after a renumbering the system number
  int word = 0;            ///< scratch of the renumbering
  bool hasRotule = false;  ///< true when every beam end at this node is hinged
  std::unique_ptr<Constraint> constraint;
  std::unique_ptr<Load> load;
};

/// As ReadFromAscii. Not used by the analysis itself.
inline TextScan& operator>>(TextScan& text, Node& node)
{
  node.ReadFromAscii(text);
  return text;
}
/// Deleted: the operator of the vector would read the coordinates only.
std::istream& operator>>(std::istream& in, Node& node) = delete;

/// The node's number; 0 for null.
inline int NumberOf(const Node* node)
{
  return node ? node->number : 0;
}

/// As WriteNodeLine with the node's number. Not used by the analysis itself.
std::ostream& operator<<(std::ostream& out, const Node& node);

/// Writes the number (width 5), the coordinates (width 15 each) and a newline. Not used by the
/// analysis itself.
void WriteNodeLine(std::ostream& out, int number, const Node& node);

/// Squared distance of two points; a plane point has z = 0.
double dist2(const Node* a, const Node* b);

}  // namespace morlen
