# GoogleTest built from the sources in Debian's `googletest` package, since
# Debian's binaries fit only the host processor and libstdc++.
set(GTEST_SOURCES /usr/src/googletest)
if(EXISTS ${GTEST_SOURCES}/CMakeLists.txt AND NOT TARGET GTest::gtest)
  set(INSTALL_GTEST OFF)
  add_subdirectory(${GTEST_SOURCES} ${CMAKE_BINARY_DIR}/googletest
                   EXCLUDE_FROM_ALL SYSTEM)
  # Its warnings are not ours to fix.
  target_compile_options(gtest PRIVATE -w)
  target_compile_options(gmock PRIVATE -w)
endif()
include(FindPackageHandleStandardArgs)
if(TARGET GTest::gtest)
  set(GTEST_TARGET GTest::gtest)
endif()
find_package_handle_standard_args(GTest REQUIRED_VARS GTEST_TARGET)
