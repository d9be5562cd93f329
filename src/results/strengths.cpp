// From displacements to element strengths and support reactions.

#include <algorithm>
#include <cmath>

#include "base/stprintf.h"
#include "model/mesh.h"
#include "numeric/plex_range.h"
#include "problem/element_family.h"
#include "problem/project.h"

namespace {

// What the results are made of must leave room for sums of several values.
constexpr double kLargest = 1e300;

bool AreUsable(const ReaVecV& v)
{
  return std::all_of(v.Data(), v.Data() + v.Size(),
                     [](double x) { return std::fabs(x) <= kLargest; });
}

}  // namespace

void Project::CalcStrengthsAndReactions(std::FILE* info)
{
  results.resize(meshes.size());
  for (int mesh = 0; mesh < static_cast<int>(meshes.size()); ++mesh) {
    for (const Elem& elem : Each<Elem>(*meshes[mesh]->GiveElemPlex()))
      results[mesh].numbers.push_back(elem.Num());
    (this->*FamilyOf(*meshes[mesh]).calcStrengths)(mesh);
    if (!AreUsable(results[mesh].strengths) || !AreUsable(results[mesh].mainStrengths))
      SolverFailed(-1);
  }
  CalcReactions();
  Smooth(info);
}
