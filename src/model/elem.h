#pragma once

#include <memory>
#include <ostream>
#include <string_view>

#include "base/constants.h"
#include "base/object_pool.h"
#include "numeric/reavec.h"

namespace morlen {

class Material;
class Matriu;
class Mesh;
class Node;
class TextScan;
class Units;
class VoidPlex;

enum ElemType : int
{
  Linear = 1,
  Triangle,
  Quadrilateral,
  Tetrahedra,
  Hexahedra
};

/// The word printed for a type; empty for a value outside the list.
const char* ElemTypeName(ElemType type);

/// The node places of an element, within the object as long as they are few.
class NodePlaces
{
public:
  explicit NodePlaces(int n) : few{}, size(n)
  {
    if (!AreFew())
      many = MakeMany(n);
  }
  NodePlaces(const NodePlaces&) = delete;
  NodePlaces& operator=(const NodePlaces&) = delete;
  ~NodePlaces() { Release(); }

  int Size() const { return size; }
  /// Makes it n places, the new ones null.
  void Resize(int n);

  Node*& operator[](int i) { return begin()[i]; }
  Node* operator[](int i) const { return begin()[i]; }
  Node** begin() { return AreFew() ? few : many; }
  Node* const* begin() const { return AreFew() ? few : many; }

private:
  static constexpr int kFew = 4;

  bool AreFew() const { return size <= kFew; }
  /// Null places, owned by the caller.
  static Node** MakeMany(int n);
  void ReleaseMany();
  void Release()
  {
    if (!AreFew())
      ReleaseMany();
  }

  union {
    Node* few[kFew];
    Node** many;  ///< owned
  };
  int size;
};

/// An element: its number, its nodes, and its material by number or of its own.
///
/// The type, the dimension and the number of nodes are those of its mesh, to which the
/// nodes belong; an entry is null where the file names a node that does not exist.
class Elem : public Pooled<Elem>
{
public:
  Elem(Mesh* mesh, Elem* bound);  ///< node array of the mesh's nnode entries
  Elem(int nnode, Mesh* mesh, Elem* bound);

  /// The nodes of el, then node.
  Elem(Elem* el, Node* node, Mesh* mesh, Elem* bound);

  /// A piece of el in mesh (null: el's mesh): the nodes of el from `face` on, cyclically,
  /// with `node` in the last place; a line is cut into (first, node) and (node, second).
  Elem(Elem* el, Node* node, int face, int, Mesh* mesh);

  /// The face of a triangle (an edge) or of a tetrahedron (a triangle), from 0: the
  /// nodes of el from `face` on, cyclically, less one. Fatal for other types.
  Elem(Elem* el, int face);

  Elem(const Elem&) = delete;
  Elem& operator=(const Elem&) = delete;
  virtual ~Elem();

  int Num() const { return number; }
  void NewNum(int n) { number = n; }
  void NewMesh(Mesh* m) { mesh = m; }
  void NewMaterial(int n) { materialNumber = n; }
  morlen::ElemType ElemType() const;
  int Ndime() const;
  int Nnode() const;
  Elem* IsInBound() const { return rare ? rare->bound : nullptr; }
  Node*& operator()(int i) { return nodes[i]; }  ///< from 0
  Node* operator()(int i) const { return nodes[i]; }

  bool HasOwnMaterial() const { return OwnMaterial() != nullptr; }
  /// The material's number; 0 when the element has a material of its own.
  int GiveMaterialNum() const { return HasOwnMaterial() ? 0 : materialNumber; }

  /// The element's own material, else the numbered one; null when there is none.
  Material* GiveMaterial(const VoidPlex* materials) const;

  /// Completes the element's own material from the numbered one.
  void ComposeYourMaterial(const VoidPlex* materials);

  /// E·Iy, E·Iz and E·A of the element's material. Fatal without a material.
  void GiveEI(const VoidPlex* materials, double& EIy, double& EIz, double& EA) const;

  /// Replaces the node array by one of n entries, the new ones null. The mesh's
  /// count is changed by the caller.
  void IncreaseNnode(int n);

  /// Mean of the nodes' coordinates.
  ReaVec& MidNode(ReaVec& c) const;

  /// Position of n among the nodes, from 1; 0 when absent.
  int IsInto(const Node* n) const;

  /// One line of the mesh listing.
  void PrintTo(std::ostream& out, int useOld, int bare) const;
  /// One record of the Femview neutral file.
  void PrintToFemview(std::ostream& out) const;

  /// Reads "number, nodes, [material number] [own material]" to the end of the line.
  /// Returns 1, or 0 when there is no such line here. Fatal: a beam with equal nodes.
  int ReadFromAscii(TextScan& text, const VoidPlex* nodes, const Units* units);

  /// Frame of a beam: 3×3, or 6×6 (twice the 3×3) in space problems; its columns are
  /// the local axes in global coordinates. m gives Euler angles, if any.
  void CalcTransfMatrixBeam(Matriu& T, const Material* m, PROBLEMTYPE type) const;
  /// Frame of a flat triangle, 3×3, and the same twice on the diagonal of Tbig, 6×6.
  void CalcTransfMatrixTriangle(Matriu& T, Matriu& Tbig, const Material* m) const;
  /// Euler angles of those frames, in radians.
  void GiveEulerAnglesBeam(double a[3], const Material* m, PROBLEMTYPE type) const;
  void GiveEulerAnglesTriangle(double a[3], const Material* m) const;

  double alpha = 0.0;  ///< turn of a vertical beam's axes about the beam, radians

private:
  void CopyNodesFrom(const Elem& el, int count, int first);
  void ReadMaterial(std::string_view text, const Units* units);

  /// What few elements have.
  struct Rare
  {
    ~Rare();
    std::unique_ptr<Material> material;
    Elem* bound = nullptr;
  };
  Rare& MakeRare();
  Material* OwnMaterial() const { return rare ? rare->material.get() : nullptr; }

  int number = 0;
  int materialNumber = 0;
  std::unique_ptr<Rare> rare;  ///< null in most elements
  Mesh* mesh;
  NodePlaces nodes;
};

inline std::ostream& operator<<(std::ostream& out, const Elem& el)
{
  el.PrintTo(out, 0, 0);
  return out;
}

}  // namespace morlen
