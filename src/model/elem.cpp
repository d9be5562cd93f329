#include "model/elem.h"

#include <algorithm>
#include <iomanip>
#include <memory>

#include "base/errorwriter.h"
#include "base/number_text.h"
#include "base/object_pool.h"
#include "base/read_observer.h"
#include "base/textscan.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"

namespace morlen {

namespace {

// Nodes missing in a line are taken from the next one.
void NoteElementNodes(const char* from, const TextScan& text)
{
  if (!readObserver)
    return;
  const std::string_view numbers(from, text.Here());
  if (numbers.find('\n') != std::string_view::npos)
    Note(ReadEvent::LineBreak, numbers);
}

// A leading 0 makes it octal or hexadecimal, other characters end it.
void NoteMaterialNumber(std::string_view item)
{
  if (!readObserver || item.empty())
    return;
  const std::size_t digits = std::min(item.find_first_not_of("0123456789"), item.size());
  if (item[0] == '0' && item.size() > 1)
    Note(ReadEvent::NotDecimal, item);
  else if (item.substr(digits).find_first_not_of("\r") != std::string_view::npos)
    Note(ReadEvent::NumberPart, item);
}

// The places of elements with more nodes than most: each usual number of them has a pool.
ObjectPool* PoolOfPlaces(int n)
{
  static ObjectPool six(6 * sizeof(Node*));
  static ObjectPool ten(10 * sizeof(Node*));
  return n == 6 ? &six : n == 10 ? &ten : nullptr;
}

}  // namespace

const char* ElemTypeName(ElemType type)
{
  static const char* const names[] = {"",           "Linear",   "Triangle", "Quadrilateral",
                                      "Tetrahedra", "Hexahedra"};
  return type >= Linear && type <= Hexahedra ? names[type] : names[0];
}

Node** NodePlaces::MakeMany(int n)
{
  ObjectPool* const pool = PoolOfPlaces(n);
  const std::size_t bytes = static_cast<std::size_t>(n) * sizeof(Node*);
  auto* const places = static_cast<Node**>(pool ? pool->Take() : ::operator new(bytes));
  std::uninitialized_fill_n(places, n, nullptr);
  return places;
}

void NodePlaces::Resize(int n)
{
  const int kept = std::min(n, size);
  if (n > kFew) {
    Node** const places = MakeMany(n);
    std::copy_n(begin(), kept, places);
    Release();
    many = places;
  } else {
    Node* places[kFew] = {};
    std::copy_n(begin(), kept, places);
    Release();
    std::copy_n(places, kFew, few);
  }
  size = n;
}

void NodePlaces::ReleaseMany()
{
  if (ObjectPool* const pool = PoolOfPlaces(size))
    pool->Return(many);
  else
    ::operator delete(many);
}

Elem::Elem(Mesh* ownMesh, Elem* boundElem) : Elem(ownMesh->GiveNnode(), ownMesh, boundElem) {}

Elem::Elem(int nnode, Mesh* ownMesh, Elem* boundElem) : mesh(ownMesh), nodes(nnode)
{
  if (boundElem)
    MakeRare().bound = boundElem;
}

Elem::Elem(Elem* el, Node* node, Mesh* ownMesh, Elem* boundElem)
    : Elem(el->Nnode() + 1, ownMesh, boundElem)
{
  CopyNodesFrom(*el, el->Nnode(), 0);
  nodes[el->Nnode()] = node;
}

Elem::Elem(Elem* el, Node* node, int face, int, Mesh* ownMesh)
    : Elem(el->Nnode(), ownMesh ? ownMesh : el->mesh, nullptr)
{
  if (nodes.Size() == 2 && face == 1) {
    nodes[0] = node;
    nodes[1] = el->nodes[1];
    return;
  }
  CopyNodesFrom(*el, nodes.Size() - 1, face);
  nodes[nodes.Size() - 1] = node;
}

Elem::Elem(Elem* el, int face) : Elem(std::max(el->Nnode() - 1, 0), nullptr, nullptr)
{
  if (el->ElemType() == Linear)
    Fatal("error in Elem::Elem(Elem* el,int face). Linear has no faces\n");
  if (el->ElemType() != Triangle && el->ElemType() != Tetrahedra)
    Fatal("error in Elem::Elem(Elem* el,int face). Only Triang. and Tetr. implemented\n");
  CopyNodesFrom(*el, nodes.Size(), face);
}

Elem::~Elem() = default;
Elem::Rare::~Rare() = default;

Elem::Rare& Elem::MakeRare()
{
  if (!rare)
    rare = std::make_unique<Rare>();
  return *rare;
}

void Elem::CopyNodesFrom(const Elem& el, int count, int first)
{
  for (int i = 0; i < count; ++i)
    nodes[i] = el.nodes[(first + i) % el.Nnode()];
}

morlen::ElemType Elem::ElemType() const
{
  return mesh ? mesh->GiveElemType() : morlen::ElemType(0);
}

int Elem::Ndime() const
{
  return mesh ? mesh->GiveNdime() : nodes[0]->Size();
}

int Elem::Nnode() const
{
  return mesh ? mesh->GiveNnode() : nodes.Size();
}

Material* Elem::GiveMaterial(const VoidPlex* materials) const
{
  Material* const own = OwnMaterial();
  return own ? own : Find<Material>(*materials, materialNumber);
}

void Elem::ComposeYourMaterial(const VoidPlex* materials)
{
  if (Material* const own = OwnMaterial())
    own->ComposeMaterial(Find<Material>(*materials, materialNumber));
}

void Elem::GiveEI(const VoidPlex* materials, double& EIy, double& EIz, double& EA) const
{
  const Material* m = GiveMaterial(materials);
  if (!m)
    Fatal("error: Material in element: ", number, " doesn't exist\n");
  m->GiveEI(EIy, EIz, EA);
}

void Elem::IncreaseNnode(int n)
{
  nodes.Resize(n);
}

ReaVec& Elem::MidNode(ReaVec& c) const
{
  c.resize(Ndime(), 0.0);
  for (int k = 1; k <= Ndime(); ++k) {
    double sum = 0.0;
    for (int i = 0; i < Nnode(); ++i)
      sum += (*nodes[i])(k);
    c(k) = sum / Nnode();
  }
  return c;
}

int Elem::IsInto(const Node* n) const
{
  Node* const* const last = nodes.begin() + Nnode();
  Node* const* const found = std::find(nodes.begin(), last, n);
  return found == last ? 0 : static_cast<int>(found - nodes.begin()) + 1;
}

void Elem::PrintTo(std::ostream& out, int useOld, int bare) const
{
  bare = useOld && bare;
  out << std::setw(5) << number << "   ";
  for (int i = 0; i < Nnode(); ++i)
    out << std::setw(5) << (useOld ? mesh->GiveOldNumber(nodes[i]) : NumberOf(nodes[i]));
  const Material* const own = OwnMaterial();
  if (own && !bare) {
    out << "  Mat: ";
    own->PrintTo(out);
    return;
  }
  if (own)
    out << " 0";
  else if (materialNumber)
    out << (bare ? " " : "  Mat: ") << materialNumber;
  out << '\n';
}

void Elem::PrintToFemview(std::ostream& out) const
{
  constexpr int kNodesOfFirstLine = 15;
  out << " -1" << std::setw(5) << number << std::setw(5) << mesh->GiveFvType() << "    1    1\n -2";
  for (int i = 0; i < Nnode(); ++i) {
    if (i == kNodesOfFirstLine)
      out << '\n';
    out << std::setw(5) << NumberOf(nodes[i]);
  }
  out << '\n';
}

int Elem::ReadFromAscii(TextScan& text, const VoidPlex* nodePlex, const Units* units)
{
  if (!text.ReadInt(number))
    return 0;
  const char* const from = text.Here();
  int first = 0;
  int last = 0;
  Node** const places = nodes.begin();
  for (int i = 0; i < nodes.Size(); ++i) {
    if (!text.ReadInt(last))
      return 0;
    places[i] = Find<Node>(*nodePlex, last);
    if (i == 0)
      first = last;
  }
  NoteElementNodes(from, text);
  if (nodes.Size() == 2 && first == last)
    Fatal("error: element: ", number, "  have both nodes equal\n");
  if (!text.ReadLastNumber(materialNumber))
    ReadMaterial(UpToNull(text.ReadRestOfLine()), units);
  return 1;
}

void Elem::ReadMaterial(std::string_view text, const Units* units)
{
  constexpr const char* kDelimiters = " \t:=";
  text.remove_prefix(std::min(text.find_first_not_of(kDelimiters), text.size()));
  std::string_view item = text.substr(0, text.find_first_of(kDelimiters));
  text.remove_prefix(std::min(item.size() + 1, text.size()));  // with the delimiter
  NoteMaterialNumber(item);
  ScanInt(item, materialNumber, 0, 0);
  if (text.find_first_not_of(" \t\r") == std::string_view::npos)
    return;
  std::unique_ptr<Material>& own = MakeRare().material;
  own = std::make_unique<Material>();
  own->SetToNegative();
  own->ReadFromAsciiNoNum(text, units);
}

}  // namespace morlen
