#include "assembly/refined_shell.h"

#include <algorithm>

#include "assembly/relative_motion.h"
#include "base/errorwriter.h"
#include "model/material.h"
#include "model/node.h"
#include "model/shape_functions.h"

namespace morlen {

namespace {

template <int Order>
void CopyMatrix(const Matriu& from, double (&to)[Order][Order])
{
  for (int i = 0; i < Order; ++i) {
    for (int j = 0; j < Order; ++j)
      to[i][j] = from(i + 1, j + 1);
  }
}

}  // namespace

template <class Shell>
RefinedShellEvaluator<Shell>::RefinedShellEvaluator(const std::vector<double>& nodeShares_)
    : nodeShares(nodeShares_), Dm(3, 3), Db(3, 3), Ds(2, 2)
{
}

template <class Shell>
void RefinedShellEvaluator<Shell>::SetSection(const Elem& elem, const Material& material)
{
  if (&material == materialOfSection)
    return;
  material.GiveDMatrix(elem.Num(), Dm, Db, Ds);
  ShellSection section;
  CopyMatrix(Dm, section.Dm);
  CopyMatrix(Db, section.Db);
  CopyMatrix(Ds, section.Ds);
  section.thickness = material.t;
  shell.SetSection(section);
  materialOfSection = &material;
}

template <class Shell>
void RefinedShellEvaluator<Shell>::Evaluate(const Elem& elem, const Material& material)
{
  elem.CalcTransfMatrixTriangle(T, Tbig, &material);
  SetSection(elem, material);
  CalcLocalCoordinates(elem, T, x, y);
  if constexpr (kNodes > 3)
    offsets.Set(elem, T, x, y);
  for (int i = 0; i < kNodes; ++i)
    shares[i] = nodeShares[elem(i)->number - 1];
  if (!shell.Set(x, y, shares)) {
    if (kNodes > 3)
      Explain(
          "its corners are on a line, or the middle node of an edge is a quarter of the edge or"
          " more off the middle, so that the element is folded at a node");
    Fatal("error: element ", elem.Num(), kNodes == 3 ? " has jacobian <=0\n" : " has jacobian 0\n");
  }
}

template <class Shell>
void RefinedShellEvaluator<Shell>::CalcRelative(const Elem& elem, const SplitView& u,
                                                double* local) const
{
  std::array<bool, 6> freeOfGround;
  freeOfGround.fill(true);
  CalcRelativeShell(elem, T, x, y, freeOfGround, u, local);
  if (offsets.Any())
    offsets.TransformDisplacements(local);
}

template class RefinedShellEvaluator<ThreeNodeShell>;
template class RefinedShellEvaluator<SixNodeShell>;

}  // namespace morlen
