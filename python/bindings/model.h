#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "assembly/solution.h"
#include "assembly/solver_kit.h"
#include "model/elem.h"
#include "problem/load_set.h"
#include "problem/problem.h"

namespace morlen::python {

using Bytes = std::vector<char>;

/// The solvers of this build.
const SolverKit& Kit();

/// A model as it was read: analyses work on copies. All members lock it.
class Model
{
public:
  /// Reads the text of a problem file. Fatal on the first error.
  explicit Model(std::string_view text);
  /// A model from ImageOf and the beginning of its text.
  Model(std::span<const char> image, std::string head);
  Model(const Model&) = delete;
  Model& operator=(const Model&) = delete;

  /// The model as it is now, with changed materials.
  Bytes Image();
  /// The beginning of the problem file, which describes the model.
  const std::string& Head() const { return head; }

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
  std::string head;
};

/// A model after its analysis, shared by the solutions of its load cases.
struct Analysis
{
  /// prepared: the problem to be prepared.
  Analysis(std::shared_ptr<const Bytes> modelImage_, std::string head_,
           std::shared_ptr<Problem> prepared = std::make_shared<Problem>(100))
      : owner(std::move(prepared)),
        problem(*owner),
        modelImage(std::move(modelImage_)),
        head(std::move(head_))
  {
  }

  std::shared_ptr<Problem> owner;
  Problem& problem;                         ///< prepared
  std::mutex busy;                          ///< of the containers of the problem
  std::shared_ptr<const Bytes> modelImage;  ///< before the analysis
  std::string head;
  SolverType solver = SolverType::Automatic;  ///< that was used
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

/// Results as bytes, and back.
Bytes StateOf(const Solved& solved);
std::shared_ptr<Solved> SolvedOf(std::span<const char> state);

}  // namespace morlen::python
