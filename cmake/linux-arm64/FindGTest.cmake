# GoogleTest from the sources that Debian's `googletest` package installs: its
# libraries are for the building machine's processor only.
set(GTEST_SOURCES /usr/src/googletest)
if(EXISTS ${GTEST_SOURCES}/CMakeLists.txt AND NOT TARGET GTest::gtest)
  set(INSTALL_GTEST OFF)
  add_subdirectory(${GTEST_SOURCES} ${CMAKE_BINARY_DIR}/googletest
                   EXCLUDE_FROM_ALL SYSTEM)
  # GCC 12 warns of an overlap in std::string that cannot be.
  target_compile_options(gtest PRIVATE -Wno-restrict)
endif()
include(FindPackageHandleStandardArgs)
if(TARGET GTest::gtest)
  set(GTEST_TARGET GTest::gtest)
endif()
find_package_handle_standard_args(GTest REQUIRED_VARS GTEST_TARGET)
