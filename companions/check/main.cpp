#include <iostream>
#include <optional>
#include <string>

#include "check/check.h"
#include "common/command_line.h"
#include "common/file_text.h"

using namespace morlen;

namespace {

std::string Counted(int count, const char* noun)
{
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

void Print(const check::Report& report, const std::string& file)
{
  std::string lines;
  for (const check::Located& problem : report.problems)
    lines += check::LineOf(problem, file) + "\n";
  std::cerr << lines << std::flush;
  if (report.summary)
    std::cout << check::TextOf(*report.summary);
  std::cout << Counted(report.errors, "error") << ", " << Counted(report.warnings, "warning")
            << "\n";
}

}  // namespace

int main(int argc, char** argv)
{
  CommandLine commandLine("morlen-check", "Reports every problem of a problem file in one pass.");
  std::string file;
  bool json = false;
  CLI::App& app = commandLine.Options();
  app.add_option("model", file, "the problem file")->type_name("FILE")->required();
  app.add_flag("--json", json, "print one JSON object instead of text");
  app.footer("Exit status: 0, 1 when there are errors, 2 when the file cannot be read.");
  if (const std::optional<ExitStatus> end = commandLine.Parse(argc, argv))
    return static_cast<int>(*end);
  const std::optional<std::string> text = FileText(file);
  if (!text) {
    std::cerr << "can't read file " << file << "\n";
    return static_cast<int>(ExitStatus::Failed);
  }
  const check::Report report = check::CheckText(*text);
  if (json)
    std::cout << check::JsonOf(report, file);
  else
    Print(report, file);
  if (!std::cout.flush())
    return static_cast<int>(ExitStatus::Failed);
  return static_cast<int>(report.errors > 0 ? ExitStatus::Found : ExitStatus::Done);
}
