# One way to declare a library, a test program of a room and a benchmark.

set(ORVENAL_PCH_HEADERS
    <QString> <QStringList> <QList> <QVector> <QMap> <QSharedPointer> <QDataStream> <QObject>
    <algorithm> <cmath> <functional> <limits> <memory> <vector>)

# orvenal_library(NAME <target> DIR <source folder>): every .cpp below src/, headers below include/.
function(orvenal_library)
  cmake_parse_arguments(ARG "" "NAME;DIR" "" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${ARG_DIR}/src/*.cpp" "${ARG_DIR}/src/*.h" "${ARG_DIR}/include/*.h")
  add_library(${ARG_NAME} SHARED ${sources})
  target_link_libraries(${ARG_NAME} PRIVATE $<BUILD_INTERFACE:orvenal_flags>)
  target_include_directories(${ARG_NAME}
    PUBLIC $<BUILD_INTERFACE:${ARG_DIR}/include> $<INSTALL_INTERFACE:include>
    PRIVATE ${ARG_DIR}/src)
  set_target_properties(${ARG_NAME} PROPERTIES
    INSTALL_RPATH "$ORIGIN" VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  target_compile_features(${ARG_NAME} PUBLIC cxx_std_17)
  target_precompile_headers(${ARG_NAME} PRIVATE ${ORVENAL_PCH_HEADERS})
endfunction()

# orvenal_test(<name> DIR <folder> LIBS <libraries>): one GoogleTest program of all .cpp in a folder.
function(orvenal_test name)
  cmake_parse_arguments(ARG "" "DIR" "LIBS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${ARG_DIR}/*.cpp")
  if(NOT sources)
    return()
  endif()
  add_executable(${name} ${sources})
  target_link_libraries(${name} PRIVATE orvenal_flags ${ARG_LIBS} orvenal_test_support GTest::gmock GTest::gtest GTest::gtest_main)
  target_compile_definitions(${name} PRIVATE ORVENAL_TEST_DATA="${CMAKE_SOURCE_DIR}/tests/data")
  if(TARGET orvenal_test_pch)
    target_precompile_headers(${name} REUSE_FROM orvenal_test_pch)
  endif()
  include(GoogleTest)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 120 PROPERTIES TIMEOUT 600)
endfunction()
