#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/utf8.h"
#include "model.h"
#include "places.h"
#include "session.h"

// What the parts of the module share: errors as exceptions of Python, work without the interpreter
// lock, arrays.

namespace py = pybind11;

namespace morlen::python {

using Shape = std::vector<py::ssize_t>;

/// Raises morlen.Error.
[[noreturn]] void RaiseError(const FatalError& error, Place place);

/// Lets Ctrl-C and other signals be handled, whose handlers may raise.
void HandleSignals();

/// The warnings of the session as warnings of Python, which may raise.
void IssueWarnings(const Session& session);

/// Does work in the open session, without the interpreter lock. Its fatal errors become exceptions
/// of Python; locate gives their place.
template <class Work, class Locate>
auto Unlocked(Work work, Locate locate)
{
  try {
    const py::gil_scoped_release unlocked;
    return work();
  } catch (const FatalError& error) {
    RaiseError(error, locate(error));
  }
}

/// Where the place of an error is not known.
inline Place Nowhere(const FatalError&)
{
  return {};
}

/// Does work in a session for it.
template <class Work>
auto Run(Work work)
{
  const Session session(HandleSignals);
  return Unlocked(work, Nowhere);
}

/// A short question to a model. Its lock is taken without that of the interpreter: whoever has it
/// may wait for the interpreter.
template <class Owner, class Use>
auto Ask(Owner& owner, Use use)
{
  const py::gil_scoped_release unlocked;
  return owner.With(use);
}

/// What a pickle holds of a state: its bytes, and a hash of them and of the version.
py::bytes Sealed(const Bytes& state);
/// The state that Sealed has stored. Fatal when the bytes are damaged or of another version.
std::span<const char> Unsealed(std::string_view bytes);

/// Fatal, in a session, when there is no memory for an array. Small ones are not tested.
void RequireRoom(const Shape& shape, std::size_t bytesOfValue);

/// An array of the values of another that cannot be written to, nor made so. It keeps the other one
/// alive but does not show it: numpy lets the owner of values allow writing again.
py::array ReadOnly(py::array owner);

/// A new array that cannot be written to, filled without the interpreter lock.
template <class T, class Fill>
py::array Filled(const Shape& shape, Fill fill)
{
  RequireRoom(shape, sizeof(T));
  py::array_t<T> array(shape);
  T* const data = array.mutable_data();
  Run([&] { fill(data); });
  return ReadOnly(std::move(array));
}

template <class Owner, class Fill>
py::array FilledFrom(Owner& owner, const Shape& shape, Fill fill)
{
  return Filled<double>(shape, [&](double* rows) {
    owner.With([&](const auto&... parts) { fill(parts..., rows); });
  });
}

inline py::ssize_t Size(std::size_t count)
{
  return static_cast<py::ssize_t>(count);
}

/// The solver of this name. Raises ValueError for another name.
std::optional<SolverType> RequireSolver(const std::optional<std::string>& name);
/// Calls the function of Python with the interpreter lock; empty for None.
std::function<void(std::string_view)> HearerOf(const py::object& progress);

/// Calls analyse(solver, info) for the arguments of `solve`.
template <class Analyse>
auto RunAnalysis(const std::optional<std::string>& solver, const py::object& progress,
                 Analyse analyse)
{
  const std::optional<SolverType> type = RequireSolver(solver);
  Session session(HandleSignals);
  const std::function<void(std::string_view)> hear = HearerOf(progress);
  auto results = Unlocked(
      [&] {
        const ProgressStream stream(session, hear);
        return analyse(type, stream.File());
      },
      Nowhere);
  IssueWarnings(session);
  return results;
}

/// The classes of load cases, where they are built.
void DefineCases(py::module_& module);

}  // namespace morlen::python
