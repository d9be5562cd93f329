#include "case_file/open_study.h"

#include <iostream>
#include <optional>

#include "base/errorwriter.h"
#include "common/file_text.h"
#include "problem/problem.h"
#include "problem/problem_file.h"

namespace morlen::cases {

std::unique_ptr<Study> OpenStudy(const std::string& file, std::span<const std::string> written)
{
  const std::optional<std::string> text = FileText(file);
  if (!text)
    Fatal("can't read file ", file, "\n");
  if (IsProblemFile(file))
    Fatal("error: ", file, " is a problem file, not a file of load cases\n");
  Problems problems(Problems::LostData::Warning);
  std::unique_ptr<Study> study = ReadStudy(file, *text, written, problems);
  std::string lines;
  for (const check::Located& one : problems.Sorted())
    lines += check::LineOf(one, file) + "\n";
  std::cerr << lines << std::flush;
  return problems.HasErrors() ? nullptr : std::move(study);
}

}  // namespace morlen::cases
