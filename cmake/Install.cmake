# What `cmake --install` puts where. Every rule names its component, by which
# packages are split:
#   library      the shared library, with what stands in for the device's own
#   development  headers, CMake package, pkg-config file
#   program      zuqel, its manual pages and completion
#   python       the Python package
# A device has its own libraries and its own build systems: for it, the library
# and the headers only.
if(ZUQEL_DEVICE_TREE)
  include(cmake/device/DeviceTree.cmake)
  return()
endif()
include(GNUInstallDirs)

# Whatever the prefix, each library finds the next from where it is itself. The
# stand-ins are nobody else's, so they lie in a folder of their own.
set(stand_ins zuqelrt-gl)
install(
  TARGETS zuQelRT_GL
  EXPORT zuQelRT_GL
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
           COMPONENT development
  # For callers with a CMake that knows no file sets.
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(
  TARGETS zuqel_gb_wrapper zuqel_linux_device
  EXPORT zuQelRT_GL
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/${stand_ins} COMPONENT library)
set_target_properties(zuQelRT_GL PROPERTIES INSTALL_RPATH
                                            "$ORIGIN/${stand_ins}")
set_target_properties(zuqel_gb_wrapper PROPERTIES INSTALL_RPATH "$ORIGIN")

# The exported targets are the whole of the CMake package.
include(CMakePackageConfigHelpers)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/zuQelRT_GL)
install(
  EXPORT zuQelRT_GL
  FILE zuQelRT_GLConfig.cmake
  NAMESPACE zuQelRT_GL::
  DESTINATION ${package_folder}
  COMPONENT development)
set(version_file ${CMAKE_CURRENT_BINARY_DIR}/zuQelRT_GLConfigVersion.cmake)
write_basic_package_version_file(${version_file}
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${version_file} DESTINATION ${package_folder}
        COMPONENT development)

set(pc_folder ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${pc_folder}
           OUTPUT_VARIABLE to_prefix)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_INCLUDEDIR BASE_DIRECTORY
           ${pc_folder} OUTPUT_VARIABLE to_headers)
configure_file(${CMAKE_CURRENT_LIST_DIR}/zuqelrt-gl.pc.in
               ${CMAKE_CURRENT_BINARY_DIR}/zuqelrt-gl.pc @ONLY)
install(
  FILES ${CMAKE_CURRENT_BINARY_DIR}/zuqelrt-gl.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  COMPONENT development)

if(TARGET zuqel)
  cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY
             ${CMAKE_INSTALL_FULL_BINDIR} OUTPUT_VARIABLE to_libraries)
  set_target_properties(
    zuqel
    PROPERTIES INSTALL_RPATH
               "$ORIGIN/${to_libraries};$ORIGIN/${to_libraries}/${stand_ins}")
  install(TARGETS zuqel RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
                                COMPONENT program)
endif()
