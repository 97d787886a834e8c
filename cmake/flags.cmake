# Compiler flags that every target of the project takes through nmr1d_flags.
add_library(nmr1d_flags INTERFACE)
target_compile_options(nmr1d_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
  -ffp-contract=off  # a fused multiply-add would change the last bit of results from machine to machine
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)  # g++ 12 warns falsely of text + text at -O3
if(NMR1D_SANITIZE)
  target_compile_options(nmr1d_flags INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  # g++ 12 finds uninitialized members in std::regex when its code is instrumented
  target_compile_options(nmr1d_flags INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(nmr1d_flags INTERFACE -fsanitize=address,undefined)
endif()
