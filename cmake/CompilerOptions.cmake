# What every target is compiled with.

option(TQ_BENCHMARKS "Build the benchmark programs" ON)
option(TQ_WERROR "Treat warnings as errors" ON)
set(TQ_SANITIZERS "" CACHE STRING "Comma list for -fsanitize, empty for none")
option(TQ_COVERAGE "Instrument for coverage" OFF)

# Single-precision results meet thresholds in the clock solvers: a fused multiply-add would round
# once where the contract rounds twice, so contraction is off everywhere.
add_compile_options(-ffp-contract=off)

add_compile_options(
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
  -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wcast-qual -Wdouble-promotion -Wformat=2
  -Wimplicit-fallthrough -Wundef -Wunused)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  # g++ 12 reports an overlap in every "text" + std::string(...) (its bug 105651).
  add_compile_options(-Wno-restrict)
endif()
if(TQ_WERROR)
  add_compile_options(-Werror)
endif()

if(TQ_SANITIZERS)
  add_compile_options(-fsanitize=${TQ_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${TQ_SANITIZERS})
  if(CMAKE_CXX_COMPILER_ID STREQUAL Clang)
    add_compile_options(-fsanitize-ignorelist=${PROJECT_SOURCE_DIR}/cmake/sanitizer_ignorelist.txt)
  endif()
  if(CMAKE_CXX_COMPILER_ID STREQUAL Clang AND TQ_SANITIZERS MATCHES address)
    set(TQ_LIBFUZZER ON)
    add_compile_options(-fsanitize=fuzzer-no-link)
  endif()
endif()
if(TQ_COVERAGE)
  add_compile_options(--coverage -O0)
  add_link_options(--coverage)
endif()
