#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "assembly/solution.h"
#include "assembly/solver_account.h"
#include "assembly/solver_kit.h"
#include "base/byte_archive.h"
#include "model/elem.h"
#include "problem/load_set.h"
#include "problem/problem.h"

namespace morlen::python {

using Bytes = std::vector<char>;

/// The solvers of this build.
const SolverKit& Kit();

/// The source of a model.
struct Origin
{
  std::string head;  ///< the beginning of the problem file, which describes the model
  std::vector<std::filesystem::path> files;  ///< that were read, absolute: no result replaces them
};

/// A model as it was read: analyses work on copies. All members lock it.
class Model
{
public:
  /// Reads the text of a problem file. Fatal on the first error. files: see Origin.
  explicit Model(std::string_view text, std::vector<std::filesystem::path> files = {});
  /// A model from ImageOf.
  Model(std::span<const char> image, Origin origin);
  Model(const Model&) = delete;
  Model& operator=(const Model&) = delete;

  /// The model as it is now, with changed materials.
  Bytes Image();
  const Origin& Source() const { return origin; }

  /// Calls use(problem) while no other thread works on the problem.
  template <class Use>
  auto With(Use use)
  {
    const std::lock_guard<std::mutex> alone(busy);
    return use(problem);
  }

private:
  Problem problem{100};
  std::mutex busy;
  Origin origin;
};

/// A model after its analysis, shared by the solutions of its load cases.
struct Analysis
{
  /// prepared: the problem, prepared or to be prepared.
  Analysis(Bytes modelImage_, Origin origin_,
           std::unique_ptr<Problem> prepared = std::make_unique<Problem>(100))
      : owner(std::move(prepared)),
        problem(*owner),
        modelImage(std::move(modelImage_)),
        origin(std::move(origin_))
  {
  }

  std::unique_ptr<Problem> owner;
  Problem& problem;  ///< prepared
  std::mutex busy;   ///< of the containers of the problem
  Bytes modelImage;  ///< before the analysis
  Origin origin;
  SolverType solver = SolverType::Automatic;  ///< that was used
  SolverAccount account = {};                 ///< empty for load cases
  bool isCase = false;                        ///< of a file of load cases: the model has no loads
};

/// The results for one load case.
struct Solved
{
  std::shared_ptr<Analysis> analysis;
  Solution solution;
  /// Along the beams of the case, for a problem without loads; null when the problem has its loads.
  std::shared_ptr<LoadSet> loads = nullptr;

  /// Calls use(problem, solution) while no other thread works on the problem.
  template <class Use>
  auto With(Use use) const
  {
    const std::lock_guard<std::mutex> alone(analysis->busy);
    std::optional<LoadsInPlace> inPlace;
    if (loads)
      inPlace.emplace(analysis->problem, *loads);
    return use(static_cast<const Problem&>(analysis->problem), solution);
  }
};

/// "Automatic", "SkyLine", "Sparse", "Double", "Direct".
const char* NameOf(SolverType type);
/// None for another name. Upper and lower case are equal.
std::optional<SolverType> SolverOf(std::string_view name);

/// Analyses a copy of the model. solver: none takes that of the problem file. info: progress, may
/// be null.
std::shared_ptr<Solved> Solve(Model& model, std::optional<SolverType> solver, std::FILE* info);

/// A model as bytes, and back. ModelOf is fatal for other bytes.
Bytes StateOf(Model& model);
std::shared_ptr<Model> ModelOf(std::span<const char> state);

/// Results as bytes, and back. SolvedOf is fatal for other bytes.
Bytes StateOf(const Solved& solved);
std::shared_ptr<Solved> SolvedOf(std::span<const char> state);

/// The parts of such bytes that do not depend on the load case.
void PutAnalysis(const Analysis& analysis, BytePutter& put);
std::shared_ptr<Analysis> GetAnalysis(ByteGetter& get);

}  // namespace morlen::python
