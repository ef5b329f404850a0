# `cmake --install`: headers, libraries, program and the package that find_package(Orvenal) reads.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS orvenal_basic orvenal_geos EXPORT OrvenalTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY basic/include/basic geos/include/geos DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT OrvenalTargets NAMESPACE Orvenal:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Orvenal)
if(TARGET orvenal)
  install(TARGETS orvenal RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

configure_package_config_file(cmake/OrvenalConfig.cmake.in
  "${CMAKE_CURRENT_BINARY_DIR}/OrvenalConfig.cmake"
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Orvenal)
write_basic_package_version_file("${CMAKE_CURRENT_BINARY_DIR}/OrvenalConfigVersion.cmake"
  COMPATIBILITY SameMinorVersion)
install(FILES
  "${CMAKE_CURRENT_BINARY_DIR}/OrvenalConfig.cmake"
  "${CMAKE_CURRENT_BINARY_DIR}/OrvenalConfigVersion.cmake"
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Orvenal)
