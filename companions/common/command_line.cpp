#include "common/command_line.h"

#include <iostream>

#include "common/standard_output.h"

namespace morlen {

CommandLine::CommandLine(const std::string& name, const std::string& purpose) : app(purpose, name)
{
  app.set_version_flag("--version", name + " " + ProgramVersion());
  app.get_formatter()->column_width(24);
}

std::optional<ExitStatus> CommandLine::Parse(int argc, char** argv)
{
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& fault) {
    const bool asked = app.exit(fault, std::cout, std::cerr) == 0;
    return asked ? ExitStatus::Done : ExitStatus::Failed;
  }
  return std::nullopt;
}

int SystemStatus(ExitStatus status)
{
  FinishStandardOutput();
  return static_cast<int>(status);
}

const char* ProgramVersion()
{
  return MORLEN_VERSION;
}

}  // namespace morlen
