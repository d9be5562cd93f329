// From displacements to element strengths and support reactions.

#include "base/stprintf.h"
#include "model/mesh.h"
#include "numeric/plex_range.h"
#include "problem/element_family.h"
#include "problem/project.h"
#include "results/finite_results.h"

namespace morlen {

void Project::CalcStrengthsAndReactions(std::FILE* info)
{
  results.resize(meshes.size());
  for (int mesh = 0; mesh < static_cast<int>(meshes.size()); ++mesh) {
    for (const Elem& elem : Each<Elem>(*meshes[mesh]->GiveElemPlex()))
      results[mesh].numbers.push_back(elem.Num());
    (this->*FamilyOf(*meshes[mesh]).calcStrengths)(mesh);
  }
  CalcReactions();
  Smooth(info);
  if (!AreResultsFinite(*this))
    SolverFailed(-1);
}

}  // namespace morlen
