#pragma once

#include <string>
#include <vector>

#include "case_file/case_file.h"
#include "problem/load_set.h"

namespace morlen {

struct Problem;

namespace cases {

/// Reads the model into an empty problem. False after errors. file: the name of the case file.
bool ReadModel(const CaseFile& cases, const std::string& file, Problem& problem,
               Problems& problems);

/// Reports the files of loads that cannot be read, where the model cannot be read either.
void FindMissingLoads(const CaseFile& cases, const std::string& file, Problems& problems);

/// Reads the loads of all cases. own: those of the model. The problem has been read, and has no
/// loads.
std::vector<LoadSet> ReadLoads(const CaseFile& cases, const std::string& file, const LoadSet& own,
                               Problem& problem, Problems& problems);

/// A name in the case file as a path: relative to the folder of that file.
std::string PathOf(const std::string& name, const std::string& file);

}  // namespace cases

}  // namespace morlen
