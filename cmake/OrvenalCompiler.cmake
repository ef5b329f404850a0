# Flags that every target of the project is built with.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")

find_program(ORVENAL_CCACHE ccache)
if(ORVENAL_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # Precompiled headers need these relaxations, or ccache never finds a hit.
  set(CMAKE_CXX_COMPILER_LAUNCHER
      "${CMAKE_COMMAND};-E;env;CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime;${ORVENAL_CCACHE}")
endif()

add_library(orvenal_flags INTERFACE)
target_compile_options(orvenal_flags INTERFACE
  -march=${ORVENAL_ARCH}
  # Undefined values, infinities and NaN are tested for, so no -ffast-math; the same bits with and
  # without FMA, so no contraction.
  -fno-math-errno -fno-trapping-math -ffp-contract=off
  -Wall -Wextra -Wshadow -Werror)
target_compile_definitions(orvenal_flags INTERFACE
  QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_DEPRECATED_WARNINGS)

find_program(ORVENAL_MOLD mold)
if(ORVENAL_MOLD)
  target_link_options(orvenal_flags INTERFACE -fuse-ld=mold)
endif()

string(REPLACE "-O2" "-O3" CMAKE_CXX_FLAGS_RELWITHDEBINFO "${CMAKE_CXX_FLAGS_RELWITHDEBINFO}")

set(ORVENAL_SANITIZE "" CACHE STRING "Sanitizers to build with, for example address,undefined")
if(ORVENAL_SANITIZE)
  target_compile_options(orvenal_flags INTERFACE
    -fsanitize=${ORVENAL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(orvenal_flags INTERFACE -fsanitize=${ORVENAL_SANITIZE})
endif()

option(ORVENAL_COVERAGE "Measure test coverage" OFF)
if(ORVENAL_COVERAGE)
  target_compile_options(orvenal_flags INTERFACE --coverage)
  target_link_options(orvenal_flags INTERFACE --coverage)
endif()
