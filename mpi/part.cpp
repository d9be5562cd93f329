// Parts of a problem: how elements are chosen for them, and their way through a buffer of bytes.

#include "mpi/part.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <utility>

#include "model/constraint.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"

namespace morlen::mpi {

namespace {

constexpr double Material::*kMaterialValues[] = {
    &Material::E1, &Material::E2,     &Material::nuXY, &Material::nuYX, &Material::Iy,
    &Material::Iz, &Material::Gxy,    &Material::Gxz,  &Material::Gyz,  &Material::J,
    &Material::A,  &Material::Weight, &Material::t};

/// The settings and sizes of a part.
struct Head
{
  PROBLEMTYPE type;
  NodeComponents components;
  StressOutput stressOutput;
  ShellFormulation shellFormulation;
  bool hasMarks;   ///< coplanarity
  bool hasShares;  ///< of shells
};

struct NodeRecord
{
  double x[3];
  int dimension;
  bool hasHinge;
  bool hasSupport;
  int mark;
  double share;
};

struct SupportRecord
{
  std::array<int, kMaxComponents> flags;
  std::array<double, kMaxComponents> values;
  bool localAxes;
  std::array<double, 3> euler;
};

struct ElementRecord
{
  int number;
  int material;  ///< its place in the list of materials, from 1; 0 for none
  double alpha;
  int hingeCode;  ///< -1 for an element without an entry
};

/// The system numbers of all nodes, with the nodes.
std::vector<const Node*> NodesByNumber(const Problem& problem)
{
  std::vector<const Node*> nodes(static_cast<std::size_t>(problem.numNodes));
  for (const Node& node : Each<Node>(problem.GiveNodes()))
    nodes[node.number - 1] = &node;
  return nodes;
}

/// The materials of a part, each once.
class MaterialTable
{
public:
  /// The place of an element's material, from 1; 0 for none.
  int Place(const Elem& elem, const VoidPlex& all)
  {
    const Material* material = elem.GiveMaterial(&all);
    if (!material)
      return 0;
    const auto [found, isNew] = places.try_emplace(material, static_cast<int>(list.size()) + 1);
    if (isNew)
      list.push_back(material);
    return found->second;
  }

  void Write(ByteWriter& out) const
  {
    out.Put(static_cast<int>(list.size()));
    for (const Material* material : list) {
      for (double Material::*field : kMaterialValues)
        out.Put(material->*field);
      out.Put(material->eulerGiven);
      for (const double angle : material->Euler)
        out.Put(angle);
    }
  }

private:
  std::unordered_map<const Material*, int> places;
  std::vector<const Material*> list;
};

void ReadMaterials(ByteReader& in, VoidPlex& materials)
{
  const int count = in.Get<int>();
  for (int number = 1; number <= count; ++number) {
    auto material = std::make_unique<Material>();
    material->number = number;
    for (double Material::*field : kMaterialValues)
      (*material).*field = in.Get<double>();
    material->eulerGiven = in.Get<int>();
    for (double& angle : material->Euler)
      angle = in.Get<double>();
    Store(materials, number, std::move(material));
  }
}

void WriteNode(const Problem& whole, const Node& node, ByteWriter& out)
{
  NodeRecord record = {.x = {},
                       .dimension = node.Size(),
                       .hasHinge = node.hasRotule,
                       .hasSupport = node.constraint != nullptr,
                       .mark = 0,
                       .share = 0.0};
  std::copy(node.begin(), node.end(), record.x);
  if (!whole.coplanarity.empty())
    record.mark = whole.coplanarity[node.number - 1];
  if (!whole.shellShares.empty())
    record.share = whole.shellShares[node.number - 1];
  out.Put(record);
  if (const Constraint* support = node.constraint.get())
    out.Put(SupportRecord{support->flags, support->values, support->localAxes, support->euler});
}

std::unique_ptr<Constraint> ReadSupport(ByteReader& in, const NodeComponents& components)
{
  const auto record = in.Get<SupportRecord>();
  auto support = std::make_unique<Constraint>(components);
  support->flags = record.flags;
  support->values = record.values;
  support->localAxes = record.localAxes;
  support->euler = record.euler;
  return support;
}

// Reads the node with the next number.
void ReadNode(ByteReader& in, const Head& head, int number, Problem& problem)
{
  const auto record = in.Get<NodeRecord>();
  auto node = std::make_unique<Node>(record.dimension);
  std::copy_n(record.x, record.dimension, node->begin());
  node->number = number;
  node->hasRotule = record.hasHinge;
  if (record.hasSupport)
    node->constraint = ReadSupport(in, head.components);
  if (head.hasMarks)
    problem.coplanarity.push_back(record.mark);
  if (head.hasShares)
    problem.shellShares.push_back(record.share);
  Store(problem.GiveNodes(), number, std::move(node));
}

// nodes: those of the part, ascending.
void WriteElements(const Problem& whole, const Mesh& mesh, const std::vector<PlacedElem>& elements,
                   const std::vector<int>& nodes, MaterialTable& materials, ByteWriter& out)
{
  out.Put(mesh.GiveElemType());
  out.Put(mesh.GiveNnode());
  out.Put(mesh.GiveNdime());
  out.Put(static_cast<int>(elements.size()));
  for (const PlacedElem& placed : elements) {
    const Elem& elem = *placed.elem;
    const auto code = whole.hingeCodes.find(elem.Num());
    out.Put(ElementRecord{.number = elem.Num(),
                          .material = materials.Place(elem, whole.materials),
                          .alpha = elem.alpha,
                          .hingeCode = code == whole.hingeCodes.end() ? -1 : code->second.Value()});
    for (int i = 0; i < elem.Nnode(); ++i)
      out.Put(static_cast<int>(std::lower_bound(nodes.begin(), nodes.end(), elem(i)->number) -
                               nodes.begin()) +
              1);
  }
}

/// The type and the sizes of a mesh of a part.
struct MeshHead
{
  explicit MeshHead(ByteReader& in)
      : type(in.Get<ElemType>()), nnode(in.Get<int>()), ndime(in.Get<int>()), count(in.Get<int>())
  {
  }

  ElemType type;
  int nnode;
  int ndime;
  int count;
};

constexpr int kElementsOfChunk = 1000;

// Adds a mesh; the first has the nodes of all.
Mesh& AddMesh(const MeshHead& head, Problem& problem)
{
  if (problem.meshes.empty())
    problem.meshes.push_back(std::make_unique<Mesh>(kElementsOfChunk, kElementsOfChunk, head.ndime,
                                                    head.type, head.nnode));
  else
    problem.meshes.push_back(std::make_unique<Mesh>(&problem.GiveNodes(), kElementsOfChunk,
                                                    head.ndime, head.type, head.nnode));
  return *problem.meshes.back();
}

void ReadElements(ByteReader& in, Problem& problem, const MeshHead& head, Mesh& mesh)
{
  for (int k = 0; k < head.count; ++k) {
    const auto record = in.Get<ElementRecord>();
    auto elem = std::make_unique<Elem>(&mesh, nullptr);
    elem->NewNum(record.number);
    elem->NewMaterial(record.material);
    elem->alpha = record.alpha;
    if (record.hingeCode >= 0)
      problem.hingeCodes[record.number] = HingeCode(record.hingeCode);
    for (int i = 0; i < head.nnode; ++i)
      (*elem)(i) = Find<Node>(problem.GiveNodes(), in.Get<int>());
    Store(*mesh.GiveElemPlex(), record.number, std::move(elem));
  }
}

// Sorts the nodes of a part, and marks those that it owns.
void Sort(NodesOfPart& nodes, std::vector<int> owned)
{
  std::sort(nodes.numbers.begin(), nodes.numbers.end());
  std::sort(owned.begin(), owned.end());
  auto next = owned.begin();
  for (const int node : nodes.numbers) {
    const bool isOwned = next != owned.end() && *next == node;
    nodes.owned.push_back(isOwned ? 1 : 0);
    next += isOwned;
  }
}

// The part of an element: the one of its nodes' parts with the fewest elements so far.
int PartOf(const Elem& elem, const std::vector<int>& partOfNode,
           const std::vector<std::int64_t>& sizes)
{
  int chosen = partOfNode[elem(0)->number - 1];
  for (int i = 1; i < elem.Nnode(); ++i) {
    const int other = partOfNode[elem(i)->number - 1];
    if (sizes[other] < sizes[chosen])
      chosen = other;
  }
  return chosen;
}

}  // namespace

std::vector<ElementsOfPart> ElementsOfParts(const Problem& whole,
                                            const std::vector<int>& partOfNode, int parts)
{
  std::vector<ElementsOfPart> elements(static_cast<std::size_t>(parts),
                                       ElementsOfPart(whole.meshes.size()));
  std::vector<std::int64_t> sizes(static_cast<std::size_t>(parts), 0);
  for (std::size_t k = 0; k < whole.meshes.size(); ++k) {
    int place = 0;
    for (const Elem& elem : Each<Elem>(*whole.meshes[k]->GiveElemPlex())) {
      const int part = PartOf(elem, partOfNode, sizes);
      sizes[part] += elem.Nnode() * elem.Nnode();
      elements[part][k].push_back({place++, &elem});
    }
  }
  return elements;
}

std::vector<NodesOfPart> NodesOfParts(const Problem& whole,
                                      const std::vector<ElementsOfPart>& elements)
{
  constexpr int kNone = -1;
  const auto count = static_cast<std::size_t>(whole.numNodes);
  std::vector<NodesOfPart> nodes(elements.size());
  std::vector<int> lastPart(count, kNone);  // that has taken the node
  for (int part = static_cast<int>(elements.size()) - 1; part >= 0; --part) {
    NodesOfPart& own = nodes[part];
    std::vector<int> isNew;
    const auto take = [&](int node) {
      if (lastPart[node - 1] == part)
        return;
      own.numbers.push_back(node);
      if (std::exchange(lastPart[node - 1], part) == kNone)
        isNew.push_back(node);
    };
    for (const std::vector<PlacedElem>& ofMesh : elements[part]) {
      for (const PlacedElem& placed : ofMesh) {
        for (int i = 0; i < placed.elem->Nnode(); ++i)
          take((*placed.elem)(i)->number);
      }
    }
    for (int node = 1; part == 0 && node <= whole.numNodes; ++node) {
      if (lastPart[node - 1] == kNone)
        take(node);
    }
    Sort(own, std::move(isNew));
  }
  return nodes;
}

PartWriter::PartWriter(const Problem& whole_) : whole(whole_), byNumber(NodesByNumber(whole)) {}

void PartWriter::Write(const ElementsOfPart& elements, const NodesOfPart& nodes,
                       ByteWriter& out) const
{
  MaterialTable materials;
  ByteWriter meshes;
  for (std::size_t k = 0; k < whole.meshes.size(); ++k)
    WriteElements(whole, *whole.meshes[k], elements[k], nodes.numbers, materials, meshes);
  out.Put(Head{.type = whole.problemType,
               .components = whole.components,
               .stressOutput = whole.stressOutput,
               .shellFormulation = whole.shellFormulation,
               .hasMarks = !whole.coplanarity.empty(),
               .hasShares = !whole.shellShares.empty()});
  materials.Write(out);
  out.PutAll(nodes.numbers);
  out.PutAll(nodes.owned);
  ByteWriter points;
  for (const int node : nodes.numbers)
    WriteNode(whole, *byNumber[node - 1], points);
  out.PutAll(points.Take());
  out.Put(static_cast<int>(whole.meshes.size()));
  out.PutAll(meshes.Take());
}

std::unique_ptr<Part> UnpackPart(ByteReader& in)
{
  auto part = std::make_unique<Part>();
  Problem& problem = part->problem;
  const auto head = in.Get<Head>();
  problem.problemType = head.type;
  problem.components = head.components;
  problem.stressOutput = head.stressOutput;
  problem.shellFormulation = head.shellFormulation;
  ReadMaterials(in, problem.materials);
  part->nodes = in.GetAll<int>();
  part->owned = in.GetAll<char>();
  problem.numNodes = problem.initialNumNodes = static_cast<int>(part->nodes.size());
  const Bytes points = in.GetAll<std::byte>();
  const int count = in.Get<int>();
  const Bytes meshes = in.GetAll<std::byte>();
  ByteReader fromPoints(points);
  ByteReader fromMeshes(meshes);
  for (int k = 0; k < count; ++k) {
    const MeshHead meshHead(fromMeshes);
    Mesh& mesh = AddMesh(meshHead, problem);
    for (int node = 1; k == 0 && node <= problem.numNodes; ++node)
      ReadNode(fromPoints, head, node, problem);
    ReadElements(fromMeshes, problem, meshHead, mesh);
  }
  return part;
}

}  // namespace morlen::mpi
