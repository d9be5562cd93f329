#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace morlen::check {

enum class Severity : int
{
  Error,   ///< the program refuses the file
  Warning  ///< the program accepts it, perhaps in another sense than intended
};

/// The offset of a problem of the whole file.
constexpr std::ptrdiff_t kWholeFile = -1;

/// A fault of a problem file, or a warning of it.
struct Finding
{
  Severity severity;
  std::ptrdiff_t offset;  ///< bytes from the beginning of the file, or kWholeFile
  std::string message;
};

/// A problem with its line and column, both from 1; both 0 for a problem of the whole file.
struct Located
{
  Severity severity;
  int line, column;
  std::string message;
};

/// The findings sorted by place, without repetitions; those of the whole file come last.
std::vector<Located> Locate(std::vector<Finding> findings, std::string_view text);

/// "file:line:column", or the file alone.
std::string PlaceOf(const Located& problem, const std::string& file);

/// "model.dat:47:12: error: ..." without a newline.
std::string LineOf(const Located& problem, const std::string& file);

const char* SeverityName(Severity severity);

}  // namespace morlen::check
