#include "places.h"

#include <algorithm>

#include "check/check.h"

namespace morlen::python {

namespace {

std::string_view WithoutEnd(std::string_view message)
{
  return message.substr(0, message.find_last_not_of(" \t\r\n") + 1);
}

}  // namespace

std::vector<check::Located> FindingsIn(std::string_view text)
{
  return check::CheckText(text).problems;
}

// The first error with the same message, else the first error at all: the check reads the text as
// the reader does, but a message may say more there.
Place PlaceOf(const FatalError& error, std::string_view text)
{
  const std::vector<check::Located> found = FindingsIn(text);
  const auto isError = [](const check::Located& one) {
    return one.severity == check::Severity::Error && one.line > 0;
  };
  auto match = std::find_if(found.begin(), found.end(), [&](const check::Located& one) {
    return isError(one) && one.message.starts_with(WithoutEnd(error.Message()));
  });
  if (match == found.end())
    match = std::find_if(found.begin(), found.end(), isError);
  return match == found.end() ? Place() : Place{match->line, match->column};
}

}  // namespace morlen::python
