// The part of the module with load cases.

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "arrays.h"
#include "binding.h"
#include "cases.h"

namespace morlen::python {

namespace {

/// A file of load cases before its analysis, which uses it up.
struct CaseReader
{
  std::unique_ptr<cases::Study> study;
};

std::shared_ptr<CaseReader> Read(const std::string& file, const py::bytes& text)
{
  const std::string_view content = text;
  Session session(HandleSignals);
  try {
    auto reader =
        Unlocked([&] { return std::make_shared<CaseReader>(CaseReader{ReadCases(file, content)}); },
                 Nowhere);
    IssueWarnings(session);
    return reader;
  } catch (const RefusedCases& refused) {
    RaiseError(refused.error, refused.place);
  }
}

using Factors = std::vector<std::pair<std::string, double>>;

/// Names and titles of the cases; combinations with their factors; envelopes with their members.
py::tuple Content(const CaseReader& reader)
{
  const cases::Study& study = *reader.study;
  const auto nameOf = [&](int index) { return ToUtf8(study.combinations[index].name); };
  py::list names, titles, combinations, envelopes;
  for (int k = 0; k < study.cases; ++k) {
    names.append(nameOf(k));
    titles.append(ToUtf8(study.titles[k]));
  }
  for (const Combination& one : study.combinations) {
    py::dict factors;
    for (const CaseFactor& factor : one.factors)
      factors[py::str(nameOf(factor.index))] = factor.factor;
    combinations.append(py::make_tuple(ToUtf8(one.name), factors));
  }
  for (const cases::Envelope& one : study.envelopes) {
    py::list members;
    for (const int member : one.members)
      members.append(nameOf(member));
    envelopes.append(py::make_tuple(ToUtf8(one.name), members));
  }
  return py::make_tuple(names, titles, combinations, envelopes);
}

std::shared_ptr<CaseResults> SolveCases(CaseReader& reader,
                                        const std::optional<std::string>& solver,
                                        const py::object& progress)
{
  if (!reader.study)
    throw py::value_error("the cases have been solved already");
  RequireSolver(solver);  // before the study is used up
  return RunAnalysis(solver, progress, [&](std::optional<SolverType> type, std::FILE* info) {
    return std::make_shared<CaseResults>(std::move(reader.study), type, info);
  });
}

template <class List>
int IndexOf(const List& list, const std::string& name, const char* kind)
{
  const auto found = std::find_if(list.begin(), list.end(),
                                  [&](const auto& one) { return ToUtf8(one.name) == name; });
  if (found == list.end())
    throw py::key_error("no " + std::string(kind) + " '" + name + "'");
  return static_cast<int>(found - list.begin());
}

std::shared_ptr<Solved> ResultsOfName(const CaseResults& all, const std::string& name)
{
  const int index = IndexOf(all.Combinations(), name, "case or combination");
  return Run([&] { return ResultsOf(all, index); });
}

ValueKind KindOf(const std::string& name)
{
  static const std::map<std::string, ValueKind> kinds = {
      {"displacements", ValueKind::Displacements},
      {"reactions", ValueKind::Reactions},
      {"beams", ValueKind::BeamForces},
      {"shells", ValueKind::ShellForces},
      {"solids", ValueKind::SolidStresses}};
  return kinds.at(name);
}

template <class T>
py::array ArrayOf(const std::vector<T>& values, const Shape& shape)
{
  py::array_t<T> array(shape);
  std::copy(values.begin(), values.end(), array.mutable_data());
  return ReadOnly(std::move(array));
}

py::tuple EnvelopeOf(const CaseResults& all, const std::string& name, const std::string& kind)
{
  const cases::Envelope& envelope = all.Envelopes()[IndexOf(all.Envelopes(), name, "envelope")];
  const EnvelopeTable table = Run([&] { return TableOf(all, envelope, KindOf(kind)); });
  const auto count = static_cast<py::ssize_t>(table.numbers.size());
  const Shape shape = {count, table.points, table.width};
  return py::make_tuple(ArrayOf(table.numbers, {count}), ArrayOf(table.minimum, shape),
                        ArrayOf(table.maximum, shape), ArrayOf(table.minimumBy, shape),
                        ArrayOf(table.maximumBy, shape));
}

}  // namespace

void DefineCases(py::module_& module)
{
  py::class_<CaseReader, std::shared_ptr<CaseReader>>(module, "Cases", "A file of load cases.")
      .def("content", &Content)
      .def("solve", &SolveCases, py::arg("solver"), py::arg("progress"));
  py::class_<CaseResults, std::shared_ptr<CaseResults>>(module, "CaseResults",
                                                        "The results of load cases.")
      .def("results", &ResultsOfName, py::arg("name"))
      .def("envelope", &EnvelopeOf, py::arg("name"), py::arg("kind"))
      .def("solver", [](const CaseResults& all) { return NameOf(all.Common()->solver); })
      .def("components",
           [](const CaseResults& all) { return all.Common()->problem.components.count; })
      .def("is_plane",
           [](const CaseResults& all) { return all.Common()->problem.problemType == kPlane; })
      .def("has_solids",
           [](const CaseResults& all) {
             return CountElements(all.Common()->problem, Tetrahedra) > 0;
           })
      .def(py::pickle(
          [](const CaseResults& all) { return Sealed(Run([&] { return all.State(); })); },
          [](const py::bytes& state) {
            return Run([&] { return std::make_shared<CaseResults>(Unsealed(state)); });
          }));
  module.def("read_cases", &Read, py::arg("path"), py::arg("text"));
}

}  // namespace morlen::python
