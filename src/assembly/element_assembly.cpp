#include "assembly/element_assembly.h"

#include <utility>

#include "assembly/support_axes.h"
#include "base/errorwriter.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/block_rotation.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "problem/constraint.h"
#include "problem/project.h"
#include "solvers/bsolver.h"

namespace {

void TransposeInPlace(Matriu& K)
{
  for (int i = 1; i <= K.Rows(); ++i) {
    for (int j = 1; j < i; ++j)
      std::swap(K(i, j), K(j, i));
  }
}

}  // namespace

BlockAssembler::BlockAssembler(BSolver& matrix, int components, int applyLocalAxes)
    : solver(matrix),
      n(components),
      toSupportAxes(applyLocalAxes > 0),
      onlyAtSupports(applyLocalAxes == kOnlyAtSupports)
{
}

bool BlockAssembler::Takes(const Elem& elem) const
{
  if (!onlyAtSupports)
    return true;
  const int nnode = elem.Nnode();
  for (int i = 0; i < nnode; ++i) {
    if (elem(i)->constraint)
      return true;
  }
  return false;
}

void BlockAssembler::Add(const Node& a, const Node& b, Matriu& K)
{
  const Node* row = &a;
  const Node* column = &b;
  if (row->number > column->number) {
    std::swap(row, column);
    TransposeInPlace(K);
  }
  if (toSupportAxes && (row->constraint || column->constraint))
    ApplyLocalAxestoKMatrix(K, row, column, n);
  solver.AddSubMatriu((row->number - 1) * n + 1, (column->number - 1) * n + 1, K);
}

void Project::AddKToGlobalMatrixBeams(Mesh* mesh, int applyLocalAxes)
{
  Matriu K11, K12, K22, T;  // allocated once for the mesh
  BlockAssembler assembler(*solver, freeDegrees, applyLocalAxes);
  for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
    if (!assembler.Takes(elem))
      continue;
    const Node& first = *elem(0);
    const Node& second = *elem(1);
    const BeamSpan beam = SpanOf(elem, T);
    beam.material.ConstructLocalK(elem.Num(), K11, K12, K22, dist2(&first, &second), problemType,
                                  beam.hingeCode);
    for (Matriu* K : {&K11, &K12, &K22}) {
      TurnRows(T, Turn::ToGlobal, *K);
      TurnColumns(T, Turn::ToGlobal, *K);
    }
    assembler.Add(first, first, K11);
    assembler.Add(first, second, K12);
    assembler.Add(second, second, K22);
  }
}
