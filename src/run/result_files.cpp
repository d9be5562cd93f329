#include "run/result_files.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <set>
#include <system_error>

#include "base/errorwriter.h"
#include "base/temporary_file.h"
#include "problem/problem_file.h"
#include "run/project.h"

namespace morlen {

namespace fs = std::filesystem;

namespace {

fs::path FolderOf(const fs::path& file)
{
  return file.has_parent_path() ? file.parent_path() : ".";
}

}  // namespace

ResultFiles::ResultFiles(const ResultNames& names)
{
  if (names.text)
    text.emplace(*names.text);
  results.emplace(names.results);
  if (names.writeMesh)
    mesh.emplace(names.mesh);
}

void ResultFiles::Empty()
{
  for (std::optional<OutputFile>* file : {&text, &results, &mesh}) {
    if (*file)
      (*file)->Empty();
  }
}

void ResultFiles::Write(const Project& project)
{
  if (text) {
    project.WriteResults(text->Stream());
    text->Commit();
  }
  project.WriteKivResults(results->Stream(), mesh ? mesh->WrittenName().c_str() : nullptr);
  if (mesh)
    mesh->Commit();
  results->Commit();
}

void RemoveRestsOfKilledRuns(const ResultNames& names)
{
  std::set<fs::path> folders = {FolderOf(names.results)};
  if (names.text)
    folders.insert(FolderOf(*names.text));
  for (const fs::path& folder : folders)
    RemoveStaleTemporaries(folder);
}

void EmptyStaleMesh(const std::string& name, const std::vector<RunFile>& filesOfRun)
{
  std::error_code absent;
  if (!fs::is_regular_file(name, absent) || fs::file_size(name, absent) == 0)
    return;
  if (IsAmong({"mesh file", name}, filesOfRun) || IsProblemFile(name))
    return;
  if (truncate(name.c_str(), 0) != 0)
    errorwriter.WriteWarning("the mesh file " + name +
                             " is of an earlier run and can't be emptied: " + std::strerror(errno));
}

}  // namespace morlen
