#pragma once

#include <array>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "model/elem.h"
#include "model/node_places.h"
#include "numeric/voidplex.h"

namespace morlen {

/// The nodes and the elements of one mesh block; all elements have one type and node count.
///
/// Several meshes of a problem share the node container of the first. The containers
/// hold the objects under their numbers in the file; the objects are deleted by
/// ClearAllNodes and ClearAllElems, not by the destructor.
class Mesh
{
public:
  /// New containers of the given chunk sizes. nnode is 0 while it is not known.
  Mesh(int nodeCapacity, int elemCapacity, int ndime, ElemType type, int nnode);
  /// On the node container of another mesh.
  Mesh(VoidPlex* nodes, int elemCapacity, int ndime, ElemType type, int nnode);
  Mesh(const Mesh&) = delete;
  Mesh& operator=(const Mesh&) = delete;

  /// Reads one mesh block, from its "dimension" to the end of its elements. The coordinates
  /// are converted by `units`; null keeps them as they are.
  virtual void ReadFromAscii(TextScan& text, const Units* units);
  virtual ~Mesh();

  VoidPlex* GiveNodePlex() const { return nodes; }
  VoidPlex* GiveElemPlex() const { return elems.get(); }
  int GiveFvType() const { return fvType; }
  ElemType GiveElemType() const { return elemType; }
  int GiveNnode() const { return nnode; }
  int GiveNdime() const { return ndime; }
  /// True when an element was read that owns its material.
  bool HasOwnMaterials() const { return ownMaterials; }
  void SetOwnMaterials(bool present) { ownMaterials = present; }
  /// Entry k - 1 is the number in the file of the node with the system number k; empty while the
  /// two are the same. Not used by the analysis itself, as EnterOldNumbers and SetOwnMaterials.
  const std::vector<int>& OldNumbers() const { return oldNumbers; }
  void EnterOldNumbers(std::vector<int> numbers) { oldNumbers = std::move(numbers); }

  /// The mesh listing, with the numbers of the file (useOld 1) or of the system. `bare` 1, only
  /// together with useOld, leaves out the word "Mat:". Not used by the analysis itself.
  void PrintTo(std::ostream& out, int useOld, int bare) const;
  /// The Femview neutral file; its title is the end of fileName. Not used by the analysis
  /// itself.
  void PrintToFemview(std::ostream& out, const char* fileName) const;

  /// Sets the Femview code of the type and the node count. Fatal for a count that the
  /// type does not have.
  void CalcShapeGaussFemv(const std::string& origin = {});

  /// The number in the file of the node whose system number is n.
  int GiveOldNumber(int n) const;
  int GiveOldNumber(const Node* node) const;

  /// Makes GiveOldNumber use the numbers of `owner`, whose nodes this mesh shares. Borrows
  /// `owner`.
  void ShareNumbering(const Mesh& owner) { numbering = &owner; }

  /// Changes the number of nodes per element to n. Each element keeps its first nodes; places
  /// that it gains are null, also where it had nodes before a change to fewer.
  void ConvertToNewNnode(int n);

  /// The first of n null node places for an element of this mesh, valid until ClearAllElems.
  Node** AcquirePlaces(int n) { return places.Acquire(n); }

  /// Stores a node at its number, or at the next free one when its number is 0; a node whose
  /// number is taken is not stored. Returns the number used and does not change node->number.
  /// Not used by the analysis itself.
  int AddPtstoPlex(Node* node);
  /// Stores an element at its number. When that is 0 or taken, moves the element to this mesh
  /// and stores it at the next free number. Returns the number used and does not change
  /// elem->Num(). Not used by the analysis itself.
  int AddElemtoPlex(Elem* elem);

  /// Deletes the nodes, with their supports and loads.
  void ClearAllNodes();
  /// Deletes the elements and frees the places of all elements made for this mesh.
  void ClearAllElems();

  /// Numbers the nodes 1, 2, ... by their distance from the node farthest from the centroid,
  /// for a narrow profile. GiveOldNumber still knows the numbers of the file.
  void RenumberNodes();
  /// Undoes RenumberNodes.
  void RestoreNumbers();

private:
  void ReadHead(TextScan& text);
  void ReadNodes(TextScan& text, double lengthFactor);
  void RequireAllNumbers(int count, const TextScan& text, const char* first) const;
  bool ReadNode(TextScan& text, double lengthFactor);
  void StoreNode(std::unique_ptr<Node> node);
  void ReadElems(TextScan& text, const Units* units);
  bool ReadElem(TextScan& text, const Units* units);

  int word = 0;  ///< kept 0
  int ndime;
  int nnode;
  ElemType elemType;
  int fvType = 0;
  bool ownMaterials = false;
  std::unique_ptr<VoidPlex> ownNodes;  ///< null when another mesh owns the nodes
  VoidPlex* nodes;
  std::unique_ptr<VoidPlex> elems;
  NodePlaces places;                      ///< of the elements
  std::vector<std::array<int, 2>> edges;  ///< empty: the analysis computes no edges
  std::vector<int> oldNumbers;            ///< entry k - 1 is the number in the file of node k
  const Mesh* numbering = this;           ///< the mesh whose oldNumbers GiveOldNumber uses
};

/// Reads the word that names an element type. The first letter decides, for "t" the second
/// too. Fatal for any other word.
ElemType FindType(TextScan& text);

/// The reference node of CompareNodePointers in this thread; null until RenumberNodes sets it.
extern constinit thread_local const Node* mxnod;

/// Order of two Node* entries, by their distance to mxnod; null is last. Below 0 when a comes
/// first, above 0 when b does, else 0. Not used by the analysis itself.
int CompareNodePointers(const void* a, const void* b);

/// Order of two pairs of integers, by the first, then by the second. Not used by the analysis
/// itself.
int CompareEdgePointers(const void* a, const void* b);

}  // namespace morlen
