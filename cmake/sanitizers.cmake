# MORLEN_SANITIZE builds everything with the address and undefined-behaviour sanitizers.
option(MORLEN_SANITIZE "Build with the address and undefined sanitizers" OFF)

add_library(morlen_sanitizers INTERFACE)
if(MORLEN_SANITIZE)
  target_compile_options(morlen_sanitizers INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer
    # It looks at objects through pipes, and takes all for corrupt when descriptors run out.
    -fno-sanitize=vptr
    # Instrumented standard headers give false alarms.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(morlen_sanitizers INTERFACE -fsanitize=address,undefined -fno-sanitize=vptr)
endif()
