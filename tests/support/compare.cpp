#include "support/compare.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <vector>

namespace morlen {

namespace {

using Lines = std::vector<std::string_view>;

// A file without a newline at its end has one line fewer.
Lines SplitLines(std::string_view text)
{
  Lines lines;
  for (;;) {
    const std::size_t stop = text.find('\n');
    lines.push_back(text.substr(0, stop));
    if (stop == std::string_view::npos)
      return lines;
    text.remove_prefix(stop + 1);
  }
}

// Removes a run of blanks, or of other characters, from the beginning of the line and returns it.
std::string_view CutToken(std::string_view& line)
{
  const bool blank = line.front() == ' ';
  const std::size_t length =
      std::min(blank ? line.find_first_not_of(' ') : line.find(' '), line.size());
  const std::string_view token = line.substr(0, length);
  line.remove_prefix(length);
  return token;
}

bool IsNumber(std::string_view token, double& value)
{
  const char* end = token.data() + token.size();
  const auto [stop, fault] = std::from_chars(token.data(), end, value);
  return fault == std::errc() && stop == end;
}

bool IsWhole(std::string_view token)
{
  return token.find_first_not_of("0123456789") == std::string_view::npos;
}

// The largest number of a line that contains only numbers, without the number of a node or element
// at its beginning; -1 for other lines.
double LargestOf(std::string_view line)
{
  double largest = line.empty() ? -1.0 : 0.0;
  for (bool first = true; !line.empty(); first = false) {
    const std::string_view token = CutToken(line);
    double value = 0.0;
    if (token.front() != ' ' && !IsNumber(token, value))
      return -1.0;
    if (!first || !IsWhole(token))
      largest = std::max(largest, std::fabs(value));
  }
  return largest;
}

// For each line, the largest number of its block.
std::vector<double> Scales(const Lines& lines)
{
  std::vector<double> scales(lines.size(), 0.0);
  for (std::size_t first = 0; first < lines.size();) {
    std::size_t last = first;
    double scale = 0.0;
    for (double largest = 0.0; last < lines.size() && (largest = LargestOf(lines[last])) >= 0.0;
         ++last)
      scale = std::max(scale, largest);
    std::fill(scales.begin() + first, scales.begin() + last, scale);
    first = last + 1;
  }
  return scales;
}

bool Agree(std::string_view actual, std::string_view expected, double scale, Closeness closeness)
{
  if (actual == expected)
    return true;
  double a = 0.0;
  double e = 0.0;
  if (!IsNumber(actual, a) || !IsNumber(expected, e) || (IsWhole(actual) && IsWhole(expected)))
    return false;
  const double allowed =
      std::max({closeness.relative * std::fabs(e), closeness.floor * scale, closeness.absolute});
  return std::fabs(a - e) <= allowed;
}

bool LinesAgree(std::string_view actual, std::string_view expected, double scale,
                Closeness closeness)
{
  while (!actual.empty() && !expected.empty()) {
    if (!Agree(CutToken(actual), CutToken(expected), scale, closeness))
      return false;
  }
  return actual.empty() && expected.empty();
}

}  // namespace

std::string Difference(std::string_view actual, std::string_view expected, Closeness closeness)
{
  const Lines actualLines = SplitLines(actual);
  const Lines expectedLines = SplitLines(expected);
  const std::vector<double> scales = Scales(expectedLines);
  for (std::size_t i = 0; i < std::min(actualLines.size(), expectedLines.size()); ++i) {
    if (!LinesAgree(actualLines[i], expectedLines[i], scales[i], closeness))
      return "line " + std::to_string(i + 1) + "\n  is       \"" + std::string(actualLines[i]) +
             "\"\n  expected \"" + std::string(expectedLines[i]) + "\"\n";
  }
  if (actualLines.size() != expectedLines.size())
    return std::to_string(actualLines.size()) + " lines, expected " +
           std::to_string(expectedLines.size()) + "\n";
  return {};
}

}  // namespace morlen
