#pragma once

#include <string_view>
#include <vector>

#include "check/findings.h"
#include "session.h"

namespace morlen::python {

/// All findings of morlen-check in the text of a problem file.
std::vector<check::Located> FindingsIn(std::string_view text);

struct Place
{
  int line = 0;
  int column = 0;  ///< both from 1; both 0 when the place is not known
};

/// The place of the error with which the text of a problem file was refused.
Place PlaceOf(const FatalError& error, std::string_view text);

}  // namespace morlen::python
