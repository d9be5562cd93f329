#pragma once

/// True when the tests and the program are built with the address sanitizer.
#ifdef __SANITIZE_ADDRESS__
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif
