#include "mpi/node_parts.h"

#include <metis.h>

#include <cstdint>

#include "base/errorwriter.h"

namespace morlen::mpi {

namespace {

/// Parts of fewer nodes gain nothing by a short border.
constexpr int kSmallPart = 100;

/// The pattern without the diagonal, in the arrays of METIS, with the blocks of each line.
struct Graph
{
  explicit Graph(const NodePattern& pattern)
  {
    starts.reserve(pattern.starts.size());
    neighbours.reserve(pattern.columns.size() - pattern.Lines());
    for (int p = 0; p < pattern.Lines(); ++p) {
      for (int s = pattern.starts[p]; s < pattern.starts[p + 1]; ++s) {
        if (pattern.columns[s] != p)
          neighbours.push_back(pattern.columns[s]);
      }
      starts.push_back(static_cast<idx_t>(neighbours.size()));
      blocks.push_back(pattern.starts[p + 1] - pattern.starts[p]);
    }
  }

  std::vector<idx_t> starts = {0};
  std::vector<idx_t> neighbours;
  std::vector<idx_t> blocks;
};

}  // namespace

std::vector<int> PartsOfNodes(const NodePattern& pattern, int parts)
{
  idx_t count = pattern.Lines();
  std::vector<idx_t> part(static_cast<std::size_t>(count));
  if (count / parts < kSmallPart || parts == 1) {
    for (idx_t node = 0; node < count; ++node)
      part[node] = static_cast<idx_t>(static_cast<std::int64_t>(node) * parts / count);
    return {part.begin(), part.end()};
  }
  Graph graph(pattern);
  idx_t constraints = 1;
  idx_t wanted = parts;
  idx_t cut = 0;
  idx_t options[METIS_NOPTIONS];
  METIS_SetDefaultOptions(options);
  options[METIS_OPTION_NUMBERING] = 0;
  const int result = METIS_PartGraphKway(
      &count, &constraints, graph.starts.data(), graph.neighbours.data(), graph.blocks.data(),
      nullptr, nullptr, &wanted, nullptr, nullptr, options, &cut, part.data());
  if (result == METIS_ERROR_MEMORY)
    Fatal("Not space available on heap");
  if (result != METIS_OK)
    Fatal("error: the elements could not be divided between the ranks\n");
  return {part.begin(), part.end()};
}

}  // namespace morlen::mpi
