#include "model/elem.h"

#include <algorithm>
#include <iomanip>
#include <memory>

#include "base/errorwriter.h"
#include "base/number_text.h"
#include "base/read_observer.h"
#include "base/record_hint.h"
#include "base/textscan.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"

namespace morlen {

namespace {

// Reports a material number that a leading 0 makes octal or hexadecimal, or that is followed by
// other characters.
void NoteMaterialNumber(std::string_view item)
{
  if (!readObserver || item.empty())
    return;
  const std::size_t digits = std::min(item.find_first_not_of("0123456789"), item.size());
  if (item[0] == '0' && item.size() > 1)
    Note(ReadEvent::NotDecimal, item);
  else if (digits < item.size())
    Note(ReadEvent::NumberPart, item);
}

[[noreturn]] void RefuseEqualNodes(const TextScan& text, int element)
{
  const std::string_view second = text.WordAround(text.Here());
  const std::string fault = FaultOfNumber(second, NumberKind::kWhole);
  Explain(LinePrefix({second, &text}),
          fault.empty() ? "a record is the number of the beam, two different nodes and a material"
                        : fault);
  Fatal("error: element: ", element, "  have both nodes equal\n");
}

}  // namespace

const char* ElemTypeName(ElemType type)
{
  static const char* const names[] = {"",           "Linear",   "Triangle", "Quadrilateral",
                                      "Tetrahedra", "Hexahedra"};
  return type >= Linear && type <= Hexahedra ? names[type] : names[0];
}

Elem::Elem(Mesh* ownMesh, Elem* boundElem) : Elem(ownMesh->GiveNnode(), ownMesh, boundElem) {}

Elem::Elem(int nnode, Mesh* ownMesh, Elem* boundElem) : mesh(ownMesh), nodes(MakePlaces(nnode))
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
  const int last = el->Nnode() - 1;
  if (last == 1 && face == 1) {
    nodes[0] = node;
    nodes[1] = el->nodes[1];
    return;
  }
  CopyNodesFrom(*el, last, face);
  nodes[last] = node;
}

Elem::Elem(Elem* el, int face) : Elem(std::max(el->Nnode() - 1, 0), nullptr, nullptr)
{
  if (el->ElemType() == Linear)
    Fatal("error in Elem::Elem(Elem* el,int face). Linear has no faces\n");
  if (el->ElemType() != Triangle && el->ElemType() != Tetrahedra)
    Fatal("error in Elem::Elem(Elem* el,int face). Only Triang. and Tetr. implemented\n");
  CopyNodesFrom(*el, Nnode(), face);
}

Elem::~Elem() = default;
Elem::Rare::~Rare() = default;

Elem::Rare& Elem::MakeRare()
{
  if (!rare)
    rare = std::make_unique<Rare>();
  return *rare;
}

// Null places of the mesh, else of the element; never fewer than Nnode().
Node** Elem::MakePlaces(int n)
{
  if (mesh)
    return mesh->AcquirePlaces(std::max(n, mesh->GiveNnode()));
  std::vector<Node*>& places = MakeRare().places;
  places.assign(static_cast<std::size_t>(n), nullptr);
  return places.data();
}

void Elem::MoveNodes(Mesh* newMesh, int n)
{
  const int kept = std::min(n, Nnode());
  Node** const old = nodes;
  std::vector<Node*> oldPlaces;  // keeps them until they are copied
  if (rare)
    oldPlaces.swap(rare->places);
  mesh = newMesh;
  nodes = MakePlaces(n);
  std::copy_n(old, kept, nodes);
}

void Elem::NewMesh(Mesh* m)
{
  if (m != mesh)
    MoveNodes(m, Nnode());
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
  return mesh ? mesh->GiveNnode() : static_cast<int>(rare->places.size());
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

void Elem::EnterMaterial(std::unique_ptr<Material> material)
{
  MakeRare().material = std::move(material);
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
  MoveNodes(mesh, n);
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
  Node** const last = nodes + Nnode();
  Node** const found = std::find(nodes, last, n);
  return found == last ? 0 : static_cast<int>(found - nodes) + 1;
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
  const int count = Nnode();
  Node** const places = nodes;
  for (int i = 0; i < count; ++i) {
    if (!text.ReadInt(last)) {
      NoteBrokenRecord(from, text, NumberKind::kWhole, count);
      return 0;
    }
    places[i] = Find<Node>(*nodePlex, last);
    if (i == 0)
      first = last;
  }
  NoteValues(from, text, NumberKind::kWhole);
  if (count == 2 && first == last)
    RefuseEqualNodes(text, number);
  if (!text.ReadLastNumber(materialNumber))
    ReadMaterial({UpToNull(text.ReadRestOfLine()), &text}, units);
  return 1;
}

void Elem::ReadMaterial(const RecordText& record, const Units* units)
{
  constexpr const char* kWhite = " \t\r\v\f";
  constexpr const char* kDelimiters = " \t\r\v\f:=";
  std::string_view text = record.text;
  text.remove_prefix(std::min(text.find_first_not_of(kDelimiters), text.size()));
  if (text.starts_with('#'))
    return;
  std::string_view item = text.substr(0, text.find_first_of(kDelimiters));
  text.remove_prefix(std::min(item.size() + 1, text.size()));  // with the delimiter
  NoteMaterialNumber(item);
  ScanInt(item, materialNumber, 0, 0);
  const std::size_t tail = text.find_first_not_of(kWhite);
  if (tail == std::string_view::npos || text[tail] == '#')
    return;
  std::unique_ptr<Material>& own = MakeRare().material;
  own = std::make_unique<Material>();
  own->SetToNegative();
  own->ReadFromAsciiNoNum(record.Part(text), units);
}

}  // namespace morlen
