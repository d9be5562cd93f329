#include "model.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "assembly/analysis.h"
#include "assembly/solution_image.h"
#include "base/textscan.h"
#include "problem/problem_image.h"
#include "problem/problem_reader.h"
#include "results/strengths.h"
#include "run/element_families.h"

namespace morlen::python {

namespace {

constexpr std::size_t kHead = 1 << 14;

constexpr const char* kSolvers[] = {"Automatic", "SkyLine", "Sparse", "Double", "Direct"};

void PutOrigin(const Origin& origin, BytePutter& put)
{
  put(origin.head);
  put(origin.files.size());
  for (const std::filesystem::path& file : origin.files)
    put(file.native());
}

Origin GetOrigin(ByteGetter& get)
{
  Origin origin;
  get(origin.head);
  origin.files.resize(get.GetCount(sizeof(std::size_t)));
  for (std::filesystem::path& file : origin.files) {
    std::string name;
    get(name);
    file = name;
  }
  return origin;
}

}  // namespace

Model::Model(std::string_view text, std::vector<std::filesystem::path> files)
    : origin{std::string(text.substr(0, kHead)), std::move(files)}
{
  TextScan scan(text);
  ReadProblem(scan, problem);
}

Model::Model(std::span<const char> image, Origin origin_) : origin(std::move(origin_))
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
  auto analysis = std::make_shared<Analysis>(model.Image(), model.Source());
  Problem& problem = analysis->problem;
  ReadImage(analysis->modelImage, problem);
  if (solver)
    problem.solverSettings.type = *solver;
  const ElementFamilies& families = FamiliesOf(problem);
  Analysed analysed = Analyse(problem, families, {.info = info, .kit = Kit()});
  analysed.solver.reset();  // frees the memory of the matrix for the results
  auto solved = std::make_shared<Solved>(Solved{analysis, std::move(analysed.solutions.front())});
  CalcStrengthsAndReactions(problem, families, solved->solution, info, Kit());
  analysis->solver = problem.solverSettings.type;
  analysis->account = std::move(analysed.account);
  if (solver && *solver != SolverType::Automatic)
    analysis->account.reason = "the call of solve asks for it";
  return solved;
}

Bytes StateOf(Model& model)
{
  Bytes state;
  BytePutter put(state);
  put(model.Image());
  PutOrigin(model.Source(), put);
  return state;
}

std::shared_ptr<Model> ModelOf(std::span<const char> state)
{
  ByteGetter get(state);
  Bytes image;
  get(image);
  Origin origin = GetOrigin(get);
  if (!get.AtEnd())
    RefuseBytes();
  return std::make_shared<Model>(image, std::move(origin));
}

void PutAnalysis(const Analysis& analysis, BytePutter& put)
{
  put(analysis.modelImage);
  PutOrigin(analysis.origin, put);
  put(analysis.solver);
  put(analysis.isCase);
  put(analysis.account.solver);
  put(analysis.account.reason);
  put(analysis.account.iterations);
  put(ImageOf(analysis.problem));
}

std::shared_ptr<Analysis> GetAnalysis(ByteGetter& get)
{
  Bytes modelImage;
  get(modelImage);
  auto analysis = std::make_shared<Analysis>(std::move(modelImage), GetOrigin(get));
  get(analysis->solver);
  get(analysis->isCase);
  get(analysis->account.solver);
  get(analysis->account.reason);
  get(analysis->account.iterations);
  Bytes prepared;
  get(prepared);
  ReadImage(prepared, analysis->problem);
  return analysis;
}

Bytes StateOf(const Solved& solved)
{
  Bytes state;
  BytePutter put(state);
  solved.With([&](const Problem&, const Solution& solution) {
    PutAnalysis(*solved.analysis, put);
    put(ImageOf(solution));
  });
  return state;
}

std::shared_ptr<Solved> SolvedOf(std::span<const char> state)
{
  ByteGetter get(state);
  auto solved = std::make_shared<Solved>(Solved{GetAnalysis(get), {}});
  Bytes solution;
  get(solution);
  if (!get.AtEnd())
    RefuseBytes();
  ReadImage(solution, solved->solution);
  return solved;
}

}  // namespace morlen::python
