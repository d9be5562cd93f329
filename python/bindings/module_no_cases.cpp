// In the place of load cases, where these are not built.

#include "binding.h"

namespace morlen::python {

void DefineCases(py::module_&) {}

}  // namespace morlen::python
