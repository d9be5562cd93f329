#include "assembly/shell_shares.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plane_angle.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"

namespace morlen {

namespace {

struct Facet
{
  double normal[3];  // twice as long as its area
  double thickness;
};

Facet FacetOf(const Elem& elem, double thickness)
{
  double a[3], b[3];
  for (int k = 0; k < 3; ++k) {
    a[k] = (*elem(1))(k + 1) - (*elem(0))(k + 1);
    b[k] = (*elem(2))(k + 1) - (*elem(0))(k + 1);
  }
  Facet facet{{}, thickness};
  CrossProduct(a, b, facet.normal);
  return facet;
}

/// The triangles of a model and those around each node.
struct FacetsAround
{
  std::vector<Facet> facets;
  std::vector<int> first;   // by node: its beginning in `around`; one more entry at the end
  std::vector<int> around;  // indices of facets
};

template <class Visit>
void ForEachTriangle(const Meshes& meshes, Visit visit)
{
  for (const auto& mesh : meshes) {
    if (mesh->GiveElemType() != Triangle)
      continue;
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex()))
      visit(elem);
  }
}

FacetsAround CollectFacets(const Problem& problem)
{
  FacetsAround out;
  out.first.assign(static_cast<std::size_t>(problem.numNodes) + 2, 0);
  ForEachTriangle(problem.meshes, [&](const Elem& elem) {
    out.facets.push_back(FacetOf(elem, problem.RequireMaterial(elem).t));
    for (int i = 0; i < elem.Nnode(); ++i)
      ++out.first[elem(i)->number + 1];
  });
  for (std::size_t i = 1; i < out.first.size(); ++i)
    out.first[i] += out.first[i - 1];
  out.around.resize(static_cast<std::size_t>(out.first.back()));
  int facet = 0;
  ForEachTriangle(problem.meshes, [&](const Elem& elem) {
    for (int i = 0; i < elem.Nnode(); ++i)
      out.around[out.first[elem(i)->number]++] = facet;
    ++facet;
  });
  return out;  // first[n] is now the end of the list of node n, which begins at first[n - 1]
}

double ShareAmong(const std::vector<Facet>& facets, std::span<const int> around)
{
  double curvature = 0.0;
  double area = 0.0;
  double thickness = facets[around[0]].thickness;
  for (std::size_t i = 0; i < around.size(); ++i) {
    const Facet& facet = facets[around[i]];
    area += std::hypot(facet.normal[0], facet.normal[1], facet.normal[2]) / 2.0;
    thickness = std::min(thickness, facet.thickness);
    for (std::size_t j = 0; j < i; ++j)
      curvature = std::max(curvature,
                           CurvatureOfFold(AngleOfPlanes(facet.normal, facets[around[j]].normal)));
  }
  return ShareOf(curvature, std::sqrt(2.0 * area / static_cast<double>(around.size())), thickness);
}

}  // namespace

double CurvatureOfFold(double angle)
{
  constexpr double kWhole = 20.0 * std::numbers::pi / 180.0;
  constexpr double kRange = 20.0 * std::numbers::pi / 180.0;
  const double s = std::clamp((angle - kWhole) / kRange, 0.0, 1.0);
  return angle * (1.0 - s) * (1.0 - s) * (1.0 + 2.0 * s);
}

double ShareOf(double curvature, double size, double thickness)
{
  const double p = curvature * size / thickness;
  return 1.0 / (1.0 + p * p * p * p);
}

std::vector<double> CalcShellShares(const Problem& problem)
{
  const FacetsAround model = CollectFacets(problem);
  std::vector<double> shares(static_cast<std::size_t>(problem.numNodes), 1.0);
  for (int node = 1; node <= problem.numNodes; ++node) {
    const int begin = model.first[node - 1];
    const int end = model.first[node];
    if (end - begin > 1)
      shares[node - 1] =
          ShareAmong(model.facets, {model.around.data() + begin, model.around.data() + end});
  }
  return shares;
}

}  // namespace morlen
