# One interface target with the flags that every target of the project takes.
#
# -ffp-contract=off and no fast-math: chord counts, speeds and table bytes are the same on every
# machine and in every build type.
add_library(norvik_flags INTERFACE)
target_compile_options(norvik_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor
  -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Warnings are errors with the compiler that ships the programs; the one that builds the fuzz
  # targets warns of other things. Off: false alarms on std::optional and std::string in optimised
  # builds.
  target_compile_options(norvik_flags INTERFACE -Werror -Wno-maybe-uninitialized -Wno-restrict)
  # The optimiser sees accesses in code that no call reaches; the builds without it hold the same
  # sources to every warning.
  target_compile_options(norvik_flags INTERFACE
    $<$<CONFIG:Release>:-Wno-error=array-bounds> $<$<CONFIG:Release>:-Wno-error=stringop-overflow>
    $<$<CONFIG:Release>:-Wno-error=stringop-overread> $<$<CONFIG:Release>:-Wno-error=free-nonheap-object>)
endif()
if(NORVIK_SANITIZE)
  target_compile_options(norvik_flags INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(norvik_flags INTERFACE -fsanitize=address,undefined)
endif()
if(NORVIK_FUZZ)
  # The fuzzer steers by the branches that an input takes; without this it would see only those of
  # the target's own file.
  target_compile_options(norvik_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()
