// The skyline factorisation and CHOLMOD on the same matrix, that of a model with its supports, on
// one thread:
//
//   morlen_cholmod problem.dat ...
//
// The median processor times of both are printed as a line of JSON for each file, from which
// report.py makes a table. Fails when a model is not solved by the skyline solver, or when the
// solutions differ.

#include <cholmod.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "assembly/load_vector.h"
#include "assembly/solve.h"
#include "assembly/support_axes.h"
#include "measure.h"
#include "model/mesh.h"
#include "run/element_families.h"
#include "run/project.h"
#include "solvers/skymatriu.h"

using namespace morlen;

namespace {

constexpr int kRepetitions = 5;
constexpr double kLargestDifference = 1e-6;  ///< relative to the largest displacement

/// A system of equations by the entries of the upper triangle: column by column, rows ascending,
/// all from 0.
struct System
{
  std::vector<int> starts{0};
  std::vector<int> rows;
  std::vector<double> values;
  ReaVecV loads;

  int Size() const { return static_cast<int>(starts.size()) - 1; }
};

/// The entries that CHOLMOD gets.
enum class Pattern
{
  kNonZeros,  ///< entries other than 0
  kBlocks     ///< whole blocks of coupled nodes, including zeros
};

/// Picks the entries of an assembled matrix.
class EntryPicker
{
public:
  EntryPicker(SkyMatriu& assembled, int ndof_, Pattern wanted)
      : matrix(assembled),
        ndof(ndof_),
        pattern(wanted),
        coupled(static_cast<std::size_t>(matrix.GiveSize())),
        held(coupled.size(), true)
  {
    ForEachEntry([&](int i, int j, double value) {
      if (i != j && value != 0.0)
        held[i - 1] = held[j - 1] = false;
    });
  }

  System Copy(const ReaVecV& loads)
  {
    System system;
    system.loads = loads;
    for (int j = 1; j <= matrix.GiveSize(); ++j) {
      if ((j - 1) % ndof == 0)
        FindCoupledNodes(j);
      ForEachInColumn(j, [&](int i, int, double value) {
        if (!IsWanted(i, j, value))
          return;
        system.rows.push_back(i - 1);
        system.values.push_back(value);
      });
      system.starts.push_back(static_cast<int>(system.rows.size()));
    }
    return system;
  }

private:
  template <class Visit>
  void ForEachInColumn(int j, Visit visit)
  {
    for (int i = j - matrix.GiveHeight(j) + 1; i <= j; ++i)
      visit(i, j, matrix.val(i, j));
  }

  template <class Visit>
  void ForEachEntry(Visit visit)
  {
    for (int j = 1; j <= matrix.GiveSize(); ++j)
      ForEachInColumn(j, visit);
  }

  /// Finds the nodes that are coupled with the one whose first equation is given.
  void FindCoupledNodes(int first)
  {
    std::fill(coupled.begin(), coupled.end(), false);
    for (int j = first; j < first + ndof; ++j)
      ForEachInColumn(j, [&](int i, int, double value) {
        if (value != 0.0)
          coupled[(i - 1) / ndof] = true;
      });
  }

  bool IsWanted(int i, int j, double value) const
  {
    if (value != 0.0)
      return true;
    return pattern == Pattern::kBlocks && coupled[(i - 1) / ndof] && !held[i - 1] && !held[j - 1];
  }

  SkyMatriu& matrix;
  int ndof;
  Pattern pattern;
  std::vector<bool> coupled;  ///< by node: coupled with the one whose columns are being copied
  std::vector<bool> held;     ///< by equation: only the diagonal is not 0, as at a support
};

/// Assembles the matrix with the supports of a model after its analysis. Returns the right-hand
/// side.
ReaVecV Assemble(const Problem& problem, SkyMatriu& matrix)
{
  const VoidPlex& nodes = problem.GiveNodes();
  matrix.SetToZero();
  AddStiffness({problem, FamiliesOf(problem), nullptr}, matrix);
  std::vector<ReaVecV> sides = {AppliedLoads(problem, FamiliesOf(problem))};
  ConvertGlobalLoadToLocal(nodes, sides.front(), problem.components.count);
  ApplySupports(nodes, problem.components, matrix, sides);
  return sides.front();
}

void Refill(SkyMatriu& matrix, const System& system)
{
  matrix.SetToZero();
  for (int j = 0; j < system.Size(); ++j)
    for (int k = system.starts[j]; k < system.starts[j + 1]; ++k)
      matrix.val(system.rows[k] + 1, j + 1) = system.values[k];
}

/// Processor seconds of the steps of one solution.
using Times = std::vector<double>;

/// The solution by CHOLMOD with its defaults: it chooses the ordering and the kind of
/// factorisation.
class CholmodSolver
{
public:
  CholmodSolver() { cholmod_start(&common); }
  CholmodSolver(const CholmodSolver&) = delete;
  CholmodSolver& operator=(const CholmodSolver&) = delete;
  ~CholmodSolver() { cholmod_finish(&common); }

  /// Times: analysis, factorisation, solution. The solution is 0 when CHOLMOD fails.
  std::vector<double> Solve(System& system, Times& times)
  {
    cholmod_sparse matrix = MatrixOf(system);
    cholmod_dense loads = VectorOf(system);
    cholmod_factor* factor = nullptr;
    cholmod_dense* solution = nullptr;
    times = {Seconds(1, [&] { factor = cholmod_analyze(&matrix, &common); }),
             Seconds(1, [&] { cholmod_factorize(&matrix, factor, &common); }),
             Seconds(1, [&] { solution = cholmod_solve(CHOLMOD_A, factor, &loads, &common); })};
    std::vector<double> x(static_cast<std::size_t>(system.Size()));
    if (solution && common.status == CHOLMOD_OK)
      std::copy_n(static_cast<const double*>(solution->x), x.size(), x.begin());
    cholmod_free_dense(&solution, &common);
    cholmod_free_factor(&factor, &common);
    return x;
  }

private:
  static cholmod_sparse MatrixOf(System& system)
  {
    cholmod_sparse matrix{};
    matrix.nrow = matrix.ncol = static_cast<std::size_t>(system.Size());
    matrix.nzmax = system.values.size();
    matrix.p = system.starts.data();
    matrix.i = system.rows.data();
    matrix.x = system.values.data();
    matrix.stype = 1;  // symmetric, by its upper triangle
    matrix.itype = CHOLMOD_INT;
    matrix.xtype = CHOLMOD_REAL;
    matrix.dtype = CHOLMOD_DOUBLE;
    matrix.sorted = matrix.packed = 1;
    return matrix;
  }

  static cholmod_dense VectorOf(System& system)
  {
    cholmod_dense vector{};
    vector.nrow = vector.nzmax = vector.d = static_cast<std::size_t>(system.Size());
    vector.ncol = 1;
    vector.x = system.loads.Data();
    vector.xtype = CHOLMOD_REAL;
    vector.dtype = CHOLMOD_DOUBLE;
    return vector;
  }

  cholmod_common common;
};

/// The largest difference relative to the largest value of `expected`.
double Difference(const ReaVecV& values, const std::vector<double>& expected)
{
  double largest = 0.0, difference = 0.0;
  for (int i = 0; i < values.Size(); ++i) {
    largest = std::max(largest, std::fabs(expected[i]));
    difference = std::max(difference, std::fabs(values.Data()[i] - expected[i]));
  }
  return largest > 0.0 ? difference / largest : HUGE_VAL;
}

/// The solution by the skyline solver. Times: factorisation, substitutions.
ReaVecV SolveBySkyline(SkyMatriu& matrix, const System& system, Times& times)
{
  Refill(matrix, system);
  ReaVecV x = system.loads;
  times = {Seconds(1, [&] { matrix.Txolesky(nullptr); }),
           Seconds(1, [&] { matrix.Substitute({&x}, nullptr); })};
  return x;
}

Times MedianOf(const std::vector<Times>& runs)
{
  Times medians;
  for (std::size_t step = 0; step < runs.front().size(); ++step) {
    std::vector<double> seconds;
    for (const Times& run : runs)
      seconds.push_back(run[step]);
    medians.push_back(Median(seconds));
  }
  return medians;
}

/// The skyline solver and CHOLMOD on the system of one model.
class Comparison
{
public:
  explicit Comparison(std::string fileName) : file(std::move(fileName)) {}

  /// False when the model is not solved by skyline, or the solutions differ.
  bool Run();

private:
  void Analyse();
  void Repeat();
  void PrintJson() const;

  std::string file;
  Project project{100};  ///< after the analysis, with a matrix of the same profile
  double renumbering = 0.0;
  System system;          ///< without zeros
  System blocks;          ///< with the zeros in the blocks of coupled nodes
  Times ours;             ///< median times
  Times theirs;           ///< the same for the system without zeros
  Times theirsByBlocks;   ///< the same for the system with zeros
  double difference = 0;  ///< of the solutions
};

/// Solves the model, and assembles its system again if the skyline solver was used.
void Comparison::Analyse()
{
  const Problem& problem = project.problem;
  std::ifstream in(file);
  project.ReadFromAscii(in);
  renumbering = Seconds(1, [&] { problem.meshes.front()->RenumberNodes(); });
  project.Calc(0, nullptr);
  if (problem.solverSettings.type != SolverType::SkyLine)
    return;
  SkyMatriu& matrix = static_cast<SkyMatriu&>(*project.solver);
  const ReaVecV loads = Assemble(problem, matrix);
  const int ndof = problem.components.count;
  system = EntryPicker(matrix, ndof, Pattern::kNonZeros).Copy(loads);
  blocks = EntryPicker(matrix, ndof, Pattern::kBlocks).Copy(loads);
}

/// Runs the solvers in turn, so that a busy machine slows all of them. The first turn is a warm-up.
void Comparison::Repeat()
{
  SkyMatriu& matrix = static_cast<SkyMatriu&>(*project.solver);
  CholmodSolver cholmod;
  std::vector<Times> skyline(kRepetitions + 1);
  std::vector<Times> byEntries = skyline;
  std::vector<Times> byBlocks = skyline;
  for (int k = 0; k <= kRepetitions; ++k) {
    const ReaVecV x = SolveBySkyline(matrix, system, skyline[k]);
    difference = std::max({difference, Difference(x, cholmod.Solve(system, byEntries[k])),
                           Difference(x, cholmod.Solve(blocks, byBlocks[k]))});
  }
  for (std::vector<Times>* runs : {&skyline, &byEntries, &byBlocks})
    runs->erase(runs->begin());
  ours = MedianOf(skyline);
  theirs = MedianOf(byEntries);
  theirsByBlocks = MedianOf(byBlocks);
}

/// Prints one object of JSON in one line, for report.py.
void Comparison::PrintJson() const
{
  std::printf("{\"model\": \"%s\", \"equations\": %d, \"entries\": %d, \"entries_in_blocks\": %d, ",
              std::filesystem::path(file).stem().c_str(), system.Size(), system.starts.back(),
              blocks.starts.back());
  std::printf("\"difference\": %.3g, \"renumber\": %.6g, ", difference, renumbering);
  std::printf("\"skyline\": [%.6g, %.6g], ", ours[0], ours[1]);
  std::printf("\"cholmod\": [%.6g, %.6g, %.6g], ", theirs[0], theirs[1], theirs[2]);
  std::printf("\"cholmod_blocks\": [%.6g, %.6g, %.6g]}\n", theirsByBlocks[0], theirsByBlocks[1],
              theirsByBlocks[2]);
  std::fflush(stdout);
}

bool Comparison::Run()
{
  Analyse();
  if (system.Size() == 0) {
    std::fprintf(stderr, "%s: not solved by skyline\n", file.c_str());
    return false;
  }
  Repeat();
  PrintJson();
  if (difference <= kLargestDifference)
    return true;
  std::fprintf(stderr, "%s: the solutions differ\n", file.c_str());
  return false;
}

/// Starts the program again with one thread for the libraries, which read the variables when they
/// are loaded. CHOLMOD always asks for four threads, so that it needs the limit too.
void RunOnOneThread(char** argv)
{
  if (std::getenv("OMP_THREAD_LIMIT"))
    return;
  for (const char* name : {"OPENBLAS_NUM_THREADS", "OMP_NUM_THREADS", "OMP_THREAD_LIMIT"})
    setenv(name, "1", 1);
  execv("/proc/self/exe", argv);
}

}  // namespace

int main(int argc, char** argv)
{
  if (argc < 2) {
    std::fprintf(stderr, "usage: morlen_cholmod problem.dat ...\n");
    return 2;
  }
  RunOnOneThread(argv);
  bool allRan = true;
  for (int k = 1; k < argc; ++k)
    allRan = Comparison(argv[k]).Run() && allRan;
  return allRan ? 0 : 1;
}
