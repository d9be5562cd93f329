#include "assembly/element_forces.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "numeric/matriu.h"
#include "numeric/reavecv.h"
#include "solvers/skymatriu.h"
#include "support/processor.h"
#include "support/sparse.h"

namespace {

/// An element of some nodes with random blocks; those of a node with itself are symmetric.
struct RandomElement
{
  RandomElement(std::vector<int> nodes_, int ndof_, unsigned seed) : nodes(nodes_), ndof(ndof_)
  {
    const std::size_t blocks = nodes.size() * (nodes.size() + 1) / 2;
    values = RandomVector(static_cast<int>(blocks) * ndof * ndof, seed);
    double* block = values.data();
    for (std::size_t i = 0; i < nodes.size(); ++i)
      for (std::size_t j = i; j < nodes.size(); ++j, block += ndof * ndof)
        for (int a = 0; a < ndof && nodes[i] == nodes[j]; ++a)
          for (int b = 0; b < a; ++b)
            block[a * ndof + b] = block[b * ndof + a];
  }

  ElementBlocks Blocks() const { return {nodes, ndof, values.data()}; }

  std::vector<int> nodes;
  int ndof;
  std::vector<double> values;
};

ReaVecV RandomDisplacements(int n, unsigned seed)
{
  ReaVecV u(n);
  const std::vector<double> values = RandomVector(n, seed);
  for (int i = 1; i <= n; ++i)
    u(i) = values[i - 1];
  return u;
}

TEST(ElementForces, AreTheProductWithTheMatrixOfTheElements)
{
  constexpr int kNodes = 7;
  for (const int ndof : {3, 6}) {
    const std::vector<RandomElement> elements = {
        {{1, 2}, ndof, 1}, {{4, 2, 7, 1}, ndof, 2}, {{7, 6, 5}, ndof, 3}, {{3, 3}, ndof, 4}};
    const int n = kNodes * ndof;
    SkyMatriu matrix(n, TestedProcessor());
    for (int node = 2; node <= kNodes; ++node)
      matrix.EnterMaxDiff(1, node, ndof);
    matrix.Create(ndof);
    const std::vector<ReaVecV> u = {RandomDisplacements(n, 5), RandomDisplacements(n, 6)};
    ElementForces forces({&u[0], &u[1]});
    for (const RandomElement& element : elements) {
      matrix.AddElement(element.Blocks());
      forces.AddElement(element.Blocks());
    }
    for (std::size_t k = 0; k < u.size(); ++k)
      for (int i = 1; i <= n; ++i)
        EXPECT_NEAR(forces.Forces(k)(i), matrix.ReturnRowPerVector(i, u[k]), 1e-13);
  }
}

TEST(ElementForces, WithoutElementsThereAreNone)
{
  const ReaVecV u = RandomDisplacements(6, 1);
  ElementForces forces({&u});
  for (int i = 1; i <= 6; ++i)
    EXPECT_EQ(forces.Forces(0)(i), 0.0);
}

}  // namespace
