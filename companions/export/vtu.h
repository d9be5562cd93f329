#pragma once

#include <filesystem>
#include <iosfwd>

#include "common/model_data.h"
#include "common/result_data.h"

namespace morlen {

/// Writes an unstructured grid of VTK (XML, text) for ParaView.
///
/// Its points are the nodes, then the division points of each beam, because forces jump from beam
/// to beam. Its cells are the elements in the order of the model, a beam as a polyline, then a
/// vertex for every node that no shell or solid has. Shells get the mean of their points. Values
/// that a point or cell does not have are 0.
void WriteVtu(const model::Model& model, const results::Results& results, std::ostream& out);
/// The same as an AtomicFile.
void WriteVtu(const model::Model& model, const results::Results& results,
              const std::filesystem::path& name);

}  // namespace morlen
