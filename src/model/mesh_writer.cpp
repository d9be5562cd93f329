#include <cstring>
#include <string_view>

#include "base/stprintf.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"

namespace morlen {

namespace {

// The file name without its folders; of a longer name the last 6 characters.
std::string_view FemviewTitle(std::string_view fileName)
{
  constexpr std::size_t kLongest = 6;
  fileName.remove_prefix(fileName.rfind('/') + 1);
  if (fileName.size() > kLongest)
    fileName.remove_prefix(fileName.size() - kLongest);
  return fileName;
}

}  // namespace

void Mesh::PrintTo(std::ostream& out, int useOld, int bare) const
{
  out << "MESH    dimension = " << ndime << " ElemType " << ElemTypeName(elemType)
      << "  Nnode = " << nnode << "\nCoordinates\n";
  for (const Node& node : Each<Node>(*nodes)) {
    const int old = useOld ? GiveOldNumber(&node) : 0;
    WriteNodeLine(out, old ? old : node.number, node);
  }
  out << "end coordinates\n\nElements\n";
  for (const Elem& elem : Each<Elem>(*elems))
    elem.PrintTo(out, useOld, bare);
  out << "end elements\n";
}

void Mesh::PrintToFemview(std::ostream& out, const char* fileName) const
{
  out << "    1C" << FemviewTitle(fileName) << "\n    2CCOORDE\n";
  for (const Node& node : Each<Node>(*nodes)) {
    stprintf(out, " -1%5i%12.5e%12.5e%12.5e \n", node.number, node(1), node(2),
             node.Size() == 3 ? node(3) : 0.0);
  }
  out << " -3\n    3CCONECT\n";
  for (const Elem& elem : Each<Elem>(*elems))
    elem.PrintToFemview(out);
  out << " -3\n 9999\n";
}

}  // namespace morlen
