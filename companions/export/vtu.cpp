#include "export/vtu.h"

#include <pugixml.hpp>

#include "export/shell_corners.h"
#include "export/vtk_array.h"
#include "export/vtu_grid.h"
#include "export/vtu_parts.h"

namespace morlen {

void WriteVtu(const model::Model& model, const results::Results& results, bool withLoads,
              std::ostream& out)
{
  pugi::xml_document document;
  pugi::xml_node root = AddVtkRoot(document, "UnstructuredGrid");
  const ShellCorners corners =
      results.shellLocal ? ShellCorners(model, results.shellPoints) : ShellCorners();
  VtuGrid grid(model, corners, root.append_child("UnstructuredGrid"));
  AddResults(grid, model, results, corners);
  AddModel(grid, model);
  if (withLoads)
    AddLoads(grid, model);
  document.save(out, "", pugi::format_raw);
}

void WriteVtu(const model::Model& model, const results::Results& results,
              const std::filesystem::path& name, const VtuOptions& options)
{
  AtomicFile file(name, options.writer);
  WriteVtu(model, results, options.withLoads, file.Stream());
  file.Commit();
}

}  // namespace morlen
