// The module morlen._core: the classes and arrays of C++ in Python. The package's Python files give
// them their final form.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "arrays.h"
#include "binding.h"
#include "common/model_data.h"
#include "model.h"
#include "model/material.h"
#include "numeric/plex_range.h"
#include "outputs.h"
#include "places.h"
#include "rows.h"
#include "session.h"

namespace morlen::python {

namespace fs = std::filesystem;

namespace {

// --- Models ---

std::shared_ptr<Model> Parse(const py::bytes& text, const std::vector<std::string>& files)
{
  const std::string_view content = text;
  Session session(HandleSignals);
  auto model = Unlocked(
      [&] {
        return std::make_shared<Model>(content, std::vector<fs::path>(files.begin(), files.end()));
      },
      [&](const FatalError& error) {
        const py::gil_scoped_release unlocked;
        return PlaceOf(error, content);
      });
  IssueWarnings(session);
  return model;
}

using Finding = std::tuple<std::string, std::string, int, int, std::string, std::string>;

std::vector<Finding> Check(const py::bytes& text)
{
  const std::string_view content = text;
  return Run([&] {
    std::vector<Finding> findings;
    for (const check::Located& found : FindingsIn(content))
      findings.emplace_back(check::SeverityName(found.severity), check::NameOf(found.code),
                            found.line, found.column, ToUtf8(found.message), ToUtf8(found.hint));
    return findings;
  });
}

py::tuple Nodes(Model& model)
{
  const std::size_t n = Ask(model, [](const Problem& problem) { return CountNodes(problem); });
  py::array_t<int> numbers(Size(n));
  int* const to = numbers.mutable_data();
  const py::array places = FilledFrom(
      model, {Size(n), 3}, [to](const Problem& p, double* rows) { FillNodes(p, to, rows); });
  return py::make_tuple(ReadOnly(std::move(numbers)), places);
}

py::tuple Elements(Model& model, int type)
{
  const auto kind = ElemType(type);
  const auto [n, width] = Ask(model, [kind](const Problem& p) {
    return std::pair(Size(CountElements(p, kind)), MostNodes(p, kind));
  });
  py::array_t<int> numbers(n);
  py::array_t<int> nodes(Shape{n, width});
  py::array_t<int> materials(n);
  int* const to[] = {numbers.mutable_data(), nodes.mutable_data(), materials.mutable_data()};
  Run([&, w = width] {
    model.With([&](const Problem& p) { FillElements(p, kind, w, to[0], to[1], to[2]); });
  });
  return py::make_tuple(ReadOnly(std::move(numbers)), ReadOnly(std::move(nodes)),
                        ReadOnly(std::move(materials)));
}

std::tuple<std::string, std::string, std::string> UnitNames(const Problem& problem)
{
  const model::Units units = model::UnitsOf(problem.units);
  return {units.force, units.length, units.pressure};
}

// --- Materials ---

/// A material of a model, which it keeps alive.
struct LiveMaterial
{
  std::shared_ptr<Model> model;
  int number;

  template <class Use>
  auto With(Use use) const
  {
    return Ask(*model, [&](const Problem& problem) {
      return use(*morlen::Find<Material>(problem.materials, number));
    });
  }
};

std::vector<int> MaterialNumbers(Model& model)
{
  return Ask(model, [](const Problem& problem) {
    std::vector<int> numbers;
    for (const auto [number, material] : EachNumbered<Material>(problem.materials))
      numbers.push_back(number);
    return numbers;
  });
}

[[noreturn]] void RefuseType(const std::string& expected, const py::handle& given)
{
  const py::object shortened = py::module_::import("reprlib").attr("repr")(given);
  throw py::type_error(expected + ", not " + shortened.cast<std::string>());
}

// The number, which is finite. name: of the value.
double NumberOf(const py::handle& given, const std::string& name)
{
  const double value = PyFloat_AsDouble(given.ptr());
  if (PyErr_Occurred()) {
    PyErr_Clear();
    RefuseType(name + " is a number", given);
  }
  if (!std::isfinite(value))
    throw py::value_error(name + " must be finite, not " + std::string(py::repr(given)));
  return value;
}

using Field = double Material::*;

template <Field first, Field... others>
void DefineValue(py::class_<LiveMaterial>& material, const char* name, const char* doc)
{
  material.def_property(
      name, [](const LiveMaterial& m) { return m.With([](Material& x) { return x.*first; }); },
      [name](const LiveMaterial& m, const py::object& given) {
        const double value = NumberOf(given, name);
        m.With([value](Material& x) {
          x.Enter(first, value);
          (x.Enter(others, value), ...);
        });
      },
      doc);
}

py::object EulerOf(const LiveMaterial& material)
{
  const auto angles = material.With([](Material& m) {
    return m.eulerGiven ? std::optional(std::array{m.Euler[0], m.Euler[1], m.Euler[2]})
                        : std::nullopt;
  });
  return py::cast(angles);
}

void SetEuler(const LiveMaterial& material, const py::object& given)
{
  const bool isList = py::isinstance<py::sequence>(given) && !py::isinstance<py::str>(given);
  if (!given.is_none() && !(isList && py::len(given) == 3))
    RefuseType("Euler is None or three numbers", given);
  double angles[3] = {};
  for (int k = 0; k < 3 && isList; ++k)
    angles[k] = NumberOf(given[py::int_(k)], "an angle of Euler");
  material.With([&](Material& m) {
    m.eulerGiven = isList ? 1 : 0;
    std::copy_n(angles, 3, m.Euler);
  });
}

// The last two collect what a wrong call has too many of: the binding would refuse it by its own
// signature.
void SetRectangle(const LiveMaterial& material, const py::object& widthY, const py::object& widthZ,
                  const py::args& more, const py::kwargs& others)
{
  if (widthY.is_none() || widthZ.is_none() || !more.empty() || !others.empty())
    throw py::type_error("rectangle takes two numbers, widthY and widthZ");
  const double y = NumberOf(widthY, "widthY");
  const double z = NumberOf(widthZ, "widthZ");
  if (!(y > 0.0 && z > 0.0))
    throw py::value_error("the widths of a rectangular section must be positive");
  material.With([&](Material& m) { m.CalcOtherParametersForRecSec(y, z); });
}

void DefineMaterial(py::module_& module)
{
  using M = Material;
  py::class_<LiveMaterial> material(
      module, "Material",
      "A material or section of a model. Changes count from the next `solve` on.\n\n"
      "Values are in the units of the results; the names are the keys of the problem file. A "
      "value\n"
      "that is not given is 0.");
  material.def("__repr__", [](const LiveMaterial& m) {
    return "<morlen.Material " + std::to_string(m.number) + ">";
  });
  material.def_property_readonly(
      "number", [](const LiveMaterial& m) { return m.number; }, "Number in the problem file.");
  DefineValue<&M::E1, &M::E2>(material, "E", "Young's modulus [force/length2]; reads as `Ex`.");
  DefineValue<&M::E1>(material, "Ex", "Young's modulus along local x [force/length2].");
  DefineValue<&M::E2>(material, "Ey", "Young's modulus along local y [force/length2].");
  DefineValue<&M::nuXY, &M::nuYX>(material, "nu", "Poisson's ratio; reads as `nuXY`.");
  DefineValue<&M::nuXY>(material, "nuXY", "Strain -ex/ey under a stress along y.");
  DefineValue<&M::nuYX>(material, "nuYX", "Strain -ey/ex under a stress along x.");
  DefineValue<&M::Gxy, &M::Gxz, &M::Gyz>(material, "G",
                                         "Shear modulus [force/length2]; reads as `Gxy`.");
  DefineValue<&M::Gxy>(material, "Gxy", "Shear modulus [force/length2].");
  DefineValue<&M::Gxz>(material, "Gxz", "Shear modulus [force/length2].");
  DefineValue<&M::Gyz>(material, "Gyz", "Shear modulus [force/length2].");
  DefineValue<&M::A>(material, "A", "Area of a beam's section [length2].");
  DefineValue<&M::Iy>(material, "Iy", "Second moment of area about local y [length4].");
  DefineValue<&M::Iz>(material, "Iz", "Second moment of area about local z [length4].");
  DefineValue<&M::J>(material, "J", "Torsion constant [length4].");
  DefineValue<&M::t>(material, "t", "Thickness of a shell [length].");
  DefineValue<&M::Weight>(material, "Weight", "Weight [force/length3].");
  material.def_property("Euler", EulerOf, SetEuler,
                        "Euler angles of the local axes [radians], or None without angles.");
  material.def("rectangle", SetRectangle, py::arg("widthY") = py::none(),
               py::arg("widthZ") = py::none(),
               "Sets A, Iy, Iz and J of a rectangular section with these widths [length].");
}

// --- Results ---

std::shared_ptr<Solved> SolveModel(Model& model, const std::optional<std::string>& solver,
                                   const py::object& progress)
{
  return RunAnalysis(solver, progress, [&](std::optional<SolverType> type, std::FILE* info) {
    return Solve(model, type, info);
  });
}

py::array Nodal(const Solved& solved, ReaVecV Solution::*values)
{
  const Problem& problem = solved.analysis->problem;
  return FilledFrom(solved, {Size(CountNodes(problem)), problem.components.count},
                    [values](const Problem& p, const Solution& s, double* rows) {
                      FillNodal(p, s.*values, rows);
                    });
}

py::ssize_t Count(const Solved& solved, ElemType type)
{
  return Size(CountElements(solved.analysis->problem, type));
}

py::array BeamForces(const Solved& solved, int points)
{
  return FilledFrom(solved, {Count(solved, Linear), points, kBeamForces},
                    [points](const Problem& p, const Solution& s, double* rows) {
                      FillBeamForces(p, s, points, rows);
                    });
}

py::array BeamDisplacements(const Solved& solved, int points)
{
  const int translations = solved.analysis->problem.components.translations;
  return FilledFrom(solved, {Count(solved, Linear), points, translations},
                    [points](const Problem& p, const Solution& s, double* rows) {
                      FillBeamDisplacements(p, s, points, rows);
                    });
}

py::array ShellForces(const Solved& solved, bool main)
{
  const int points = ShellPoints(solved.analysis->problem, solved.solution);
  return FilledFrom(solved, {Count(solved, Triangle), points, kShellForces},
                    [main](const Problem& p, const Solution& s, double* rows) {
                      FillShellForces(p, s, main, rows);
                    });
}

py::array SolidStress(const Solved& solved)
{
  const Problem& problem = solved.analysis->problem;
  const bool solids = Count(solved, Tetrahedra) > 0;
  return FilledFrom(solved, {solids ? Size(CountNodes(problem)) : 0, kSolidStress},
                    [solids](const Problem& p, const Solution& s, double* rows) {
                      if (solids)
                        FillSolidStress(p, s, rows);
                    });
}

const char* StressOutputOf(const Solved& solved)
{
  switch (solved.analysis->problem.stressOutput) {
    case StressOutput::Main:
      return "main";
    case StressOutput::MainAndLocal:
      return "both";
    default:
      return "local";
  }
}

void Write(const Solved& solved, const std::optional<std::string>& text,
           const std::optional<std::string>& post, const std::optional<std::string>& mesh,
           const std::optional<std::string>& vtu, const std::optional<std::string>& report)
{
  Run([&] { WriteOutputs(solved, {text, post, mesh, vtu, report}); });
}

// --- Records ---

py::bytes RowsOf(const py::array_t<std::int64_t, py::array::c_style | py::array::forcecast>& whole,
                 const py::array_t<double, py::array::c_style | py::array::forcecast>& real,
                 const std::string& word)
{
  if (whole.ndim() != 2 || real.ndim() != 2 || whole.shape(0) != real.shape(0))
    throw py::value_error("two tables with the same number of rows are needed");
  const auto span = [](const auto& array) {
    return std::span(array.data(), static_cast<std::size_t>(array.size()));
  };
  return Run(
      [&, ints = span(whole), reals = span(real), rows = static_cast<std::size_t>(whole.shape(0))] {
        return Rows(ints, word, reals, rows);
      });
}

void DefineModel(py::module_& module)
{
  py::class_<Model, std::shared_ptr<Model>>(module, "Model", "A model as it was read.")
      .def("nodes", &Nodes, "Numbers (n) and places (n, 3) of the nodes.")
      .def("elements", &Elements, py::arg("type"),
           "Numbers (n), nodes (n, k) and materials (n) of elements: 1 beams, 2 shells, 4 solids.")
      .def(
          "is_plane",
          [](Model& m) { return Ask(m, [](const Problem& p) { return p.problemType == kPlane; }); })
      .def("components",
           [](Model& m) { return Ask(m, [](const Problem& p) { return p.components.count; }); })
      .def(
          "units", [](Model& m) { return Ask(m, UnitNames); }, "Force, length, pressure.")
      .def("solver",
           [](Model& m) {
             return Ask(m, [](const Problem& p) { return NameOf(p.solverSettings.type); });
           })
      .def("material_numbers", &MaterialNumbers)
      .def(
          "material",
          [](const std::shared_ptr<Model>& m, int number) {
            Ask(*m, [number](const Problem& p) {
              if (number < 1 || !morlen::Find<Material>(p.materials, number))
                throw py::key_error("no material " + std::to_string(number));
            });
            return LiveMaterial{m, number};
          },
          py::arg("number"))
      .def("solve", &SolveModel, py::arg("solver"), py::arg("progress"))
      .def(py::pickle(
          [](Model& m) { return Sealed(Run([&] { return StateOf(m); })); },
          [](const py::bytes& state) { return Run([&] { return ModelOf(Unsealed(state)); }); }));
}

void DefineSolved(py::module_& module)
{
  py::class_<Solved, std::shared_ptr<Solved>>(module, "Solved", "The results of one load case.")
      .def("displacements", [](const Solved& s) { return Nodal(s, &Solution::displacements); })
      .def("reactions", [](const Solved& s) { return Nodal(s, &Solution::reactions); })
      .def("beam_forces", &BeamForces, py::arg("points"))
      .def("beam_displacements", &BeamDisplacements, py::arg("points"))
      .def("shell_forces", &ShellForces, py::arg("main"))
      .def("solid_stress", &SolidStress)
      .def("stress_output", &StressOutputOf)
      .def("solver", [](const Solved& s) { return NameOf(s.analysis->solver); })
      .def("residual", [](const Solved& s) { return s.solution.accuracy.residual; })
      .def("error", [](const Solved& s) { return s.solution.accuracy.error; })
      .def(
          "model",
          [](const Solved& s) {
            return Run([&] {
              return std::make_shared<Model>(s.analysis->modelImage, s.analysis->origin);
            });
          },
          "The model as it was solved.")
      .def("write", &Write, py::arg("text"), py::arg("post"), py::arg("mesh"), py::arg("vtu"),
           py::arg("report"))
      .def(py::pickle(
          [](const Solved& s) { return Sealed(Run([&] { return StateOf(s); })); },
          [](const py::bytes& state) { return Run([&] { return SolvedOf(Unsealed(state)); }); }));
}

}  // namespace

PYBIND11_MODULE(_core, module)
{
  ShareNewHandler();
  Kit();  // before other threads run
  module.doc() = "The part of the package that is written in C++.";
  DefineMaterial(module);
  DefineModel(module);
  DefineSolved(module);
  DefineCases(module);
  module.def("parse", &Parse, py::arg("text"), py::arg("files"),
             "Reads the text of a problem file. files: that were read, absolute.");
  module.attr("__version__") = MORLEN_VERSION;
  module.def("check", &Check, py::arg("text"),
             "Severity, code, line, column, text and hint of each finding.");
  module.def("read_only", &ReadOnly, py::arg("owner"),
             "An array of the values of another that cannot be written to, nor made so.");
  module.def("rows", &RowsOf, py::arg("whole"), py::arg("real"), py::arg("word"),
             "Records of a problem file.");
}

}  // namespace morlen::python
