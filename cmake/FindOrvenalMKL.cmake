# Intel MKL: LP64 interface, dynamic, GNU threading layer. Gives the target Orvenal::MKL.

find_path(OrvenalMKL_INCLUDE_DIR mkl.h PATH_SUFFIXES mkl)
set(_orvenal_mkl_libraries "")
foreach(part mkl_intel_lp64 mkl_gnu_thread mkl_core)
  find_library(OrvenalMKL_${part}_LIBRARY ${part} PATH_SUFFIXES intel64 x86_64-linux-gnu)
  list(APPEND _orvenal_mkl_libraries ${OrvenalMKL_${part}_LIBRARY})
endforeach()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(OrvenalMKL REQUIRED_VARS
  OrvenalMKL_INCLUDE_DIR OrvenalMKL_mkl_intel_lp64_LIBRARY OrvenalMKL_mkl_gnu_thread_LIBRARY
  OrvenalMKL_mkl_core_LIBRARY)
mark_as_advanced(OrvenalMKL_INCLUDE_DIR)

if(OrvenalMKL_FOUND AND NOT TARGET Orvenal::MKL)
  add_library(Orvenal::MKL INTERFACE IMPORTED)
  target_include_directories(Orvenal::MKL SYSTEM INTERFACE "${OrvenalMKL_INCLUDE_DIR}")
  target_link_libraries(Orvenal::MKL INTERFACE
    -Wl,--no-as-needed ${_orvenal_mkl_libraries} gomp -Wl,--as-needed pthread m dl)
endif()
