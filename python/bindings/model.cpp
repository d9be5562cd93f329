#include "model.h"

#include <algorithm>
#include <iterator>

#include "assembly/analysis.h"
#include "assembly/solution_image.h"
#include "base/byte_archive.h"
#include "base/textscan.h"
#include "problem/problem_image.h"
#include "problem/problem_reader.h"
#include "results/strengths.h"
#include "run/element_families.h"

namespace morlen::python {

namespace {

constexpr std::size_t kHead = 1 << 14;

constexpr const char* kSolvers[] = {"Automatic", "SkyLine", "Sparse", "Double", "Direct"};

}  // namespace

Model::Model(std::string_view text) : head(text.substr(0, kHead))
{
  TextScan scan(text);
  ReadProblem(scan, problem);
}

Model::Model(std::span<const char> image, std::string head_) : head(std::move(head_))
{
  ReadImage(image, problem);
}

Bytes Model::Image()
{
  return With([](const Problem& current) {
    RecomposeMaterials(current);
    return ImageOf(current);
  });
}

const char* NameOf(SolverType type)
{
  return kSolvers[static_cast<int>(type)];
}

std::optional<SolverType> SolverOf(std::string_view name)
{
  const auto* found = std::find_if(std::begin(kSolvers), std::end(kSolvers),
                                   [name](const char* known) { return EqualsNoCase(name, known); });
  if (found == std::end(kSolvers))
    return {};
  return SolverType(found - std::begin(kSolvers));
}

std::shared_ptr<Solved> Solve(Model& model, std::optional<SolverType> solver, std::FILE* info)
{
  auto analysis =
      std::make_shared<Analysis>(std::make_shared<const Bytes>(model.Image()), model.Head());
  Problem& problem = analysis->problem;
  ReadImage(*analysis->modelImage, problem);
  if (solver)
    problem.solverSettings.type = *solver;
  const ElementFamilies& families = FamiliesOf(problem);
  Analysed analysed = Analyse(problem, families, {.info = info, .kit = Kit()});
  analysed.solver.reset();  // frees the memory of the matrix for the results
  auto solved = std::make_shared<Solved>(Solved{analysis, std::move(analysed.solutions.front())});
  CalcStrengthsAndReactions(problem, families, solved->solution, info, Kit());
  analysis->solver = problem.solverSettings.type;
  return solved;
}

Bytes StateOf(const Solved& solved)
{
  const Analysis& analysis = *solved.analysis;
  Bytes state;
  BytePutter put(state);
  put(*analysis.modelImage);
  put(analysis.head);
  put(analysis.solver);
  put(analysis.isCase);
  solved.With([&](const Problem& problem, const Solution& solution) {
    put(ImageOf(problem));
    put(ImageOf(solution));
  });
  return state;
}

std::shared_ptr<Solved> SolvedOf(std::span<const char> state)
{
  ByteGetter get(state);
  Bytes image;
  get(image);
  std::string head;
  get(head);
  auto analysis = std::make_shared<Analysis>(std::make_shared<const Bytes>(std::move(image)), head);
  get(analysis->solver);
  get(analysis->isCase);
  Bytes prepared;
  get(prepared);
  ReadImage(prepared, analysis->problem);
  Bytes solution;
  get(solution);
  auto solved = std::make_shared<Solved>(Solved{std::move(analysis), {}});
  ReadImage(solution, solved->solution);
  return solved;
}

}  // namespace morlen::python
