#pragma once

#include <cstdio>
#include <fstream>
#include <memory>
#include <string_view>

#include "assembly/solution.h"
#include "assembly/solver_account.h"
#include "assembly/solver_kit.h"
#include "problem/problem.h"
#include "solvers/bsolver.h"

namespace morlen {

class EdgeNodes;
class TextOut;
class TextScan;

/// The front door of the library: one problem and its solution, from the file to the results.
///
/// Every member is one call of a function of its phase, which programs can also call directly.
/// Order of calls: ReadFromAscii, Calc, CalcStrengthsAndReactions, then the writers. Errors are
/// fatal.
class Project
{
public:
  /// kit: the solvers of the program, borrowed.
  explicit Project(int chunkSize, const SolverKit& kit_ = kPlainKit) : problem(chunkSize), kit(kit_)
  {
  }

  // --- Reading ---

  void ReadFromAscii(std::ifstream& in);
  void ReadFromAscii(TextScan& text);
  void ReadFAUnitsNames(TextScan& text);
  void ReadFAMaterials(TextScan& text);
  void ReadFAConstraints(TextScan& text);
  void ReadFALoads(TextScan& text);
  void ReadFARotules(TextScan& text);
  void ReadFARotulesElems(TextScan& text);
  /// Returns -1 when the word begins no block of element loads, else 0.
  int ReadElemLoad(TextScan& text, std::string_view word);

  int CheckElementsNumbers() const { return problem.CheckElementsNumbers(); }
  int GiveMaxElmNum() const { return problem.GiveMaxElmNum(); }
  Elem* GiveElem(int number) const { return problem.GiveElem(number); }
  Node* FindNode(int number) const { return problem.FindNode(number); }
  int Equation(const Node& node, int k) const { return problem.Equation(node, k); }

  // --- Analysis ---

  /// Computes the displacements. renumber: 0 keeps the node numbers of the file; info: receives the
  /// progress, may be null.
  void Calc(int renumber, std::FILE* info);
  /// Assembles and solves a prepared problem with the solver, which must exist and is empty.
  void FillMatrixVectorAndSolve(std::FILE* info);
  void CalcElemsRotules();
  void CalcCoplanarityVector();
  void ConvertTriangleTo6nod(Mesh* mesh, EdgeNodes& edges);
  void CheckTypicalConstraintsErrors() const;
  /// Adds the stiffness of a mesh. applyLocalAxes: 0 keeps global axes at supports with local axes.
  void AddKToGlobalMatrixBeams(Mesh* mesh, int applyLocalAxes, ElementSink& sink) const;
  void AddKToGlobalMatrixTriangles(Mesh* mesh, int applyLocalAxes, ElementSink& sink) const;
  void AddKToGlobalMatrixTriangles6nodes(Mesh* mesh, int applyLocalAxes, ElementSink& sink) const
  {
    AddKToGlobalMatrixTriangles(mesh, applyLocalAxes, sink);
  }
  void AddKToGlobalMatrixTetras(Mesh* mesh, int applyLocalAxes, ElementSink& sink) const;
  void AddKToGlobalMatrixTetras10Nodes(Mesh* mesh, int applyLocalAxes, ElementSink& sink) const
  {
    AddKToGlobalMatrixTetras(mesh, applyLocalAxes, sink);
  }

  // --- Strengths and reactions ---

  /// Frees the solver, and copies the reactions to the supports.
  void CalcStrengthsAndReactions(std::FILE* info);
  void CalcStrengthsBeams(int mesh);
  void CalcStrengthsTriangles(int mesh);
  void CalcStrengthsTriangles6nod(int mesh) { CalcStrengthsTriangles(mesh); }
  void CalcStrengthsTetras(int mesh);
  void CalcStrengthsTetras10nodes(int mesh) { CalcStrengthsTetras(mesh); }
  void CalcReactions();
  void Smooth(std::FILE* info);
  /// Internal force `component` of a beam of length L at t in 0..1; mesh from 0.
  double GiveStrength(int mesh, const Elem& elem, int component, double t, double L) const;
  double GiveReaction(const Elem& elem, int dof, double t) const;
  void SetDisplacementVectors(const Elem& elem, const Matriu& T, int divisions, double* out) const;

  // --- Writing ---

  void WriteResults(std::ofstream& out) const;
  void WriteBeamStrength(int mesh, TextOut& out) const;
  /// Writes the results; with a meshFileName that is not null, first the mesh file of that name.
  void WriteKivResults(std::ofstream& res, const char* meshFileName) const;
  void PrintTo(std::ofstream& out) const;

  Problem problem;
  Solution solution;
  std::unique_ptr<BSolver> solver;  ///< null before Calc and after CalcStrengthsAndReactions
  SolverAccount account;            ///< after Calc

private:
  const SolverKit& kit;
};

}  // namespace morlen
