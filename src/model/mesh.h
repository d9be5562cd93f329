#pragma once

#include <array>
#include <memory>
#include <ostream>
#include <vector>

#include "model/elem.h"
#include "numeric/voidplex.h"

namespace morlen {

/// The nodes and the elements of one kind, as one mesh block of the file gives them.
///
/// Several meshes of a problem share the node container of the first. The containers
/// hold the objects under their numbers in the file; the objects are deleted by
/// ClearAllNodes and ClearAllElems, not by the destructor.
class Mesh
{
public:
  /// New containers of the given chunk sizes. nnode may be 0: not known yet.
  Mesh(int nodeCapacity, int elemCapacity, int ndime, ElemType type, int nnode);
  /// On the node container of another mesh.
  Mesh(VoidPlex* nodes, int elemCapacity, int ndime, ElemType type, int nnode);
  Mesh(const Mesh&) = delete;
  Mesh& operator=(const Mesh&) = delete;

  /// Reads one mesh block, from its "dimension" to the end of its elements. Null units
  /// leave the coordinates as they are.
  virtual void ReadFromAscii(TextScan& text, const Units* units);
  virtual ~Mesh();

  VoidPlex* GiveNodePlex() const { return nodes; }
  VoidPlex* GiveElemPlex() const { return elems.get(); }
  int GiveFvType() const { return fvType; }
  ElemType GiveElemType() const { return elemType; }
  int GiveNnode() const { return nnode; }
  int GiveNdime() const { return ndime; }
  /// Whether an element that this mesh has read came with a material of its own.
  bool HasOwnMaterials() const { return ownMaterials; }

  /// The mesh listing: numbers of the file (useOld 1) or of the system, materials
  /// without the word "Mat:" when bare is 1 (only together with useOld).
  void PrintTo(std::ostream& out, int useOld, int bare) const;
  /// The Femview neutral file; fileName gives its title.
  void PrintToFemview(std::ostream& out, const char* fileName) const;

  /// Sets the Femview code of the type and the node count. Fatal for a count that the
  /// type does not have.
  void CalcShapeGaussFemv();

  /// The number in the file of the node that now has number n.
  int GiveOldNumber(int n) const;
  int GiveOldNumber(const Node* node) const;

  /// Lets this mesh, which shares the nodes of the other, know its old numbers. The other
  /// mesh is borrowed.
  void TakeOldNumbersOf(const Mesh& owner) { numbering = &owner; }

  /// Gives every element n node places, the new ones null.
  void ConvertToNewNnode(int n);

  /// Stores a node under its number, or under the next one when that is 0; drops it
  /// when its number is taken. Returns the number; the node's own stays as it is.
  int AddPtstoPlex(Node* node);
  /// Stores an element under its number, or under the next one when that is 0 or taken
  /// (the element is then given this mesh). Returns the number; its own stays as it is.
  int AddElemtoPlex(Elem* elem);

  void ClearAllNodes();
  void ClearAllElems();

  /// Numbers the nodes 1, 2, ... by their distance from the node farthest from the
  /// centroid, for a narrow profile. The numbers in the file stay known to GiveOldNumber.
  void RenumberNodes();
  /// Gives the nodes back the numbers from before RenumberNodes.
  void RestoreNumbers();

private:
  void ReadNodes(TextScan& text, double lengthFactor);
  void RequireAllNumbers(int count) const;
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
  std::unique_ptr<VoidPlex> ownNodes;  ///< null when the nodes are another mesh's
  VoidPlex* nodes;
  std::unique_ptr<VoidPlex> elems;
  std::vector<std::array<int, 2>> edges;  ///< no part of the analysis: empty
  std::vector<int> oldNumbers;            ///< of number k at k - 1; empty until a renumbering
  const Mesh* numbering = this;           ///< the mesh whose old numbers hold
};

/// Reads the word that names an element type; its first letter (for "t" the second)
/// decides. Fatal for any other word.
ElemType FindType(TextScan& text);

/// The reference node of CompareNodePointers.
extern const Node* mxnod;

/// Order of two Node* entries: by distance to mxnod, nearest first; null entries last.
int CompareNodePointers(const void* a, const void* b);

/// Order of two pairs of integers: by the first, then by the second.
int CompareEdgePointers(const void* a, const void* b);

}  // namespace morlen
