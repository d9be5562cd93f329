#include "problem/support_checks.h"

#include <cmath>

#include "base/errorwriter.h"
#include "model/constraint.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"

namespace morlen {

namespace {

bool IsPrescribed(const Node& node, int k)
{
  return node.constraint->flags[k - 1] == Constraint::kPrescribed;
}

bool AllPrescribed(const Node& node, int components)
{
  for (int k = 1; k <= components; ++k) {
    if (!IsPrescribed(node, k))
      return false;
  }
  return true;
}

void CheckOneSupport(const Node& node, int components, std::ostream& message)
{
  if (components == 6 && AllPrescribed(node, components))
    return;
  message << "There is only one prescribed node in the model!!!\n"
          << (components == 3 ? "At least 3 prescribed nodes are needed!!!\n"
                              : "Its 6 degrees of freedom should be prescribed!!!\n");
}

// Only the rotation about the line between the two supports is judged.
void CheckTwoSupports(const Node& a, const Node& b, int components, std::ostream& message)
{
  ReaVec d = b - a;
  const double distance = d.modul();
  if (!(distance > 0.0) || a.constraint->localAxes || b.constraint->localAxes)
    return;
  for (int axis = 1; axis <= d.Size() && components == 6; ++axis) {
    const bool held = IsPrescribed(a, 3 + axis) || IsPrescribed(b, 3 + axis);
    if (held && ExceedsRounding(std::fabs(d(axis)), distance))
      return;
  }
  message << "There are only two prescribed nodes in the model!!!\n"
          << "Model can rotate around axe: " << d << " !!!\n";
}

}  // namespace

void CheckTypicalConstraintsErrors(const Meshes& meshes, int components)
{
  const Mesh& first = *meshes.front();
  const bool planeFrame = meshes.size() == 1 && first.GiveElemType() == Linear && components == 3;
  if (planeFrame)
    return;
  constexpr std::size_t kJudged = 2;
  std::vector<const Node*> supported;
  for (const Node& node : Each<Node>(*first.GiveNodePlex())) {
    if (!node.constraint)
      continue;
    if (supported.size() == kJudged)
      return;
    supported.push_back(&node);
  }
  std::ostream& message = errorwriter.Stream();
  if (supported.empty())
    message << "There are no prescribed nodes in the model!!!\n";
  else if (supported.size() == 1)
    CheckOneSupport(*supported[0], components, message);
  else
    CheckTwoSupports(*supported[0], *supported[1], components, message);
}

}  // namespace morlen
