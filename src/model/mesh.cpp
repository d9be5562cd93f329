#include "model/mesh.h"

#include <algorithm>

#include "base/errorwriter.h"
#include "model/node.h"
#include "numeric/plex_range.h"

namespace morlen {

namespace {

struct FemviewCode
{
  ElemType type;
  int nnode;
  int code;
};

constexpr FemviewCode kFemviewCodes[] = {
    {Linear, 2, 11},       {Triangle, 3, 7},       {Triangle, 6, 8},
    {Quadrilateral, 4, 9}, {Quadrilateral, 8, 10}, {Tetrahedra, 4, 3},
    {Tetrahedra, 10, 6},   {Hexahedra, 8, 1},      {Hexahedra, 20, 4},
};

}  // namespace

Mesh::Mesh(int nodeCapacity, int elemCapacity, int dimension, ElemType type, int nodesPerElem)
    : Mesh(nullptr, elemCapacity, dimension, type, nodesPerElem)
{
  ownNodes = std::make_unique<VoidPlex>(nodeCapacity);
  nodes = ownNodes.get();
}

Mesh::Mesh(VoidPlex* sharedNodes, int elemCapacity, int dimension, ElemType type, int nodesPerElem)
    : ndime(dimension),
      nnode(nodesPerElem),
      elemType(type),
      nodes(sharedNodes),
      elems(std::make_unique<VoidPlex>(elemCapacity))
{
  if (nnode != 0)
    CalcShapeGaussFemv();
}

Mesh::~Mesh() = default;

void Mesh::CalcShapeGaussFemv(const std::string& origin)
{
  if (elemType < Linear || elemType > Hexahedra)
    return;
  const auto* row = std::find_if(
      std::begin(kFemviewCodes), std::end(kFemviewCodes),
      [this](const FemviewCode& code) { return code.type == elemType && code.nnode == nnode; });
  if (row == std::end(kFemviewCodes)) {
    Explain(origin, "elements of type ", ElemTypeName(elemType), " do not have ", nnode,
            " nodes: Linear has 2, Triangle 3 or 6, Tetrahedra 4 or 10");
    Fatal("Unknown Femview type\n");
  }
  fvType = row->code;
}

int Mesh::GiveOldNumber(int n) const
{
  const std::vector<int>& old = numbering->oldNumbers;
  return n >= 1 && n <= static_cast<int>(old.size()) ? old[n - 1] : n;
}

int Mesh::GiveOldNumber(const Node* node) const
{
  return GiveOldNumber(NumberOf(node));
}

void Mesh::ConvertToNewNnode(int n)
{
  if (n == nnode)
    return;
  if (n > nnode) {
    for (Elem& elem : Each<Elem>(*elems))
      elem.IncreaseNnode(n);
  }
  nnode = n;
  edges.clear();
  CalcShapeGaussFemv();
}

int Mesh::AddPtstoPlex(Node* node)
{
  const int number = node->number ? node->number : nodes->Last() + 1;
  if (nodes->free(number))
    nodes->set_at(number, node);
  return number;
}

int Mesh::AddElemtoPlex(Elem* elem)
{
  if (elem->Num() != 0 && elems->free(elem->Num())) {
    elems->set_at(elem->Num(), elem);
    return elem->Num();
  }
  const int number = elems->Last() + 1;
  elem->NewMesh(this);
  elems->set_at(number, elem);
  return number;
}

void Mesh::ClearAllNodes()
{
  DeleteAll<Node>(*nodes);
}

void Mesh::ClearAllElems()
{
  DeleteAll<Elem>(*elems);
  places = NodePlaces();
}

int CompareEdgePointers(const void* a, const void* b)
{
  const int* first = static_cast<const int*>(a);
  const int* second = static_cast<const int*>(b);
  const int k = first[0] != second[0] ? 0 : 1;
  return (first[k] > second[k]) - (first[k] < second[k]);
}

}  // namespace morlen
