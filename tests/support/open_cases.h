#pragma once

#include <map>
#include <string>
#include <vector>

#include "support/verification.h"

namespace morlen {

/// A case of tests/verification: problem files, and a file expected.txt with lines of these kinds:
///   section, title, source   texts for the manual,
///   run NAME FILE            a run of the program on a problem file,
///   show QUANTITY            puts the next check into the manual,
///   check RUN KIND ITEMS     a value of the results, with ref, rtol and atol: it may differ from
///                            ref by rtol·|ref| + atol. A block's name is the last item.
/// The kinds: disp, react, endforce (text results); res (post-process results; comp 0 is the
/// last one), larger and smaller (of the components 1 and 2 of a point), sum (over elements and
/// their points, times a factor); sumreact; count; blocks; converge (the error of a
/// displacement falls from run to run).
struct OpenCase
{
  std::string section;
  std::vector<VerifiedResult> shown;
  std::vector<std::string> failures;  ///< descriptions of the checks that failed
  int checks = 0;
};

std::vector<std::string> OpenCaseNames();

/// Runs the program on the problem files of the case and checks the results.
OpenCase RunOpenCase(const std::string& name);

}  // namespace morlen
