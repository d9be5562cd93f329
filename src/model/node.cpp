#include "model/node.h"

#include <algorithm>
#include <iomanip>

#include "base/read_observer.h"
#include "base/textscan.h"
#include "model/constraint.h"
#include "model/nodal_load.h"

namespace morlen {

// Not inline: here the types that a node owns are complete.
Node::Node(int ndime) : ReaVec(ndime) {}

Node::~Node() = default;

int Node::ReadFromAscii(TextScan& text)
{
  if (!text.ReadInt(number))
    return 0;
  const char* const from = text.Here();
  for (double& coordinate : *this) {
    if (!text.ReadDouble(coordinate)) {
      NoteBrokenRecord(from, text, NumberKind::kReal, Size());
      return 0;
    }
  }
  NoteRecordEnd(from, text);
  text.SkipLine();
  return 1;
}

std::ostream& operator<<(std::ostream& out, const Node& node)
{
  WriteNodeLine(out, node.number, node);
  return out;
}

void WriteNodeLine(std::ostream& out, int number, const Node& node)
{
  out << std::setw(5) << number;
  for (int i = 1; i <= node.Size(); ++i)
    out << std::setw(15) << node(i);
  out << '\n';
}

double dist2(const Node* a, const Node* b)
{
  double sum = 0.0;
  for (int i = 1; i <= std::max(a->Size(), b->Size()); ++i) {
    const double d = (i <= b->Size() ? (*b)(i) : 0.0) - (i <= a->Size() ? (*a)(i) : 0.0);
    sum += d * d;
  }
  return sum;
}

}  // namespace morlen
