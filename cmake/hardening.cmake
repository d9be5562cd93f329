# What makes faults of memory harder to use, in the release build of GCC and Clang on Linux:
# checked copies of the C library, canaries on the stack, code at a random place, and tables of
# functions that are read-only once the program runs. MORLEN_HARDEN turns it off.
option(MORLEN_HARDEN "Harden the release build (GCC and Clang on Linux)" ON)

set(morlen_is_hardened OFF)
add_library(morlen_hardening INTERFACE)
if(MORLEN_HARDEN AND NOT MORLEN_SANITIZE AND NOT MORLEN_COVERAGE
   AND CMAKE_SYSTEM_NAME STREQUAL "Linux" AND CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
  set(morlen_is_hardened ON)
  set(hardened_build $<CONFIG:Release,RelWithDebInfo>)
  # Undefined first: some compilers define it themselves.
  target_compile_options(morlen_hardening INTERFACE
    "$<${hardened_build}:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2;-fstack-protector-strong;$<$<NOT:$<BOOL:$<TARGET_PROPERTY:POSITION_INDEPENDENT_CODE>>>:-fPIE>>")
  target_link_options(morlen_hardening INTERFACE
    "$<${hardened_build}:-pie;-Wl,-z,relro,-z,now>")
endif()
