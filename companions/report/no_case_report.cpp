// In the place of case_report.cpp where the library for the files of load cases is missing.

#include "base/errorwriter.h"
#include "report/case_report.h"

namespace morlen {

ExitStatus ReportCases(const std::filesystem::path& /*file*/,
                       const std::filesystem::path& /*output*/)
{
  Fatal("error: this program has been built without files of load cases\n");
}

}  // namespace morlen
