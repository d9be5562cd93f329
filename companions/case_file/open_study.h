#pragma once

#include <memory>
#include <span>
#include <string>

#include "case_file/study.h"

namespace morlen::cases {

/// Reads a file of load cases with everything that it names, and prints the problems on standard
/// error. Null after errors. written: see ReadStudy. Fatal when the file cannot be read, and for a
/// problem file.
std::unique_ptr<Study> OpenStudy(const std::string& file, std::span<const std::string> written);

}  // namespace morlen::cases
