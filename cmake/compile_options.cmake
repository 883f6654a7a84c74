# Warnings, sanitizers and coverage, for every target of the project.
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 finds overlaps in any inlined `"x" + std::string` (its bug 105651).
  add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  # GCC has the form of delete that is told the size by default.
  add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-fsized-deallocation>)
endif()

if(DRIVER_SANITIZERS)
  add_compile_options(-fsanitize=${DRIVER_SANITIZERS} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${DRIVER_SANITIZERS})
endif()

if(DRIVER_COVERAGE)
  add_compile_options(--coverage)
  add_link_options(--coverage)
endif()
