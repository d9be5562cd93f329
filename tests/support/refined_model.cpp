#include "support/refined_model.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "assembly/element_assembly.h"
#include "model/mesh.h"
#include "run/element_families.h"
#include "solvers/skymatriu.h"
#include "support/loaded_beams.h"

namespace morlen {

ShellModel Refined(ShellModel model)
{
  model.settings = "ShellFormulation Refined\n" + model.settings;
  return model;
}

std::function<Vector3(double, double)> DistortedRectangle(double width, double height)
{
  return [=](double u, double v) {
    const double bump = u * (1 - u) * v * (1 - v);
    return Vector3{width * (u + bump * std::sin(5 * u + 3 * v)),
                   height * (v + 1.5 * bump * std::cos(7 * u - 2 * v)), 0.0};
  };
}

std::string EdgeLoads(const ShellModel& model, const Vector3& force,
                      const std::function<bool(const Vector3&)>& condition)
{
  std::string records;
  for (std::size_t i = 0; i < model.triangles.size(); ++i) {
    for (int edge = 0; edge < 3; ++edge) {
      const std::vector<int>& t = model.triangles[i];
      if (!condition(model.nodes[t[edge] - 1]) || !condition(model.nodes[t[(edge + 1) % 3] - 1]))
        continue;
      records += std::to_string(i + 1) + " " + std::to_string(edge);
      for (const double q : force)
        records += " " + Digits(q);
      records += "\n";
    }
  }
  return Block("face_loads", records);
}

DenseRows AssembledMatrix(const ShellModel& model)
{
  const auto project = ReadProject(model.Text());
  project->CalcCoplanarityVector();
  const Problem& problem = project->problem;
  const int n = problem.Equations();
  SkyMatriu matrix(n);
  for (int node = 1; node <= problem.numNodes; ++node)
    matrix.EnterMaxDiff(1, node, problem.components.count);
  matrix.Create(problem.components.count);
  for (const auto& mesh : problem.meshes)
    FamiliesOf(problem).Of(*mesh).addStiffness(problem, *mesh, kInGlobalAxes, matrix);
  DenseRows columns;
  for (int j = 1; j <= n; ++j) {
    ReaVecV unit;
    unit.resize(n, 0.0);
    unit(j) = 1.0;
    columns.emplace_back();
    for (int i = 1; i <= n; ++i)
      columns.back().push_back(matrix.ReturnRowPerVector(i, unit));
  }
  return Transposed(columns);
}

}  // namespace morlen
