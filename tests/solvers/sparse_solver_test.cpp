#include "solvers/sparse_solver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "numeric/matriu.h"
#include "numeric/reavecv.h"
#include "solvers/block_factors.h"
#include "solvers/ilu_preconditioner.h"
#include "solvers/krylov.h"
#include "solvers/skymatriu.h"
#include "support/dense.h"
#include "support/fatal.h"
#include "support/messages.h"
#include "support/processor.h"
#include "support/sparse.h"

namespace morlen {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

using Pairs = std::vector<std::pair<int, int>>;

/// Nodes joined by elements of two nodes, each with a symmetric positive definite matrix; node
/// numbers and equations from 1.
struct Model
{
  int nodes;
  int ndof;
  Pairs elements;

  int Equations() const { return nodes * ndof; }

  /// The block of an element between its ends r and s (0 or 1). Every element is different.
  Matriu Block(std::size_t element, int r, int s) const
  {
    const std::vector<double> x = RandomVector(2 * ndof, 100 + static_cast<unsigned>(element));
    Matriu block(ndof, ndof);
    for (int a = 0; a < ndof; ++a)
      for (int b = 0; b < ndof; ++b) {
        const bool diagonal = r == s && a == b;
        block(a + 1, b + 1) = x[r * ndof + a] * x[s * ndof + b] + (diagonal ? 1.0 : 0.0);
      }
    return block;
  }

  void Couple(BSolver& solver) const
  {
    for (const auto& [p, q] : elements)
      solver.EnterMaxDiff(p, q, ndof);
    solver.Create(ndof);
  }

  void Assemble(BSolver& solver) const
  {
    const auto first = [this](int node) { return (node - 1) * ndof + 1; };
    for (std::size_t e = 0; e < elements.size(); ++e) {
      const auto& [p, q] = elements[e];
      solver.AddSubMatriu(first(p), first(p), Block(e, 0, 0));
      solver.AddSubMatriu(first(p), first(q), Block(e, 0, 1));
      solver.AddSubMatriu(first(q), first(q), Block(e, 1, 1));
    }
  }

  DenseRows Dense() const
  {
    DenseRows a = DenseZero(Equations());
    for (std::size_t e = 0; e < elements.size(); ++e) {
      const int ends[] = {elements[e].first, elements[e].second};
      for (int r = 0; r < 2; ++r)
        for (int s = 0; s < 2; ++s) {
          const Matriu block = Block(e, r, s);
          for (int k = 0; k < ndof; ++k)
            for (int l = 0; l < ndof; ++l)
              a[(ends[r] - 1) * ndof + k][(ends[s] - 1) * ndof + l] += block(k + 1, l + 1);
        }
    }
    return a;
  }
};

/// Nodes in a grid, numbered so that low and high numbers mix.
Model GridModel(int width, int height, int ndof)
{
  Model model{width * height, ndof, {}};
  const auto number = [&](int x, int y) { return (y * width + x) * 11 % (width * height) + 1; };
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      if (x + 1 < width)
        model.elements.emplace_back(std::minmax(number(x, y), number(x + 1, y)));
      if (y + 1 < height)
        model.elements.emplace_back(std::minmax(number(x, y), number(x, y + 1)));
    }
  return model;
}

SparseSolver PreciseSolver(const Model& model)
{
  return SparseSolver(model.nodes, model.ndof, 1e-13, 1e-13, 1000, TestedProcessor());
}

ReaVecV ToVector(const std::vector<double>& x)
{
  ReaVecV v(static_cast<int>(x.size()));
  std::copy(x.begin(), x.end(), v.begin());
  return v;
}

template <class Print>
std::string Printed(Print print)
{
  const auto path = std::filesystem::temp_directory_path() / "morlen_sparse_solver_test.txt";
  {
    std::ofstream out(path);
    print(out);
  }
  std::ifstream in(path);
  std::ostringstream text;
  text << in.rdbuf();
  in.close();
  std::filesystem::remove(path);
  return text.str();
}

std::string InfoMem(const BSolver& solver)
{
  return MessagesOf([&](std::FILE* info) { solver.PrintInfoMem(info); });
}

TEST(SparseSolver, NeighbourhoodOf200IsAcceptedAndTheNextRefused)
{
  for (const bool first : {true, false}) {
    SparseSolver solver(300, 1, TestedProcessor());
    const auto couple = [&](int other) {
      first ? solver.EnterMaxDiff(7, other, 1) : solver.EnterMaxDiff(other, 7, 1);
    };
    for (int round = 0; round < 2; ++round)  // repeats do not count
      for (int k = 0; k < 200; ++k)
        couple(100 + k * 37 % 200);
    ExpectFatal([&] { couple(300); }, "error: increase parameter MAXNUMNODESAROUNDNODE node=7\n");
    couple(299);
    solver.Create(1);
  }
}

TEST(SparseSolver, PatternHasABlockForEveryCoupling)
{
  // Node 1: 3 blocks, 2: 2, 3: 2, 4: 1; each 2×2. Order and repeats do not matter.
  const Pairs orders[] = {{{1, 2}, {1, 3}}, {{3, 1}, {2, 1}, {1, 2}, {3, 1}}};
  for (const Pairs& pairs : orders) {
    SparseSolver solver(4, 2, TestedProcessor());
    for (const auto& [p, q] : pairs)
      solver.EnterMaxDiff(p, q, 2);
    solver.Create(2);
    EXPECT_EQ(solver.GiveSize(), 8);
    EXPECT_EQ(InfoMem(solver),
              "\nINFORMATION ABOUT STIFFNESS MATRIX\n"
              "Sparse matrix storage with Conjugate gradients\n"
              "Degrees of freedom= 8\n"
              "Total number of positions= 32\n"
              "Amount of memory= 0.0Mb\n\n");
    solver.PrintInfoMem(nullptr);
  }
}

TEST(SparseSolver, NodeCoupledWithItselfGetsNoFurtherBlock)
{
  SparseSolver solver(1, 3, TestedProcessor());
  solver.EnterMaxDiff(1, 1, 3);
  solver.Create(3);
  EXPECT_EQ(solver.GiveMatrix()->GiveSlots(), 9);
  solver.AddSubMatriu(1, 1, MatriuOf(3, 3, {4, 1, 0, 1, 4, 1, 0, 1, 4}));
  ReaVecV b = ToVector({5.0, 6.0, 5.0});
  EXPECT_EQ(solver.Solver(b, nullptr), 0);
  for (int i = 1; i <= 3; ++i)
    EXPECT_NEAR(b(i), 1.0, 1e-12);
}

TEST(SparseSolver, MemoryIsTwelveBytesAPositionAndFourARow)
{
  SparseSolver solver(60, 6, TestedProcessor());
  for (int p = 1; p <= 60; ++p)
    for (int q = 1; q < p; ++q)
      solver.EnterMaxDiff(p, q, 6);
  solver.Create(6);
  // (12·360² + 4·360)/1024² = 1.4846
  EXPECT_EQ(InfoMem(solver),
            "\nINFORMATION ABOUT STIFFNESS MATRIX\n"
            "Sparse matrix storage with Conjugate gradients\n"
            "Degrees of freedom= 360\n"
            "Total number of positions= 129600\n"
            "Amount of memory= 1.5Mb\n\n");
}

TEST(SparseSolver, SizesOutOfRangeAreRefused)
{
  ExpectFatal([] { SparseSolver(0, 6).Create(6); }, "Sparse Matrix size must be greater than 0");
  ExpectFatal([] { SparseSolver(-2, 6).Create(6); }, "Sparse Matrix size must be greater than 0");
  ExpectFatal([] { SparseSolver(1000000000, 6); }, "Not space available on heap");
}

TEST(SparseSolver, MorePositionsThanAnIntCountsAreRefused)
{
  // 12,000 nodes of 30 components, each with the 199 or 200 nearest: over 2³¹ positions.
  SparseSolver solver(12000, 30, TestedProcessor());
  for (int p = 1; p <= 12000; ++p)
    for (int q = p + 1; q <= std::min(p + 100, 12000); ++q)
      solver.EnterMaxDiff(p, q, 30);
  ExpectFatal([&] { solver.Create(30); }, "Not space available on heap");
}

TEST(SparseSolver, BlocksAreAddedWithTheirMirrorImage)
{
  for (const int ndof : {1, 3, 6}) {
    const Model model = GridModel(4, 3, ndof);
    SparseSolver solver(model.nodes, ndof, TestedProcessor());
    model.Couple(solver);
    const DenseRows a = model.Dense();
    for (int round = 0; round < 2; ++round) {
      solver.SetToZero();
      model.Assemble(solver);
      for (int i = 1; i <= model.Equations(); ++i)
        for (int j = 1; j <= model.Equations(); ++j) {
          if (a[i - 1][j - 1] != 0.0) {
            EXPECT_NEAR(solver(i, j), a[i - 1][j - 1], 1e-14);
          }
          EXPECT_NEAR((*solver.GiveMatrix())(i - 1, j - 1), a[i - 1][j - 1], 1e-14);
        }
    }
  }
}

TEST(SparseSolver, ColumnsOfARowAscend)
{
  const Model model = GridModel(5, 4, 3);
  SparseSolver solver(model.nodes, 3, TestedProcessor());
  model.Couple(solver);
  model.Assemble(solver);
  for (int i = 0; i < model.Equations(); ++i) {
    int before = -1;
    solver.GiveBlocks()->ForEachInRow(i, [&](int j, double) {
      EXPECT_LT(before, j);
      before = j;
    });
  }
}

TEST(SparseSolver, BlocksThatAreNotThoseOfTwoNodes)
{
  SparseSolver solver(2, 2, TestedProcessor());
  solver.EnterMaxDiff(1, 2, 2);
  solver.Create(2);
  solver.AddSubMatriu(1, 2, MatriuOf(1, 2, {5.0, 7.0}));    // (1,2), (1,3), (2,1), (3,1)
  solver.AddSubMatriu(2, 3, MatriuOf(2, 1, {11.0, 13.0}));  // (2,3), (3,3) twice
  const DenseRows expected = {{0, 5, 7, 0}, {5, 0, 11, 0}, {7, 11, 26, 0}, {0, 0, 0, 0}};
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j)
      EXPECT_EQ((*solver.GiveMatrix())(i, j), expected[i][j]) << i << " " << j;
}

TEST(SparseSolver, BlocksOutsideThePattern)
{
  SparseSolver solver(3, 1, TestedProcessor());
  solver.EnterMaxDiff(1, 2, 1);
  solver.Create(1);
  const Matriu one = MatriuOf(1, 1, {1.0});
  solver.AddSubMatriu(1, 1, one);
  solver.AddSubMatriu(1, 2, one);
  ExpectFatal([&] { solver.AddSubMatriu(1, 3, one); }, "Wrong Row 0 definition: Row length 2");
  for (const auto& [row, col] : Pairs{{0, 1}, {1, 0}, {4, 1}, {1, 4}})
    ExpectFatal([&, row = row, col = col] { solver.AddSubMatriu(row, col, one); },
                "Sparse Matrix accessing exception -- out of bounds.");
}

TEST(SparseSolver, ElementsOfOtherNodesAreRefused)
{
  constexpr const char* kMessage = "Sparse Matrix accessing exception -- out of bounds.";
  for (const int ndof : {1, 2, 3, 6}) {
    SparseSolver solver(3, ndof, TestedProcessor());
    solver.EnterMaxDiff(1, 3, ndof);
    solver.Create(ndof);
    const std::vector<double> values(3 * ndof * ndof, 1.0);
    for (const int node : {0, -1, 4, std::numeric_limits<int>::max()}) {
      const std::vector<int> nodes = {1, node};
      ExpectFatal([&] { solver.AddElement({nodes, ndof, values.data()}); }, kMessage);
    }
  }
}

TEST(SparseSolver, FreeSlotOfARowTakesAColumnOutsideThePattern)
{
  SparseSolver solver(3, 1, TestedProcessor());
  solver.EnterMaxDiff(1, 2, 1);
  solver.EnterMaxDiff(3, 2, 1);
  solver.Create(1);
  solver.AddSubMatriu(1, 3, MatriuOf(1, 1, {5.0}));
  solver.AddSubMatriu(1, 1, MatriuOf(1, 1, {3.0}));
  solver.AddSubMatriu(1, 1, MatriuOf(1, 1, {3.0}));
  EXPECT_EQ(solver(1, 3), 5.0);
  EXPECT_EQ(solver(3, 1), 5.0);
  EXPECT_EQ(solver(1, 1), 6.0);
  ExpectFatal([&] { solver.AddSubMatriu(1, 2, MatriuOf(1, 1, {1.0})); },
              "Wrong Row 0 definition: Row length 2");
}

TEST(SparseSolver, EntriesMustHaveBeenAddedBefore)
{
  SparseSolver solver(2, 1, TestedProcessor());
  solver.EnterMaxDiff(1, 2, 1);
  solver.Create(1);
  ExpectFatal([&] { solver(1, 2); },
              "Sparse Matrix element (0,1) not in sparse structure -- cannot assign.");
  solver.AddSubMatriu(1, 2, MatriuOf(1, 1, {4.0}));
  solver(1, 2) += 1.0;
  EXPECT_EQ(solver(1, 2), 5.0);
  EXPECT_EQ(solver(2, 1), 4.0);
  ExpectFatal([&] { solver(1, 1); },
              "Sparse Matrix element (0,0) not in sparse structure -- cannot assign.");
}

TEST(SparseSolver, SetToZeroKeepsThePattern)
{
  const Model model = GridModel(2, 2, 2);
  SparseSolver solver(4, 2, TestedProcessor());
  model.Couple(solver);
  model.Assemble(solver);
  solver.SetToZero();
  const auto& [p, q] = model.elements.front();
  EXPECT_EQ(solver(2 * p, 2 * q), 0.0);
}

TEST(SparseSolver, ConstraintReplacesItsRowOnly)
{
  const Model model = GridModel(3, 2, 2);
  SparseSolver solver = PreciseSolver(model);
  model.Couple(solver);
  model.Assemble(solver);
  ReaVecV b(12);
  b = 3.0;
  EXPECT_EQ(solver.ApplyConstraint(4, 0.25, b), 4);
  const DenseRows a = model.Dense();
  for (int i = 0; i < 12; ++i)
    for (int j = 0; j < 12; ++j) {
      const double expected = i != 3 ? a[i][j] : j == 3 ? 1.0 : 0.0;
      EXPECT_NEAR((*solver.GiveMatrix())(i, j), expected, 1e-14);
    }
  for (int i = 1; i <= 12; ++i)
    EXPECT_EQ(b(i), i == 4 ? 0.25 : 3.0);
}

TEST(SparseSolver, RowTimesVector)
{
  const Model model = GridModel(3, 3, 3);
  SparseSolver solver(9, 3, TestedProcessor());
  model.Couple(solver);
  model.Assemble(solver);
  const std::vector<double> x = RandomVector(27, 3);
  const std::vector<double> expected = DenseProduct(model.Dense(), x);
  for (int i = 1; i <= 27; ++i)
    EXPECT_NEAR(solver.ReturnRowPerVector(i, ToVector(x)), expected[i - 1], 1e-13);
}

/// Prescribed values by equation, for a solver and for a dense matrix.
struct Supports
{
  std::vector<std::pair<int, double>> prescribed;

  void Apply(BSolver& solver, ReaVecV& b) const
  {
    for (const auto& [eq, value] : prescribed)
      solver.ApplyConstraint(eq, value, b);
  }

  std::vector<double> DenseSolution(DenseRows a, std::vector<double> b) const
  {
    for (const auto& [eq, value] : prescribed) {
      std::fill(a[eq - 1].begin(), a[eq - 1].end(), 0.0);
      a[eq - 1][eq - 1] = 1.0;
      b[eq - 1] = value;
    }
    return DenseSolve(a, b);
  }
};

const Supports kSupports[] = {
    {{}},
    {{{1, 0.0}, {2, 0.0}, {3, 0.0}}},
    {{{4, 0.7}}},
    {{{1, 0.0}, {2, -0.3}, {17, 1e-3}, {18, 1e3}, {60, -2.0}}},
};

TEST(SparseSolver, SettlementsAgreeWithADenseSolution)
{
  for (const int ndof : {3, 6})
    for (const Supports& supports : kSupports)
      for (const bool loaded : {true, false}) {
        const Model model = GridModel(6, 5, ndof);
        SparseSolver solver = PreciseSolver(model);
        model.Couple(solver);
        model.Assemble(solver);
        const int n = model.Equations();
        const std::vector<double> load = loaded ? RandomVector(n, 21) : std::vector<double>(n, 0.0);
        ReaVecV b = ToVector(load);
        supports.Apply(solver, b);
        ASSERT_EQ(solver.Solver(b, nullptr), 0);
        const std::vector<double> expected = supports.DenseSolution(model.Dense(), load);
        double largest = 1e-300;
        for (const double u : expected)
          largest = std::max(largest, std::fabs(u));
        EXPECT_LE(LargestDifference(expected, Values(b)), 1e-10 * largest);
        for (const auto& [eq, value] : supports.prescribed)
          EXPECT_EQ(b(eq), value);
      }
}

// Each side goes through the same operations in both cases: every bit must agree.
TEST(SparseSolver, SeveralRightHandSidesShareOnePreconditioner)
{
  for (const int ndof : {1, 2, 3, 6}) {
    const Model model = GridModel(4, 3, ndof);
    const int supports[] = {1, 5, model.Equations()};
    const double values[][2] = {{0.01, 0.0}, {0.0, -0.02}, {0.0, 0.03}};
    std::vector<ReaVecV> sides = {ToVector(RandomVector(model.Equations(), 1)),
                                  ToVector(RandomVector(model.Equations(), 2))};
    const std::vector<ReaVecV> loads = sides;
    const std::vector<ReaVecV*> both = {&sides[0], &sides[1]};
    SparseSolver together = PreciseSolver(model);
    model.Couple(together);
    model.Assemble(together);
    for (int s = 0; s < 3; ++s)
      EXPECT_EQ(together.ApplyConstraint(supports[s], values[s], both), supports[s]);
    together.KeepPreconditioner(true);
    for (ReaVecV& side : sides) {
      ASSERT_EQ(together.Solver(side, nullptr), 0);
      EXPECT_TRUE(together.HasPreconditioner());
    }

    for (std::size_t k = 0; k < loads.size(); ++k) {
      SparseSolver alone = PreciseSolver(model);
      model.Couple(alone);
      model.Assemble(alone);
      ReaVecV b = loads[k];
      for (int s = 0; s < 3; ++s)
        alone.ApplyConstraint(supports[s], values[s][k], b);
      ASSERT_EQ(alone.Solver(b, nullptr), 0);
      EXPECT_FALSE(alone.HasPreconditioner());
      EXPECT_TRUE(std::equal(b.begin(), b.end(), sides[k].begin())) << ndof << " " << k;
    }
  }
}

TEST(SparseSolver, AKeptPreconditionerEndsWithItsMatrix)
{
  const Model model = GridModel(3, 2, 3);
  const std::vector<double> block(27, 0.0);
  Matriu number(1, 1);
  number = 1.0;
  const std::vector<int> nodes = {model.elements[0].first, model.elements[0].second};
  ReaVecV b(model.Equations());
  const std::vector<std::function<void(SparseSolver&)>> changes = {
      [](SparseSolver& solver) { solver(1, 1) = 9.0; },
      [](SparseSolver& solver) { solver.SetToZero(); },
      [&](SparseSolver& solver) { solver.AddSubMatriu(1, 1, number); },
      [&](SparseSolver& solver) {
        solver.AddElement({nodes, 3, block.data()});
      },
      [&](SparseSolver& solver) { solver.ApplyConstraint(2, 0.5, b); },
      [](SparseSolver& solver) { solver.KeepPreconditioner(false); },
  };
  for (const auto& change : changes) {
    SparseSolver solver = PreciseSolver(model);
    model.Couple(solver);
    model.Assemble(solver);
    solver.KeepPreconditioner(true);
    b = 1.0;
    ASSERT_EQ(solver.Solver(b, nullptr), 0);
    EXPECT_TRUE(solver.HasPreconditioner());
    change(solver);
    EXPECT_FALSE(solver.HasPreconditioner());
  }
}

TEST(SparseSolver, AgreesWithTheSkyline)
{
  const Model model = GridModel(8, 7, 6);
  SkyMatriu sky(model.Equations(), TestedProcessor());
  SparseSolver sparse(model.nodes, 6, 1e-10, 1e-10, 1000, TestedProcessor());
  std::vector<ReaVecV> solutions;
  for (BSolver* solver : {static_cast<BSolver*>(&sky), static_cast<BSolver*>(&sparse)}) {
    model.Couple(*solver);
    model.Assemble(*solver);
    ReaVecV b = ToVector(RandomVector(model.Equations(), 22));
    kSupports[3].Apply(*solver, b);
    (*solver)(40, 40) += 25.0;  // a spring
    EXPECT_EQ(solver->Solver(b, nullptr), 0);
    solutions.push_back(b);
  }
  for (int i = 1; i <= model.Equations(); ++i)
    EXPECT_NEAR(solutions[0](i), solutions[1](i), 1e-7 * 1e3);
}

TEST(SparseSolver, SolvesAgainOnceFilledAgain)
{
  const Model model = GridModel(4, 4, 3);
  SparseSolver solver = PreciseSolver(model);
  model.Couple(solver);
  const std::vector<double> load = RandomVector(48, 2);
  for (const Supports& supports : {kSupports[2], kSupports[0], kSupports[1]}) {
    solver.SetToZero();
    model.Assemble(solver);
    for (int round = 0; round < 2; ++round) {
      ReaVecV b = ToVector(load);
      if (round == 0)
        supports.Apply(solver, b);
      for (const auto& [eq, value] : supports.prescribed)
        b(eq) = value;
      ASSERT_EQ(solver.Solver(b, nullptr), 0);
      EXPECT_LE(LargestDifference(supports.DenseSolution(model.Dense(), load), Values(b)), 1e-10);
    }
  }
}

std::unique_ptr<double[]> ArrayOf(const std::vector<double>& x)
{
  auto array = std::make_unique<double[]>(x.size());
  std::copy(x.begin(), x.end(), array.get());
  return array;
}

TEST(SparseSolver, StartsFromTheInitialValues)
{
  const Model model = GridModel(4, 3, 3);
  const std::vector<double> load = RandomVector(36, 2);
  const Supports& supports = kSupports[2];
  const std::vector<double> solution = supports.DenseSolution(model.Dense(), load);
  for (const bool beforeCreate : {true, false}) {
    SparseSolver solver(model.nodes, 3, 1e-6, 1e-6, 1000, TestedProcessor());
    if (beforeCreate)
      solver.EnterInitialvalues(ArrayOf(solution));
    model.Couple(solver);
    model.Assemble(solver);
    ReaVecV b = ToVector(load);
    supports.Apply(solver, b);
    if (!beforeCreate) {  // the prescribed value is the one applied
      std::vector<double> start = solution;
      start[3] = 99.0;
      solver.EnterInitialvalues(ArrayOf(start));
    }
    const std::string messages =
        MessagesOf([&](std::FILE* info) { EXPECT_EQ(solver.Solver(b, info), 0); });
    EXPECT_EQ(messages.substr(0, 22), "iteration number 0 OK ");
    EXPECT_EQ(b(4), 0.7);
    EXPECT_LE(LargestDifference(solution, Values(b)), 1e-15);
  }
}

TEST(SparseSolver, NoLoadIsSolvedAtOnce)
{
  const Model model = GridModel(3, 3, 3);
  SparseSolver solver(model.nodes, 3, TestedProcessor());
  model.Couple(solver);
  model.Assemble(solver);
  ReaVecV b(27);
  b = 0.0;
  EXPECT_EQ(MessagesOf([&](std::FILE* info) { EXPECT_EQ(solver.Solver(b, info), 0); }),
            "iteration number 0 OK resid=0 tol=1e-05\n");
  EXPECT_EQ(b.modul(), 0.0);
}

/// A plate in bending by finite differences on a torus of 40 × 40 points, nearly free: 3000
/// iterations do not solve it. One more node is coupled with none: its prescribed value only adds
/// to the norm of the load, so that it sets the relative residual.
class Plate
{
public:
  Plate() : solver(kPoints * kPoints + 1, 1, TestedProcessor())
  {
    for (const bool filling : {false, true}) {
      for (int x = 0; x < kPoints; ++x)
        for (int y = 0; y < kPoints; ++y)
          for (int dx = -2; dx <= 2; ++dx)
            for (int dy = -2; dy <= 2; ++dy)
              Couple(Node(x, y), Node(x + dx, y + dy), kStar[std::abs(dx)][std::abs(dy)], filling);
      if (!filling)
        solver.Create(1);
    }
  }

  /// Solves, with the given value of the last node.
  int Solve(double value, std::FILE* info)
  {
    ReaVecV b = Load();
    solver.ApplyConstraint(b.Size(), value, b);
    return solver.Solver(b, info);
  }

  /// The value of the last node with which the relative residual reached is this one.
  double ValueFor(double residual)
  {
    ReaVecV b = Load();
    solver.ApplyConstraint(b.Size(), 0.0, b);
    int iterations = 3000;
    double reached = 0.0;
    std::vector<double> x(b.Size(), 0.0);
    CG(*solver.GiveMatrix(), x.data(), b.Data(), ILUPreconditioner(*solver.GiveEntries()),
       iterations, reached, nullptr);
    return b.modul() * std::sqrt(reached * reached / (residual * residual) - 1.0);
  }

private:
  static constexpr int kPoints = 40;
  static constexpr double kStar[3][3] = {
      {20.0 + 1e-8, -8.0, 1.0}, {-8.0, 2.0, 0.0}, {1.0, 0.0, 0.0}};

  static int Node(int x, int y)
  {
    return (x + kPoints) % kPoints * kPoints + (y + kPoints) % kPoints + 1;
  }

  void Couple(int p, int q, double value, bool filling)
  {
    if (value == 0.0 || q < p)
      return;
    if (filling)
      solver.AddSubMatriu(p, q, MatriuOf(1, 1, {value}));
    else if (p != q)
      solver.EnterMaxDiff(p, q, 1);
  }

  ReaVecV Load() const
  {
    ReaVecV b(kPoints * kPoints + 1);
    b = 0.0;
    b(1) = 1.0;
    b(kPoints * kPoints / 2) = -0.5;
    return b;
  }

  SparseSolver solver;
};

TEST(SparseSolver, DefaultLimitsAcceptAResidualUpToATenth)
{
  Plate plate;
  const double accepted = plate.ValueFor(0.05);
  const double refused = plate.ValueFor(0.2);
  ASSERT_TRUE(std::isfinite(accepted) && std::isfinite(refused));
  std::string messages =
      MessagesOf([&](std::FILE* info) { EXPECT_EQ(plate.Solve(accepted, info), 0); });
  EXPECT_NE(messages.find("tol=1e-05\nAfter 3000 Iterations, accepted tolerance of 0.050000\n"),
            std::string::npos);
  EXPECT_EQ(messages.back(), '\n');
  messages = MessagesOf([&](std::FILE* info) { EXPECT_EQ(plate.Solve(refused, info), -3000); });
  EXPECT_NE(messages.find("tol=1e-05\nNot Solved after 3000 Iterations\n"), std::string::npos);
}

TEST(SparseSolver, WithoutConvergenceTheLoadStays)
{
  const Model model = GridModel(6, 5, 3);
  static const struct
  {
    int limit, result;
  } cases[] = {{2, -2}, {1, -1}, {0, -1}, {-7, -1}};
  for (const auto& c : cases) {
    SparseSolver solver(model.nodes, 3, 1e-12, 1e-11, c.limit, TestedProcessor());
    model.Couple(solver);
    model.Assemble(solver);
    const std::vector<double> load = RandomVector(90, 2);
    ReaVecV b = ToVector(load);
    EXPECT_EQ(MessagesOf([&](std::FILE* info) { EXPECT_EQ(solver.Solver(b, info), c.result); }),
              "Not Solved after " + std::to_string(c.limit) + " Iterations\n");
    EXPECT_EQ(Values(b), load);
    EXPECT_EQ(solver.Solver(b, nullptr), c.result);
  }
}

TEST(SparseSolver, SecondToleranceDecidesAtTheLimit)
{
  const Model model = GridModel(6, 5, 3);
  const std::vector<double> load = RandomVector(90, 2);
  for (const bool accepted : {true, false}) {
    SparseSolver solver(model.nodes, 3, 1e-12, accepted ? 10.0 : 1e-12, 3, TestedProcessor());
    model.Couple(solver);
    model.Assemble(solver);
    std::vector<double> x(90, 0.0);
    int iterations = 3;
    double reached = 1e-12;
    CG(*solver.GiveMatrix(), x.data(), load.data(), BlockFactors(*solver.GiveBlocks(), {}),
       iterations, reached, nullptr);
    char line[100];
    std::snprintf(line, sizeof line, "After 3 Iterations, accepted tolerance of %lf\n", reached);
    ReaVecV b = ToVector(load);
    const std::string messages =
        MessagesOf([&](std::FILE* info) { EXPECT_EQ(solver.Solver(b, info), accepted ? 0 : -3); });
    EXPECT_EQ(messages, accepted ? line : "Not Solved after 3 Iterations\n");
    EXPECT_EQ(Values(b), accepted ? x : load);
  }
}

int Count(const std::string& text, const std::string& part)
{
  int count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
    ++count;
  return count;
}

/// ‖b − A·x‖ / ‖b‖.
double TrueResidual(const DenseRows& a, const std::vector<double>& x, const std::vector<double>& b)
{
  std::vector<double> r = DenseProduct(a, x);
  for (std::size_t i = 0; i < b.size(); ++i)
    r[i] = b[i] - r[i];
  const int n = static_cast<int>(b.size());
  return norm(r.data(), n) / norm(b.data(), n);
}

TEST(SparseSolver, StartsAgainWhereTheTrueResidualIsLarge)
{
  // The first iterates are so large that their rounding errors stay in the residual.
  const Model model = GridModel(6, 5, 3);
  SparseSolver solver(model.nodes, 3, 1e-11, 1e-11, 1000, TestedProcessor());
  model.Couple(solver);
  model.Assemble(solver);
  auto start = std::make_unique<double[]>(90);
  const std::vector<double> random = RandomVector(90, 5);
  std::transform(random.begin(), random.end(), start.get(), [](double x) { return 1e9 * x; });
  solver.EnterInitialvalues(std::move(start));
  const std::vector<double> load = RandomVector(90, 6);
  ReaVecV b = ToVector(load);
  const std::string messages =
      MessagesOf([&](std::FILE* info) { EXPECT_EQ(solver.Solver(b, info), 0); });
  const int again = Count(messages, ", starting again\n");
  EXPECT_GE(again, 1) << messages;
  EXPECT_LE(again, 3) << messages;
  EXPECT_EQ(Count(messages, "Converged it number. "), 1) << messages;
  const IterationReport& report = solver.ModelReport();
  EXPECT_TRUE(report.reached);
  EXPECT_FALSE(report.left || report.broken);
  EXPECT_LE(report.residual, 1e-10);
  EXPECT_NEAR(report.residual, TrueResidual(model.Dense(), Values(b), load), 1e-14);
  EXPECT_LE(LargestDifference(Values(b), DenseSolve(model.Dense(), load)), 1e-9);
}

TEST(SparseSolver, ADemandedErrorNeedsTheResidualThatIsClaimed)
{
  // At first, ten tolerances are above the rounding error, but the recurrence goes far below it.
  // Nearly all that the iteration adds corrects the bad start.
  const Model model = GridModel(6, 5, 3);
  for (const bool demanded : {false, true}) {
    SparseSolver solver(model.nodes, 3, 1e-6, 1e-6, 1000, TestedProcessor());
    if (demanded)
      solver.Demand({.error = 1e-20});
    model.Couple(solver);
    model.Assemble(solver);
    auto start = std::make_unique<double[]>(90);
    const std::vector<double> random = RandomVector(90, 5);
    std::transform(random.begin(), random.end(), start.get(), [](double x) { return 1e10 * x; });
    solver.EnterInitialvalues(std::move(start));
    ReaVecV b = ToVector(RandomVector(90, 6));
    const std::string messages =
        MessagesOf([&](std::FILE* info) { EXPECT_EQ(solver.Solver(b, info), 0); });
    EXPECT_TRUE(solver.ModelReport().reached);
    EXPECT_EQ(Count(messages, ", starting again\n") > 0, demanded) << messages;
    if (demanded) {
      EXPECT_LE(solver.ModelReport().residual, 1e-7);
    } else {
      EXPECT_GT(solver.ModelReport().residual, 1e-7);
    }
  }
}

TEST(SparseSolver, AToleranceOutOfReachIsJudgedByTheSecondOne)
{
  const Model model = GridModel(6, 5, 3);
  for (const bool accepted : {true, false}) {
    SparseSolver solver(model.nodes, 3, 1e-18, accepted ? 1e-12 : 1e-18, 1000, TestedProcessor());
    model.Couple(solver);
    model.Assemble(solver);
    const std::vector<double> load = RandomVector(90, 6);
    ReaVecV b = ToVector(load);
    int result = 0;
    const std::string messages =
        MessagesOf([&](std::FILE* info) { result = solver.Solver(b, info); });
    const IterationReport& report = solver.ModelReport();
    EXPECT_EQ(Count(messages, ", starting again\n"), 3) << messages;
    EXPECT_EQ(Count(messages, "Converged"), 0) << messages;
    EXPECT_FALSE(report.reached || report.left || report.broken);
    EXPECT_GT(report.residual, 1e-17);
    EXPECT_LT(report.iterations, 1000);
    EXPECT_EQ(result, accepted ? 0 : -report.iterations);
    const std::string count = std::to_string(report.iterations);
    EXPECT_TRUE(messages.ends_with(accepted ? "\nAfter " + count +
                                                  " Iterations, accepted tolerance of 0.000000\n"
                                            : "\nNot Solved after " + count + " Iterations\n"))
        << messages;
    if (!accepted) {
      EXPECT_EQ(Values(b), load);
    }
  }
}

TEST(SparseSolver, AProbeIsIteratedAlong)
{
  const Model model = GridModel(6, 5, 3);
  const DenseRows a = model.Dense();
  for (const double tolerance : {1e-2, 1e-12}) {
    SparseSolver alone(model.nodes, 3, 1e-9, 1e-9, 1000, TestedProcessor()),
        both(model.nodes, 3, 1e-9, 1e-9, 1000, TestedProcessor());
    both.EnterProbeTolerance(tolerance);
    const std::vector<double> load = RandomVector(90, 6), other = RandomVector(90, 7);
    ReaVecV b = ToVector(load), bAlone = b, probe = ToVector(other);
    for (SparseSolver* solver : {&alone, &both}) {
      model.Couple(*solver);
      model.Assemble(*solver);
    }
    EXPECT_EQ(alone.Solver(bAlone, nullptr), 0);
    EXPECT_EQ(alone.ProbeReport().iterations, 0);
    const std::string messages =
        MessagesOf([&](std::FILE* info) { EXPECT_EQ(both.Solver(b, probe, info), 0); });
    EXPECT_EQ(Values(b), Values(bAlone));
    EXPECT_EQ(both.ModelReport().iterations, alone.ModelReport().iterations);
    const IterationReport& report = both.ProbeReport();
    EXPECT_TRUE(report.reached);
    EXPECT_EQ(report.iterations<both.ModelReport().iterations, tolerance> 1e-9);
    EXPECT_LE(report.residual, 10.0 * tolerance);
    EXPECT_NEAR(report.residual, TrueResidual(a, Values(probe), other), 1e-14);
    EXPECT_GT(report.smallestQuotient, 1e-3);
    EXPECT_EQ(Count(messages, "probe: converged after " + std::to_string(report.iterations) +
                                  " iterations, resid="),
              1)
        << messages;
  }
}

/// A grid of equal springs with a full stiffness; only the first equations are held.
std::unique_ptr<SparseSolver> Springs(int held)
{
  const Model grid = GridModel(9, 8, 3);
  auto solver = std::make_unique<SparseSolver>(grid.nodes, 3, 1e-8, 0.1, 1000, TestedProcessor());
  grid.Couple(*solver);
  const Matriu own = MatriuOf(3, 3, {2.1, 0.3, 0.2, 0.3, 1.7, 0.1, 0.2, 0.1, 1.3});
  Matriu apart = own;
  apart *= -1.0;
  for (const auto& [p, q] : grid.elements) {
    solver->AddSubMatriu(3 * p - 2, 3 * p - 2, own);
    solver->AddSubMatriu(3 * p - 2, 3 * q - 2, apart);
    solver->AddSubMatriu(3 * q - 2, 3 * q - 2, own);
  }
  ReaVecV none(grid.Equations());
  for (int k = 1; k <= held; ++k)
    solver->ApplyConstraint(k, 0.0, none);
  return solver;
}

TEST(SparseSolver, AProbeShowsThatAStructureCanMove)
{
  for (const int held : {0, 1, 2, 3}) {
    const std::unique_ptr<SparseSolver> solver = Springs(held);
    solver->Demand({.quotient = IterationDemands::kLeastQuotient});
    ReaVecV b(216), probe = ToVector(RandomVector(216, 8));
    b = 0.0;
    b(10) = 1.0;  // a pair of forces, which needs no support
    b(100) = -1.0;
    for (int k = 1; k <= held; ++k)
      probe(k) = 0.0;
    const int result = solver->Solver(b, probe, nullptr);
    const IterationReport& report = solver->ProbeReport();
    EXPECT_EQ(report.reached, held == 3) << held;
    if (held == 3) {
      EXPECT_EQ(result, 0);
      EXPECT_GT(report.smallestQuotient, 1e-4);
    } else {
      EXPECT_TRUE(report.broken || report.left) << held;
      EXPECT_LT(report.smallestQuotient, IterationDemands::kLeastQuotient) << held;
      EXPECT_TRUE(result < 0 || solver->ModelReport().reached) << held;
    }
  }
}

TEST(SparseSolver, IteratesUntilTheErrorIsAsSmallAsDemanded)
{
  int before = 0;
  for (const double error : {1.0, 1e-6, 1e-9}) {
    const std::unique_ptr<SparseSolver> solver = Springs(3);
    solver->Demand({.error = error});
    ReaVecV b(216);
    b = 1.0;
    for (int k = 1; k <= 3; ++k)
      b(k) = 0.0;
    EXPECT_EQ(solver->Solver(b, nullptr), 0);
    EXPECT_LE(solver->ModelReport().error, error);
    EXPECT_GT(solver->ModelReport().iterations, before);
    before = solver->ModelReport().iterations;
  }
}

TEST(SparseSolver, BreakdownsReturnMinusOneAndLeaveTheLoad)
{
  const Model model = GridModel(4, 3, 2);
  const auto broken = [&](int i, int j, double value, double load) {
    SparseSolver solver(model.nodes, 2, TestedProcessor());
    model.Couple(solver);
    model.Assemble(solver);
    solver(i, j) = value;
    ReaVecV b(24);
    b = 1.0;
    b(24) = load;
    EXPECT_EQ(MessagesOf([&](std::FILE* info) { EXPECT_EQ(solver.Solver(b, info), -1); }), "");
    EXPECT_EQ(b(1), 1.0);
  };
  broken(1, 1, 0.0, 1.0);
  broken(5, 5, kNaN, 1.0);
  broken(5, 6, kNaN, 1.0);
  broken(5, 5, std::numeric_limits<double>::infinity(), 1.0);
  broken(1, 1, 1.0, kNaN);
}

TEST(SparseSolver, MatrixOfNaNBreaksDown)
{
  SparseSolver solver(2, 1, TestedProcessor());
  solver.EnterMaxDiff(1, 2, 1);
  solver.Create(1);
  for (const auto& [row, col] : Pairs{{1, 1}, {1, 2}, {2, 2}})
    solver.AddSubMatriu(row, col, MatriuOf(1, 1, {kNaN}));
  ReaVecV b(2);
  b = 1.0;
  EXPECT_EQ(solver.Solver(b, nullptr), -1);
}

TEST(SparseSolver, NodeWithoutElements)
{
  for (const bool supported : {true, false}) {
    SparseSolver solver(3, 2, 1e-12, 1e-12, 100, TestedProcessor());
    solver.EnterMaxDiff(1, 3, 2);
    solver.Create(2);
    for (const auto& [row, col] : Pairs{{1, 1}, {1, 5}, {5, 5}})
      solver.AddSubMatriu(
          row, col,
          MatriuOf(2, 2,
                   row == col ? std::vector<double>{4, 1, 1, 4} : std::vector<double>{1, 0, 0, 1}));
    ReaVecV b(6);
    b = 6.0;
    if (supported) {
      solver.ApplyConstraint(3, 0.5, b);
      solver.ApplyConstraint(4, 0.0, b);
    }
    EXPECT_EQ(solver.Solver(b, nullptr), supported ? 0 : -1);
    if (!supported)
      continue;
    const double expected[] = {1.0, 1.0, 0.5, 0.0, 1.0, 1.0};
    for (int i = 1; i <= 6; ++i)
      EXPECT_NEAR(b(i), expected[i - 1], 1e-12);
  }
}

TEST(SparseSolver, PrintsItsRows)
{
  SparseSolver solver(2, 1, TestedProcessor());
  solver.EnterMaxDiff(1, 2, 1);
  solver.Create(1);
  solver.AddSubMatriu(1, 2, MatriuOf(1, 1, {-1.5}));
  solver.AddSubMatriu(2, 2, MatriuOf(1, 1, {4.0}));
  EXPECT_EQ(Printed([&](std::ofstream& out) { solver.PrintTo(out); }),
            "\nprinting Sparse Matrix size=2x2\n    2:-1.5\n    1:-1.5    2:4\n");
}

TEST(SparseSolver, DenseCopyAndPictureAreNotAvailable)
{
  SparseSolver solver(1, 1, TestedProcessor());
  solver.Create(1);
  Matriu m;
  ExpectFatal([&] { solver.CopyFromYouToMat(m); },
              "error SparseSolver::CopyFromYouToMat not implemented\n");
  EXPECT_EQ(m.Size(), 0);
  EXPECT_EQ(Printed([&](std::ofstream& out) {
              ExpectFatal([&] { solver.WriteForKiv(out, out); },
                          "error SparseSolver::WriteForKiv not implemented\n");
            }),
            "");
}

}  // namespace

}  // namespace morlen
