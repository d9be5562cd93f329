#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace morlen::check {

enum class Severity : int
{
  Error,   ///< the program refuses the file
  Warning  ///< the program takes it, perhaps not as it is meant
};

/// Place of what concerns the whole file.
constexpr std::ptrdiff_t kWholeFile = -1;

struct Problem
{
  Severity severity;
  std::ptrdiff_t offset;  ///< bytes from the beginning of the file, or kWholeFile
  std::string message;
};

/// A problem with its line and column, both from 1; 0 for the whole file.
struct Located
{
  Severity severity;
  int line, column;
  std::string message;
};

/// The problems by place in the text, each once; those of the whole file come last.
std::vector<Located> Locate(std::vector<Problem> problems, std::string_view text);

/// "file:line:column", or the file alone.
std::string PlaceOf(const Located& problem, const std::string& file);

/// "model.dat:47:12: error: ..." without a newline.
std::string LineOf(const Located& problem, const std::string& file);

const char* SeverityName(Severity severity);

}  // namespace morlen::check
