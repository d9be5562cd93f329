// The bytes of a problem, in a fixed order. One function for each class lists its members; it
// serves both directions, for an archive that puts them or gets them.

#include "problem/problem_image.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "base/byte_archive.h"
#include "model/constraint.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/nodal_load.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/elem_loads.h"
#include "problem/pressure_load.h"
#include "problem/problem.h"

namespace morlen {

namespace {

/// Changes with every change of the image.
constexpr std::uint64_t kMark = 0x4d6f726c656e0001;
constexpr int kChunk = 100;

/// Calls visit for the members of a problem that are plain values or lists of them.
template <class AnyProblem, class Visit>
void VisitPlain(AnyProblem& p, Visit& visit)
{
  auto& u = p.units;
  for (auto* factor : {&u.meshLength, &u.matLoadForce, &u.matLoadLength, &u.resForce, &u.resLength})
    visit(*factor);
  for (auto* name : {&u.resForceName, &u.resLengthName, &u.resPressureName})
    visit(*name);
  visit(p.problemType);
  visit(p.components);
  visit(p.initialNumNodes);
  visit(p.numNodes);
  visit(p.selfWeight);
  visit(p.hasHinges);
  visit(p.coplanarity);
  visit(p.shellShares);
  visit(p.solverSettings.type);
  visit(p.solverSettings.tolerance1);
  visit(p.solverSettings.tolerance2);
  visit(p.solverSettings.maxIterations);
  visit(p.solverSettings.processor);
  visit(p.smoothing.on);
  visit(p.smoothing.angle);
  visit(p.stressOutput);
  visit(p.convertTo6Nodes);
  visit(p.shellFormulation);
  visit(p.coplanarityAngle);
  for (auto& component : p.gravityDirection)
    visit(component);
  visit(p.numOfDivisions);
}

template <class Visit>
void VisitBase(UnitsBase& base, Visit& visit)
{
  for (std::string* name : {&base.name, &base.nameN, &base.nameM, &base.namePa})
    visit(*name);
  visit(base.facN);
  visit(base.facM);
}

template <class AnyConstraint, class Visit>
void VisitConstraint(AnyConstraint& constraint, Visit& visit)
{
  visit(constraint.flags);
  visit(constraint.values);
  visit(constraint.reactions);
  visit(constraint.localAxes);
  visit(constraint.euler);
}

// The records have no bytes between their members: equal problems have equal images.

/// A node; its hinge, support and load follow in records, where `marks` says so.
struct NodeRecord
{
  int number;
  int systemNumber;
  int size;
  int marks;  ///< kHinged, kSupported, kLoaded
  double x[3];
};

constexpr int kHinged = 1;
constexpr int kSupported = 2;
constexpr int kLoaded = 4;

struct ElemRecord
{
  int number;
  int material;
  std::int64_t ownMaterial;  ///< 0 or 1
  double alpha;
};

struct LoadRecord
{
  int element;
  int type;  ///< of a pressure load; kTemperature
  std::int64_t face;
  double values[6];
};
constexpr int kTemperature = -1;

struct MeshRecord
{
  int dimension;
  ElemType type;
  int nnode;
  int ownMaterials;  ///< 0 or 1
  int elements;
};

// --- Writing ---

void PutNodes(const VoidPlex& nodes, BytePutter& put)
{
  put(nodes.Count());
  for (const auto [number, node] : EachNumbered<const Node>(nodes)) {
    NodeRecord record = {.number = number,
                         .systemNumber = node.number,
                         .size = node.Size(),
                         .marks = (node.hasRotule ? kHinged : 0) |
                                  (node.constraint ? kSupported : 0) | (node.load ? kLoaded : 0),
                         .x = {}};
    std::copy_n(node.Data(), node.Size(), record.x);
    put(record);
    if (node.constraint)
      VisitConstraint(*node.constraint, put);
    if (node.load)
      put(node.load->values);
  }
}

// The nodes, which all meshes share, come with the first one.
void PutMesh(const Mesh& mesh, const VoidPlex& materials, bool isFirst, BytePutter& put)
{
  const VoidPlex& elems = *mesh.GiveElemPlex();
  put(MeshRecord{mesh.GiveNdime(), mesh.GiveElemType(), mesh.GiveNnode(), mesh.HasOwnMaterials(),
                 elems.Count()});
  put(mesh.OldNumbers());
  if (isFirst)
    PutNodes(*mesh.GiveNodePlex(), put);
  for (const Elem& elem : Each<Elem>(elems)) {
    put(ElemRecord{elem.Num(), elem.GiveNumberedMaterial(), elem.HasOwnMaterial(), elem.alpha});
    for (int i = 0; i < mesh.GiveNnode(); ++i)
      put(elem(i) ? mesh.GiveOldNumber(elem(i)) : 0);
    if (elem.HasOwnMaterial())
      elem.GiveMaterial(&materials)->VisitMembers(put);
  }
}

void PutElemLoads(const VoidPlex& chains, BytePutter& put)
{
  std::vector<LoadRecord> records;
  for (const auto [number, chain] : EachNumbered<const BaseElemLoads>(chains)) {
    for (const BaseElemLoads* load = &chain; load; load = load->Next()) {
      const ElemLoadRecord description = load->Describe();
      LoadRecord& record = records.emplace_back();
      record.element = number;
      record.type = description.pressure ? static_cast<int>(*description.pressure) : kTemperature;
      record.face = description.face;
      std::copy_n(description.values.begin(), 6, record.values);
    }
  }
  put(records);
}

// --- Reading ---

void GetNodes(ByteGetter& get, const NodeComponents& components, VoidPlex& nodes)
{
  const int count = get.Get<int>();
  for (int i = 0; i < count; ++i) {
    const auto record = get.Get<NodeRecord>();
    auto node = std::make_unique<Node>(record.size);
    std::copy_n(record.x, node->Size(), node->Data());
    node->number = record.systemNumber;
    node->hasRotule = (record.marks & kHinged) != 0;
    if (record.marks & kSupported) {
      node->constraint = std::make_unique<Constraint>(components);
      VisitConstraint(*node->constraint, get);
    }
    if (record.marks & kLoaded) {
      node->load = std::make_unique<Load>(components);
      get(node->load->values);
    }
    Store(nodes, record.number, std::move(node));
  }
}

void GetElems(ByteGetter& get, int count, Mesh& mesh)
{
  const VoidPlex& nodes = *mesh.GiveNodePlex();
  for (int i = 0; i < count; ++i) {
    const auto record = get.Get<ElemRecord>();
    auto elem = std::make_unique<Elem>(&mesh, nullptr);
    elem->NewNum(record.number);
    elem->NewMaterial(record.material);
    elem->alpha = record.alpha;
    for (int k = 0; k < mesh.GiveNnode(); ++k)
      (*elem)(k) = Find<Node>(nodes, get.Get<int>());
    if (record.ownMaterial) {
      auto material = std::make_unique<Material>();
      material->VisitMembers(get);
      elem->EnterMaterial(std::move(material));
    }
    Store(*mesh.GiveElemPlex(), record.number, std::move(elem));
  }
}

void GetMeshes(ByteGetter& get, Problem& problem)
{
  const int count = get.Get<int>();
  if (count < 1 || count > Problem::kMaxMeshes)
    RefuseBytes();
  for (int k = 0; k < count; ++k) {
    const auto record = get.Get<MeshRecord>();
    if (k == 0)
      problem.meshes.push_back(
          std::make_unique<Mesh>(kChunk, kChunk, record.dimension, record.type, record.nnode));
    else
      problem.meshes.push_back(std::make_unique<Mesh>(&problem.GiveNodes(), kChunk,
                                                      record.dimension, record.type, record.nnode));
    Mesh& mesh = *problem.meshes.back();
    mesh.ShareNumbering(*problem.meshes.front());
    mesh.SetOwnMaterials(record.ownMaterials != 0);
    std::vector<int> oldNumbers;
    get(oldNumbers);
    mesh.EnterOldNumbers(std::move(oldNumbers));
    if (k == 0)
      GetNodes(get, problem.components, problem.GiveNodes());
    GetElems(get, record.elements, mesh);
  }
}

std::unique_ptr<BaseElemLoads> MakeLoad(const LoadRecord& record)
{
  if (record.type == kTemperature) {
    auto load = std::make_unique<TemperatureLT>();
    std::copy_n(record.values, 2, load->values);
    return load;
  }
  auto load = std::make_unique<PreassureLT>(PreassureLT_type(record.type));
  load->face = static_cast<int>(record.face);
  std::copy_n(record.values, 6, load->values);
  return load;
}

void GetElemLoads(ByteGetter& get, VoidPlex& chains)
{
  std::vector<LoadRecord> records;
  get(records);
  for (const LoadRecord& record : records) {
    if (BaseElemLoads* const first = Find<BaseElemLoads>(chains, record.element))
      first->Append(MakeLoad(record));
    else
      Store(chains, record.element, MakeLoad(record));
  }
}

}  // namespace

std::vector<char> ImageOf(const Problem& problem)
{
  std::vector<char> bytes;
  BytePutter put(bytes);
  put(kMark);
  VisitPlain(problem, put);
  put(problem.units.bases.size());
  for (UnitsBase base : problem.units.bases)
    VisitBase(base, put);
  std::vector<std::array<int, 2>> hinges;
  for (const auto& [element, code] : problem.hingeCodes)
    hinges.push_back({element, code.Value()});
  std::sort(hinges.begin(), hinges.end());
  put(hinges);
  put(problem.materials.Count());
  for (auto [number, material] : EachNumbered<Material>(problem.materials)) {
    put(number);
    material.VisitMembers(put);
  }
  put(static_cast<int>(problem.meshes.size()));
  for (const auto& mesh : problem.meshes)
    PutMesh(*mesh, problem.materials, mesh == problem.meshes.front(), put);
  PutElemLoads(problem.elemLoads, put);
  return bytes;
}

void ReadImage(std::span<const char> image, Problem& problem)
{
  ByteGetter get(image);
  if (get.Get<std::uint64_t>() != kMark)
    RefuseBytes();
  VisitPlain(problem, get);
  for (auto count = get.Get<std::size_t>(); count > 0; --count)
    VisitBase(problem.units.bases.emplace_back(), get);
  std::vector<std::array<int, 2>> hinges;
  get(hinges);
  for (const auto& [element, code] : hinges)
    problem.hingeCodes.emplace(element, HingeCode(code));
  for (int count = get.Get<int>(); count > 0; --count) {
    const int number = get.Get<int>();
    auto material = std::make_unique<Material>();
    material->VisitMembers(get);
    Store(problem.materials, number, std::move(material));
  }
  GetMeshes(get, problem);
  GetElemLoads(get, problem.elemLoads);
  if (!get.AtEnd())
    RefuseBytes();
}

void RecomposeMaterials(const Problem& problem)
{
  for (const auto& mesh : problem.meshes) {
    if (!mesh->HasOwnMaterials())
      continue;
    for (Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      const Material* const base = Find<Material>(problem.materials, elem.GiveNumberedMaterial());
      if (base && elem.HasOwnMaterial())
        elem.GiveMaterial(&problem.materials)->RecomposeMaterial(*base);
    }
  }
}

}  // namespace morlen
