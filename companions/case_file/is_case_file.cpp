#include "case_file/check_cases.h"

namespace morlen::cases {

bool IsCaseFile(std::string_view name)
{
  return name.ends_with(".cases");
}

}  // namespace morlen::cases
