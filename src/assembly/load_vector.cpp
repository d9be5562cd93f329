#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/nodal_load.h"
#include "problem/project.h"

void Project::AddNodalLoads()
{
  for (const Node& node : Each<Node>(GiveNodes())) {
    if (!node.load)
      continue;
    for (int k = 1; k <= freeDegrees; ++k)
      displacements(Equation(node, k)) += node.load->values[k - 1];
  }
}
