#include "common/result_reader.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <string>
#include <string_view>

#include "base/errorwriter.h"

namespace morlen {

namespace fs = std::filesystem;

namespace results {
namespace {

enum class Age
{
  Fresh,
  Older,  // than the problem file
  Missing
};

Age AgeOf(const Files& files, const fs::path& file)
{
  std::error_code error;
  const fs::file_time_type written = fs::last_write_time(file, error);
  if (error)
    return Age::Missing;
  const fs::file_time_type changed = fs::last_write_time(files.model, error);
  return !error && written < changed ? Age::Older : Age::Fresh;
}

// Fatal when the file is missing or older than the problem file.
void RequireFresh(const Files& files, const fs::path& file)
{
  const Age age = AgeOf(files, file);
  if (age == Age::Missing)
    Fatal("can't open file ", file.string(), "\nThe results are missing: run morlen ",
          files.model.string(), " first\n");
  if (age == Age::Older && !files.anyTime)
    Fatal("error: ", file.string(), " is older than ", files.model.string(),
          "\nRun morlen again, or give --any-time if the model has not changed\n");
}

bool AreTextResults(const fs::path& file)
{
  constexpr std::string_view kBeginning = "\n\nNODAL DISPLACEMENTS";
  char text[kBeginning.size()] = {};
  std::ifstream(file, std::ios::binary).read(text, sizeof text);
  return std::string_view(text, sizeof text) == kBeginning;
}

// The post-process results of frames have no displacements of nodes: copies those of the end points
// of their beams.
void CopyDisplacementsOfBeams(const model::Model& model, Results& results)
{
  for (const model::Element& element : model.elements) {
    if (element.kind != model::Kind::Beam)
      continue;
    for (int end = 0; end < 2; ++end)
      results.nodes[element.nodes[end]].displacement =
          results.beamPoints[element.firstPoint + end * (element.points - 1)].displacement;
  }
}

// Fatal when the two files have different reactions, as those of two runs of different models have.
void RequireSameRun(const Files& files, const TextDisplacements& text, const Results& results)
{
  constexpr double kTolerance = 1e-4;
  double largest = 0.0;
  double difference = 0.0;
  for (std::size_t i = 0; i < text.forces.size(); ++i) {
    for (int k = 0; k < 3; ++k) {
      largest = std::max(largest, std::fabs(text.forces[i][k]));
      difference = std::max(difference, std::fabs(text.forces[i][k] - results.nodes[i].force[k]));
    }
  }
  if (difference > kTolerance * largest)
    Fatal("error: ", files.text->string(), " and ", files.post.string(),
          " have different reactions: they are of different runs\n");
}

}  // namespace

bool HasFreshResults(const Files& files)
{
  return AgeOf(files, files.post) == Age::Fresh;
}

Positions::Positions(const model::Model& model)
{
  for (std::size_t i = 0; i < model.nodes.size(); ++i)
    nodes[model.nodes[i].number] = static_cast<int>(i);
  for (std::size_t i = 0; i < model.elements.size(); ++i)
    elements[model.elements[i].number] = static_cast<int>(i);
}

Files UsualFiles(const fs::path& model)
{
  const std::string name = model.string();
  const std::string base = name.substr(0, name.rfind('.'));
  Files files;
  files.model = model;
  files.post = base + ".morlen.res";
  const fs::path text = base + ".txt";
  if (AreTextResults(text))
    files.text = text;
  return files;
}

std::vector<fs::path> ResultsOf(const Files& files)
{
  std::vector<fs::path> all = {files.post};
  if (files.text)
    all.push_back(*files.text);
  return all;
}

Results ReadResults(const model::Model& model, const Files& files)
{
  RequireFresh(files, files.post);
  if (files.text)
    RequireFresh(files, *files.text);
  const Positions positions(model);
  Results results;
  const bool ofNodes = ReadPostResults(model, positions, files.post, results);
  if (!ofNodes)
    CopyDisplacementsOfBeams(model, results);
  if (files.text) {
    const TextDisplacements text = ReadTextResults(model, positions, *files.text, results);
    RequireSameRun(files, text, results);
    for (std::size_t i = 0; !ofNodes && i < text.displacements.size(); ++i)
      results.nodes[i].displacement = text.displacements[i];
  }
  return results;
}

}  // namespace results

}  // namespace morlen
