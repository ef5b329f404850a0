# `cmake --install`: headers, libraries, program and the package that find_package(Orvenal) reads.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS orvenal_basic orvenal_geos EXPORT OrvenalTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY basic/include/basic geos/include/geos DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT OrvenalTargets NAMESPACE Orvenal:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Orvenal)
if(TARGET orvenal)
  install(TARGETS orvenal RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

  # The program itself writes its man page and the completions of shells.
  function(orvenal_install_text name folder)
    set(file "${CMAKE_CURRENT_BINARY_DIR}/texts/${name}")
    install(CODE "
      file(MAKE_DIRECTORY \"${CMAKE_CURRENT_BINARY_DIR}/texts\")
      execute_process(
        COMMAND \"${CMAKE_COMMAND}\" -E env ASAN_OPTIONS=detect_leaks=0 LC_ALL=C.UTF-8
          \"$<TARGET_FILE:orvenal>\" ${ARGN}
        OUTPUT_FILE \"${file}\" COMMAND_ERROR_IS_FATAL ANY)")
    install(FILES "${file}" DESTINATION "${folder}")
  endfunction()
  orvenal_install_text(orvenal.1 "${CMAKE_INSTALL_MANDIR}/man1" help --man)
  orvenal_install_text(orvenal "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" completion bash)
  orvenal_install_text(_orvenal "${CMAKE_INSTALL_DATADIR}/zsh/site-functions" completion zsh)
  orvenal_install_text(orvenal.fish "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d" completion fish)
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
