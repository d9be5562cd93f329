#pragma once

#include <array>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/constants.h"
#include "base/textscan.h"
#include "model/units.h"
#include "numeric/plex_range.h"
#include "numeric/reavec.h"
#include "numeric/reavecv.h"
#include "numeric/voidplex.h"
#include "problem/beam_span.h"
#include "problem/settings.h"

namespace morlen {

class BSolver;
class BaseElemLoads;
class EdgeNodes;
class Elem;
class InternalForces;
class Material;
class Matriu;
class Mesh;
class Node;
class Refinement;
class SkyMatriu;
class TextOut;
struct BeamEnds;
struct ComponentScale;
struct ElementFamily;
struct RefinedCases;
struct SolverChoice;

/// Results of the elements of one mesh, one block of values for each element.
struct MeshResults
{
  std::vector<int> numbers;  ///< of the elements, ascending
  int blockSize = 0;         ///< values of an element
  int points = 0;            ///< Gauss points of an element; 0 for beams
  ReaVecV strengths;
  ReaVecV mainAngles;     ///< six Euler angles a point: axes of forces, of moments
  ReaVecV mainStrengths;  ///< principal values beside the local ones

  /// Position before the block of an element's values: its value k is strengths(Block + k).
  int Block(int elemNumber) const;
};

/// How far the displacements can be trusted.
struct SolutionAccuracy
{
  double error = 0.0;     ///< estimated, relative to the displacements
  double residual = 0.0;  ///< ‖f − K·u‖ / ‖f‖ over the free equations
};

/// Everything of one run: what the problem file says, the system of equations, and the
/// results. Its members are declared here by phase; each is defined in the folder of
/// its phase.
///
/// Nodes are under their numbers in the file in every container; their own number is
/// the system number, which gives the equations (see Equation).
class Project : public Units
{
public:
  static constexpr int kMaxMeshes = 10;

  explicit Project(int chunkSize);
  Project(const Project&) = delete;
  Project& operator=(const Project&) = delete;
  ~Project();

  // --- Reading the problem file (problem/) ---

  /// Reads a whole problem file. Fatal on everything that is wrong in it.
  void ReadFromAscii(std::ifstream& in);
  void ReadFromAscii(TextScan& text);

  void ReadFAUnitsNames(TextScan& text);
  void ReadFAMaterials(TextScan& text);
  void ReadFAConstraints(TextScan& text);
  void ReadFALoads(TextScan& text);
  void ReadFARotules(TextScan& text);
  void ReadFARotulesElems(TextScan& text);
  /// Reads the block of element loads that this word begins; -1 when it begins none.
  int ReadElemLoad(TextScan& text, std::string_view word);

  /// The first element number that occurs in more than one mesh; 0 when there is none.
  int CheckElementsNumbers() const;
  int GiveMaxElmNum() const;
  /// The element with this number; null when there is none.
  Elem* GiveElem(int number) const;

  // --- What every later phase asks ---

  VoidPlex& GiveNodes() const;
  Node* FindNode(int number) const;  ///< null when absent
  /// The equation of component k (from 1) of a node.
  int Equation(const Node& node, int k) const;
  /// The element's material. Fatal when there is none.
  Material& RequireMaterial(const Elem& elem) const;
  /// Two digits, first and second end: 1 continuous, 0 hinged.
  int GiveHingeCode(int elemNumber) const;
  /// A beam with its frame, which is computed into T. Fatal without a material.
  BeamSpan SpanOf(const Elem& elem, Matriu& T) const;
  /// The sum of self-weight and loads on a beam.
  SpanLoad LoadOn(const BeamSpan& beam) const;

  /// Calls visit(number, node) for every node that the file has given, by its number there.
  template <class Visit>
  void ForEachNodeRead(Visit visit) const
  {
    for (const auto [number, node] : EachNumbered<const Node>(GiveNodes())) {
      if (number > initialNumNodes)
        return;
      visit(number, node);
    }
  }

  // --- Analysis (assembly/) ---

  /// From the model to the displacements, with progress on info (may be null).
  /// renumber 0 keeps the numbers of the file.
  void Calc(int renumber, std::FILE* info);
  /// Refuses what is no model for the analysis although it refers to nothing unknown.
  void CheckModel() const;
  /// Refuses meshes that `Solver Double` does not take.
  void CheckDoubleSolver() const;
  void AddNodalLoads();
  void FillMatrixVectorAndSolve(std::FILE* info);
  /// Gives the triangles of a mesh nodes in the middle of their edges.
  void ConvertTriangleTo6nod(Mesh* mesh, EdgeNodes& edges);
  /// Marks the nodes whose triangles all lie in one plane.
  void CalcCoplanarityVector();
  /// Merges the hinges of nodes into the codes of the beams, and fixes the rotations of
  /// nodes that no connection holds.
  void CalcElemsRotules();
  /// Adds the stiffness of a mesh to the matrix of the solver; applyLocalAxes 0 leaves
  /// it in global axes at supports that have their own.
  void AddKToGlobalMatrixBeams(Mesh* mesh, int applyLocalAxes);
  void AddKToGlobalMatrixTriangles(Mesh* mesh, int applyLocalAxes);
  void AddKToGlobalMatrixTetras(Mesh* mesh, int applyLocalAxes);
  /// Adds the forces K·u of the elements, or of those of one mesh, for given displacements.
  void AddForces(InternalForces& forces) const;
  void AddForcesOfBeams(const Mesh& mesh, InternalForces& forces) const;
  void AddForcesOfTriangles(const Mesh& mesh, InternalForces& forces) const;
  void AddForcesOfTetras(const Mesh& mesh, InternalForces& forces) const;
  /// Which nodes of a shell do not have all their triangles in one plane.
  std::array<bool, 6> FoldedNodes(const Elem& shell) const;
  /// Adds the self-weight and the loads of the elements of a mesh to the load vector.
  void AddLoadsOnBeams(Mesh* mesh);
  void AddLoadsOnTriangles(Mesh* mesh);
  void AddLoadsOnTetras(Mesh* mesh);
  /// Explains typical faults of the supports in the stream of the error writer.
  void CheckTypicalConstraintsErrors() const;

  // --- Strengths and reactions (results/) ---

  void CalcStrengthsAndReactions(std::FILE* info);
  void CalcStrengthsBeams(int mesh);
  void CalcStrengthsTriangles(int mesh);
  void CalcStrengthsTetras(int mesh);
  void CalcReactions();
  /// Averages the results of elements that meet at a node, where the file asks for it.
  void Smooth(std::FILE* info);
  void SmoothTriangles(int mesh);
  void SmoothVariableTetra(int mesh);
  /// Smooths the membrane forces (variable 0) or the moments (1) in `values`; mainAngles: the
  /// axes of principal values, null for local ones.
  void SmoothVariable(int mesh, int variable, ReaVecV& values, const ReaVecV* mainAngles);

  /// Internal force `component` (from 1) of a beam of length L at the relative abscissa
  /// t, from its end forces.
  double GiveStrength(int mesh, const Elem& elem, int component, double t, double L) const;
  /// Reaction of the node at the end t = 0 or 1 of a beam, 0 elsewhere.
  double GiveReaction(const Elem& elem, int dof, double t) const;
  /// Displacements of `divisions` + 1 equidistant points of a beam in global axes, three
  /// for each (two in plane problems), one point after the other.
  void SetDisplacementVectors(const Elem& elem, const Matriu& T, int divisions, double* out) const;

  /// Displacements of a beam's ends in its local axes; T is its frame.
  BeamEnds GiveBeamEnds(const Elem& elem, const Matriu& T) const;

  // --- Writing (results/) ---

  void WriteResults(std::ofstream& out) const;
  void WriteBeamStrength(int mesh, TextOut& out) const;
  /// The post-process results; before them the mesh file when it has a name.
  void WriteKivResults(std::ofstream& res, const char* meshFileName) const;
  void WriteKivResultsBeams(int mesh, TextOut& res) const;
  void WriteKivResultsTriangle(int mesh, TextOut& res) const;
  void WriteKivResultsTetra(int mesh, TextOut& res) const;
  void WriteKivResultsReactions(TextOut& res) const;
  /// Listing of the whole model.
  void PrintTo(std::ofstream& out) const;

  // --- The model ---

  PROBLEMTYPE problemType = kPlane;
  int freeDegrees = 0;   ///< components of a node
  int translations = 0;  ///< how many of them are displacements, not rotations
  std::vector<std::unique_ptr<Mesh>> meshes;
  int initialNumNodes = 0;  ///< as read
  int numNodes = 0;         ///< with those that the analysis adds
  VoidPlex materials;       ///< of Material, owned
  VoidPlex elemLoads;       ///< of BaseElemLoads by element number, owned: chains of loads
  bool hasHinges = false;   ///< whether the file has any
  std::unordered_map<int, int> hingeCodes;  ///< by element number; others are continuous

  // --- Settings ---

  SolverSettings solverSettings;
  SmoothingSettings smoothing;
  StressOutput stressOutput = StressOutput::Local;
  bool convertTo6Nodes = false;
  double coplanarityAngle = 1e-7;  ///< radians
  ReaVec gravityDirection{0.0, 0.0, 1.0};
  int numOfDivisions = 20;

  // --- The system and the results ---

  std::unique_ptr<BSolver> solver;
  bool preSolved = false;        ///< displacements are those of a coarser model
  std::vector<int> coplanarity;  ///< by system number less 1: 1 where a shell is flat
  ReaVecV displacements;         ///< by equation; before the solution the loads
  ReaVecV displacementRests;     ///< digits that the displacements lack, see SplitVector
  ReaVecV elementForces;  ///< K·u, when known: by equation, global axes; until the reactions
  SolutionAccuracy accuracy;
  std::string solverReason;  ///< why this solver, for the information stream
  std::vector<MeshResults> results;
  ReaVecV nodalStresses;  ///< of solids, six for each node by its system number

private:
  // Readers of single keywords.
  void ReadHeader(TextScan& text);
  void ReadWord(TextScan& text);
  bool ReadKeyword(TextScan& text, std::string_view word);
  void ReadMesh(TextScan& text);
  bool ReadMaterial(TextScan& text);
  void ReadConstraint(TextScan& text, int number);
  void ReadNodalLoad(TextScan& text, int number);
  void ReadOneLoad(TextScan& text, int number, std::unique_ptr<BaseElemLoads> load);
  void ReadHinge(TextScan& text, int number);
  void ReadElemHinges(TextScan& text, int number);
  void ReadUnitsMesh(TextScan& text, const std::string& value);
  void ReadUnitsMatAndLoad(TextScan& text, const std::string& value);
  void ReadUnitsRes(TextScan& text, const std::string& value);
  void ReadNumOfDivisions(TextScan& text, const std::string& value);
  void ReadDoSmoothing(TextScan& text, const std::string& value);
  void ReadCoplanarityAngle(TextScan& text, const std::string& value);
  void ReadSolver(TextScan& text, const std::string& value);
  void ReadGravityDirection(TextScan& text, const std::string& value);

  // Closing checks.
  void FinishReading();
  void ComposeMaterials();
  void RequireDifferentNumbers() const;
  void SetNodeDimensions(bool solids);

  // Steps of the analysis.
  void RequireFamily(const Mesh& mesh) const;
  void PreSolve(int renumber, std::FILE* info);
  void ConvertTriangles(std::FILE* info);
  void MarkCoplanarNodes(std::FILE* info);
  void CalcAutomatically(int renumber, std::FILE* info);
  void Number(int renumber);
  SolverChoice ChooseSolver(int renumber);
  void MakeSolver();
  void MakeIteration(const SolverChoice& choice);
  std::unique_ptr<double[]> StartFromPreSolve() const;
  Node& AddMidSideNode(const Node& a, const Node& b);
  /// Whether the analysis has made the node.
  bool IsAddedNode(const Node& node) const;
  void CreateMatrix();
  void AssembleStiffness();
  void MergeHinges(const Elem& elem);
  void PrepareSystem(std::FILE* info);
  void SolveDirectly(std::FILE* info);
  int SolveCases(const ReaVecV& loads, RefinedCases& cases, std::FILE* info);
  std::string RefusedPivotHint(const ReaVecV& loads);
  SkyMatriu& Skyline() const;
  Refinement MakeRefinement() const;
  void SolveByIteration(std::FILE* info);
  bool IterateToTheEnd(std::FILE* info);
  int Iterate(std::FILE* info);
  void FinishSolution(std::FILE* info);
  void RequireSolution(int result) const;
  void TellAccuracy(std::FILE* info) const;
  ComponentScale ScaleOfComponents() const;
  void StartReactions();
  void AddLoadsOnBeam(const Elem& elem, Matriu& T);
  void AddLoadsOnTriangle(const Elem& elem, Matriu& T, Matriu& Tbig);
  void AddLoadsOnTetra(const Elem& elem);
  void ApplySupports();
  /// hint: a line after the message; empty for none.
  [[noreturn]] void SolverFailed(int result, const std::string& hint = "") const;

  ReaVecV ForcesAtSupports() const;
  void HandOverMidSideReactions();

  // Blocks of the post-process results.
  void WriteKivDisplacements(TextOut& res) const;
  void WriteKivShellAxes(int mesh, TextOut& res) const;
  void WriteKivMainAxes(int mesh, const char* header, int first, TextOut& res) const;
  void WriteKivBeamDisplacements(int mesh, TextOut& res) const;
  void WriteKivBeamForces(int mesh, int component, TextOut& res) const;
  void WriteKivBeamAxes(int mesh, TextOut& res) const;
  void WriteKivReactionBlock(TextOut& res, int first, int last) const;

  void PrintHinges(std::ofstream& out) const;
};

}  // namespace morlen
