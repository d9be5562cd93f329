#pragma once

#include <memory>
#include <ostream>
#include <string_view>
#include <vector>

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
struct RecordText;

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

/// An element: its number, its nodes, and its material, by number or owned by the element.
///
/// The type, the dimension and the number of nodes are those of the mesh, which also holds the
/// node places: the element must not outlive it. An element without a mesh owns its places. A
/// place is null where the file names a node that does not exist.
class Elem : public Pooled<Elem>
{
public:
  Elem(Mesh* mesh, Elem* bound);  ///< as many places as the mesh's elements have nodes
  /// At least nnode places, all null. The mesh may be null.
  Elem(int nnode, Mesh* mesh, Elem* bound);

  /// The nodes of el, then node. Not used by the analysis itself.
  Elem(Elem* el, Node* node, Mesh* mesh, Elem* bound);

  /// A piece of el in mesh (null: el's mesh): the nodes of el from `face` on, cyclically,
  /// with `node` in the last place; a line is cut into (first, node) and (node, second).
  /// Not used by the analysis itself.
  Elem(Elem* el, Node* node, int face, int, Mesh* mesh);

  /// Face number `face` (from 0) of a triangle (an edge) or of a tetrahedron (a triangle),
  /// without a mesh: the nodes of el from `face` on, cyclically, less one. Fatal for other
  /// types. Not used by the analysis itself.
  Elem(Elem* el, int face);

  Elem(const Elem&) = delete;
  Elem& operator=(const Elem&) = delete;
  virtual ~Elem();

  int Num() const { return number; }
  void NewNum(int n) { number = n; }  ///< not used by the analysis itself
  /// Moves the element to mesh m, or to none when m is null; its nodes are kept. Not used by the
  /// analysis itself.
  void NewMesh(Mesh* m);
  void NewMaterial(int n) { materialNumber = n; }  ///< not used by the analysis itself
  morlen::ElemType ElemType() const;
  int Ndime() const;  ///< not used by the analysis itself
  int Nnode() const;
  /// The element of which this one is a piece, or null. Not used by the analysis itself.
  Elem* IsInBound() const { return rare ? rare->bound : nullptr; }
  Node*& operator()(int i) { return nodes[i]; }  ///< from 0
  Node* operator()(int i) const { return nodes[i]; }

  bool HasOwnMaterial() const { return OwnMaterial() != nullptr; }
  /// The material's number; 0 for an element that owns its material.
  int GiveMaterialNum() const { return HasOwnMaterial() ? 0 : materialNumber; }
  /// The number in the file: of the element's material, or of the material that completes the
  /// one that the element owns; 0 when there is none. Not used by the analysis itself.
  int GiveNumberedMaterial() const { return materialNumber; }

  /// The material that the element owns, else the numbered one; null when there is none.
  Material* GiveMaterial(const VoidPlex* materials) const;

  /// Completes the material that the element owns, if any, from the numbered one.
  void ComposeYourMaterial(const VoidPlex* materials);

  /// Makes the element own a composed material. Not used by the analysis itself.
  void EnterMaterial(std::unique_ptr<Material> material);

  /// E·Iy, E·Iz and E·A of the element's material. Fatal without a material. Not used by the
  /// analysis itself.
  void GiveEI(const VoidPlex* materials, double& EIy, double& EIz, double& EA) const;

  /// Gives the element n places: the first keep the nodes that the element has by the count of
  /// its mesh, the others are null. The caller changes the count of the mesh afterwards.
  void IncreaseNnode(int n);

  /// Sets c to the mean of the nodes' coordinates and returns it. Not used by the analysis itself.
  ReaVec& MidNode(ReaVec& c) const;

  /// Position of n among the nodes, from 1; 0 when absent. Not used by the analysis itself.
  int IsInto(const Node* n) const;

  /// One line of the mesh listing; the flags are those of Mesh::PrintTo. Not used by the
  /// analysis itself.
  void PrintTo(std::ostream& out, int useOld, int bare) const;
  /// One record of the Femview neutral file. Not used by the analysis itself.
  void PrintToFemview(std::ostream& out) const;

  /// Reads "number nodes [material number] [material items]" to the end of the line; items make
  /// a material that the element owns. Returns 1, or 0 when no such line follows. Fatal for a
  /// beam whose nodes are equal.
  int ReadFromAscii(TextScan& text, const VoidPlex* nodes, const Units* units);

  /// Frame of a beam: 3×3 in plane problems; in space 6×6 with the same 3×3 twice on its
  /// diagonal. Its columns are the local axes in global coordinates; the first is the direction
  /// of the beam. The Euler angles of m, if any, turn the others about it; m may be null. Fatal
  /// for angles that do not fit.
  void CalcTransfMatrixBeam(Matriu& T, const Material* m, PROBLEMTYPE type) const;
  /// Frame of a flat triangle, 3×3, and the same twice on the diagonal of Tbig, 6×6. The Euler
  /// angles of m, if any, give the direction of local x. Fatal when x is normal to the triangle.
  void CalcTransfMatrixTriangle(Matriu& T, Matriu& Tbig, const Material* m) const;
  /// Euler angles of those frames, in radians.
  void GiveEulerAnglesBeam(double a[3], const Material* m, PROBLEMTYPE type) const;
  void GiveEulerAnglesTriangle(double a[3], const Material* m) const;

  /// Horizontal projection of a beam over its length. Not used by the analysis itself.
  double Lean() const;
  /// Beams are vertical up to this lean. It is far above the rounding of coordinates and far below
  /// a lean that somebody builds.
  static constexpr double kVerticalLean = 1e-6;

  double alpha = 0.0;  ///< angle from global X to local y of a vertical beam, radians

private:
  Node** MakePlaces(int n);
  void MoveNodes(Mesh* newMesh, int n);
  void CopyNodesFrom(const Elem& el, int count, int first);
  void ReadMaterial(const RecordText& record, const Units* units);

  /// Members that few elements need.
  struct Rare
  {
    ~Rare();
    std::unique_ptr<Material> material;
    Elem* bound = nullptr;
    std::vector<Node*> places;  ///< of an element without a mesh
  };
  Rare& MakeRare();
  Material* OwnMaterial() const { return rare ? rare->material.get() : nullptr; }

  int number = 0;
  int materialNumber = 0;
  std::unique_ptr<Rare> rare;  ///< null in most elements
  Mesh* mesh;
  Node** nodes;  ///< places of the mesh, else of `rare`
};

/// The line of the mesh listing with system numbers. Not used by the analysis itself.
inline std::ostream& operator<<(std::ostream& out, const Elem& el)
{
  el.PrintTo(out, 0, 0);
  return out;
}

}  // namespace morlen
