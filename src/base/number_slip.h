#pragma once

#include <string>
#include <string_view>

#include "base/read_observer.h"

namespace morlen {

/// True for a word that is one number from end to end.
bool IsNumber(std::string_view word, NumberKind kind);

/// True when the text, after white space, begins with a number.
bool BeginsWithNumber(std::string_view text);

/// The reason why a word is no number.
struct NumberSlip
{
  std::string rule;   ///< that the word breaks, such as "the decimal sign is a point"
  std::string meant;  ///< the number, or the numbers with blanks, that was probably meant
};

/// The slip of a word that is no number of this kind. Members that are not known are empty.
NumberSlip FindNumberSlip(std::string_view word, NumberKind kind);

}  // namespace morlen
