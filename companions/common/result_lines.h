#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "base/errorwriter.h"

namespace morlen::results {

/// Reads the numbers of one line, one after the other.
class NumberLine
{
public:
  explicit NumberLine(std::string_view text) : rest(text) {}

  bool Read(int& value);
  bool Read(double& value);  ///< false also for a number that is not finite
  bool AtEnd();

private:
  template <class Number>
  bool ReadNumber(Number& value);
  void SkipBlanks();

  std::string_view rest;
};

/// A result file, line by line.
class ResultLines
{
public:
  /// Reads the whole file. Fatal when it cannot be opened, or its last line has no end.
  explicit ResultLines(const std::filesystem::path& file);

  /// Goes to the next line; false at the end of the file.
  bool Next();
  std::string_view Line() const { return line; }
  /// The line after this one; empty at the end of the file.
  std::string_view Following() const;

  /// Ends the run with a message that begins with the file and the line.
  template <class... Parts>
  [[noreturn]] void Fail(const Parts&... parts) const
  {
    Fatal(name, ":", number, ": error: ", parts..., "\n");
  }

private:
  std::string name;
  std::string text;
  std::size_t next = 0;
  int number = 0;
  std::string_view line;
};

/// True when the first character that is not blank can begin a number: a line of values.
bool IsValueLine(std::string_view line);

}  // namespace morlen::results
