#include "binding.h"

#include <cstdint>
#include <vector>

#include "base/byte_archive.h"
#include "base/memory_limit.h"
#include "common/command_line.h"
#include "common/run_record.h"

namespace morlen::python {

[[noreturn]] void RaiseError(const FatalError& error, Place place)
{
  py::object type = py::module_::import("morlen._error").attr("Error");
  const auto number = [](int n) { return n > 0 ? py::object(py::int_(n)) : py::none(); };
  const auto text = [](std::string_view bytes) {
    std::string whole(bytes.substr(0, bytes.find_last_not_of('\n') + 1));
    return ToUtf8(whole);
  };
  py::object value =
      type(text(error.Message()), number(place.line), number(place.column), text(error.Hint()));
  PyErr_SetObject(type.ptr(), value.ptr());
  throw py::error_already_set();
}

namespace {

// The layout of a state is that of a version of the program.
std::uint64_t SealOf(std::string_view state)
{
  return FingerprintOf(state).hash ^ FingerprintOf(std::string_view(ProgramVersion())).hash;
}

}  // namespace

py::bytes Sealed(const Bytes& state)
{
  Bytes sealed = state;
  BytePutter put(sealed);
  put(SealOf(std::string_view(state.data(), state.size())));
  return {sealed.data(), sealed.size()};
}

std::span<const char> Unsealed(std::string_view bytes)
{
  std::uint64_t hash = 0;
  if (bytes.size() < sizeof hash)
    RefuseBytes();
  const std::string_view state = bytes.substr(0, bytes.size() - sizeof hash);
  ByteGetter get(bytes.substr(state.size()));
  get(hash);
  if (SealOf(state) != hash)
    RefuseBytes();
  return state;
}

void HandleSignals()
{
  const py::gil_scoped_acquire lock;
  if (PyErr_CheckSignals() != 0)
    throw py::error_already_set();
}

void IssueWarnings(const Session& session)
{
  if (session.Warnings().empty())
    return;
  py::object category = py::module_::import("morlen._error").attr("ModelWarning");
  for (const std::string& text : session.Warnings()) {
    if (PyErr_WarnEx(category.ptr(), ToUtf8(text).c_str(), 1) != 0)
      throw py::error_already_set();
  }
}

void RequireRoom(const Shape& shape, std::size_t bytesOfValue)
{
  constexpr double kSmall = 1 << 28;
  double bytes = static_cast<double>(bytesOfValue);
  for (const py::ssize_t side : shape)
    bytes *= static_cast<double>(side);
  if (bytes > kSmall)
    Run([bytes] { RequireMemory(static_cast<std::uint64_t>(bytes)); });
}

py::array ReadOnly(py::array owner)
{
  const auto sides = [&owner](const py::ssize_t* first) {
    return std::vector<py::ssize_t>(first, first + owner.ndim());
  };
  const py::dtype type = owner.dtype();
  const std::vector<py::ssize_t> shape = sides(owner.shape());
  const std::vector<py::ssize_t> strides = sides(owner.strides());
  const void* const values = owner.data();
  const void* const kept = owner.release().ptr();
  const py::capsule hidden(kept, [](void* array) { Py_DECREF(static_cast<PyObject*>(array)); });
  py::array view(type, shape, strides, values, hidden);
  view.attr("setflags")(py::arg("write") = false);
  return view;
}

std::optional<SolverType> RequireSolver(const std::optional<std::string>& name)
{
  if (!name)
    return {};
  const std::optional<SolverType> type = SolverOf(*name);
  if (!type)
    throw py::value_error("unknown solver '" + *name +
                          "': Automatic, SkyLine, Sparse, Double or Direct");
  return type;
}

std::function<void(std::string_view)> HearerOf(const py::object& progress)
{
  if (progress.is_none())
    return {};
  return [&progress](std::string_view line) {
    const py::gil_scoped_acquire lock;
    progress(ToUtf8(std::string(line)));
  };
}

}  // namespace morlen::python
