#include "check/run_end.h"

namespace morlen::check {

namespace {

/// While it exists, warnings of this thread are not shown.
class SilentWarnings
{
public:
  SilentWarnings() : previous(errorwriter.SetWarningListener([](std::string_view) {})) {}
  SilentWarnings(const SilentWarnings&) = delete;
  SilentWarnings& operator=(const SilentWarnings&) = delete;
  ~SilentWarnings() { errorwriter.SetWarningListener(previous); }

private:
  ErrorWriter::WarningListener previous;
};

}  // namespace

ThrownErrors::ThrownErrors()
    : previous(errorwriter.SetEndOfRun(
          [](std::string_view message) { throw RunEnded{std::string(message)}; }))
{
}

ThrownErrors::~ThrownErrors()
{
  errorwriter.SetEndOfRun(previous);
}

std::optional<Failure> FailureOf(const std::function<void()>& step)
{
  const ThrownErrors thrown;
  try {
    step();
    return std::nullopt;
  } catch (const RunEnded& end) {
    return Failure{end.message, std::string(errorwriter.Hint())};
  }
}

bool Succeeds(const std::function<void()>& step)
{
  const SilentWarnings silent;
  return !FailureOf(step);
}

}  // namespace morlen::check
