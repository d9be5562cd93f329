#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace morlen {

struct Problem;

namespace check {

class Recorder;
struct Subject;

/// Reports the motions that the structure can make without any resistance, each as an error at a
/// node that moves most, at most five for each part. Prepares the problem as the analysis does, so
/// that it must be the last step. subject: of this problem, whose model has no errors. loose: its
/// parts whose supports let them move, ascending; they are passed over.
///
/// Returns why the model was not tested, in one line; empty when it was.
std::string CheckMechanisms(Problem& problem, const Subject& subject,
                            const std::vector<std::size_t>& loose, Recorder& recorder);

}  // namespace check

}  // namespace morlen
