#include "problem/foreign_file.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "base/digits.h"
#include "base/errorwriter.h"
#include "base/text_parts.h"

namespace morlen {

namespace {

bool IsLetter(char c)
{
  return ToLower(c) >= 'a' && ToLower(c) <= 'z';
}

// Text with two bytes a character, by the mark at its beginning.
bool IsWideText(std::string_view text)
{
  return text.starts_with("\xff\xfe") || text.starts_with("\xfe\xff");
}

bool IsBinary(std::string_view text)
{
  const auto isControl = [](char c) { return c >= '\0' && c < ' ' && !IsWhite(c); };
  return std::count_if(text.begin(), text.end(), isControl) > std::ssize(text) / 20;
}

// The first 40 characters of the first word after the comments ("**") of another program.
std::string_view BeginningOf(std::string_view text)
{
  const char* const end = text.data() + text.size();
  const char* word = SkipWhite(text.data(), end);
  while (end - word >= 2 && word[0] == '*' && word[1] == '*')
    word = SkipWhite(std::find(word, end, '\n'), end);
  return FirstWord({word, end}).substr(0, 40);
}

bool IsSectionOfAnotherProgram(std::string_view word)
{
  constexpr std::string_view kMarks = "*$<";
  return word.size() > 1 && kMarks.find(word[0]) != kMarks.npos &&
         (IsLetter(word[1]) || word[1] == '?');
}

}  // namespace

std::string JudgeForeignFile(std::string_view beginning)
{
  constexpr std::size_t kEnough = 4096;
  const std::string_view text = beginning.substr(0, kEnough);
  if (IsWideText(text))
    return "the text has two bytes a character (UTF-16): save it as plain text (UTF-8)";
  if (IsBinary(text))
    return "the file is binary: a problem file is plain text";
  const std::string_view word = BeginningOf(text);
  if (word.empty() && beginning.size() == text.size())
    return "the file is empty";
  if (IsSectionOfAnotherProgram(word))
    return "the file begins with '" + std::string(word) + "': it is written for another program";
  return {};
}

void RefuseFolder(const std::string& name)
{
  std::error_code ignored;
  if (std::filesystem::is_directory(name, ignored))
    Fatal("error: ", name, " is a folder\n");
}

}  // namespace morlen
