#include "check/words.h"

#include <algorithm>
#include <vector>

#include "base/digits.h"
#include "base/nearest_word.h"
#include "base/textscan.h"
#include "problem/problem_reader.h"

namespace morlen::check {

bool IsKeyword(std::string_view word)
{
  const std::vector<std::string_view> keywords = Keywords();
  return std::any_of(keywords.begin(), keywords.end(),
                     [word](std::string_view keyword) { return EqualsNoCase(word, keyword); });
}

std::string_view NearestKeyword(std::string_view word)
{
  if (word.size() < 2 || IsDigit(word[0]))
    return {};
  std::vector<std::string_view> candidates = Keywords();
  candidates.push_back("end");
  return NearestWord(word, candidates);
}

}  // namespace morlen::check
