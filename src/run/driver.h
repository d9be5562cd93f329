#pragma once

namespace morlen {

/// The whole run, from the command line to the result files. Returns the exit status:
/// 0, or 2 when the arguments are wrong; every other fault ends the process.
int RunMorlen(int argc, char** argv);

}  // namespace morlen
