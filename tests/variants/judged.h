#pragma once

#include <string>

#include "check/check.h"
#include "support/text_run.h"
#include "variants/variant.h"

namespace morlen::variants {

/// A run of the program on a text, and the findings of the check.
struct Judged
{
  explicit Judged(const std::string& text);

  bool HasResultsOf(const Judged& other) const;
  /// The same results, or the same message.
  bool HasEndOf(const Judged& other) const;
  bool HasError(check::Code code) const;
  bool HasWarning(check::Code code) const;
  /// A finding in this line, from 1.
  bool HasFindingIn(std::size_t line) const;
  /// The same kinds of findings in the same lines.
  bool HasFindingsOf(const Judged& other) const;
  /// For the message of a test that fails.
  std::string Summary() const;

  TextRun run;
  check::Report report;

private:
  bool Has(check::Severity severity, check::Code code) const;
};

/// Runs a variant and its check. Empty when the outcome is the expected one, else what differs.
std::string Judge(const Variant& variant);

}  // namespace morlen::variants
