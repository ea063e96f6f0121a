# Debian packages by CPack, one per component. Only a build that is configured for
# /usr installs libraries into the folder of its processor.
set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_NAME zuqelrt-gl)
# Mail to this top-level domain reaches nobody.
set(CPACK_PACKAGE_CONTACT "zuQelRT_GL developers <developers@zuqelrt-gl.invalid>")
set(CPACK_DEBIAN_PACKAGE_SOURCE ${CPACK_PACKAGE_NAME})
# Older than a package of Debian's own would be.
set(CPACK_DEBIAN_PACKAGE_RELEASE 0local1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/FinishFiles.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/FinishPackages.cmake)
set(CPACK_ZUQEL_EXAMPLE ${PROJECT_SOURCE_DIR}/examples/first_frame.c)

# The package of a component. MULTI_ARCH says whether packages of other processors
# can be installed beside it ("same") or use it ("foreign"); the first line of
# DESCRIPTION is its title; NEEDS are components.
function(zuqel_package component name)
  cmake_parse_arguments(ARG "" "SECTION;MULTI_ARCH;DESCRIPTION" "NEEDS" ${ARGN})
  string(TOUPPER ${component} key)
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${ARG_SECTION} PARENT_SCOPE)
  set(CPACK_ZUQEL_${key}_MULTI_ARCH ${ARG_MULTI_ARCH} PARENT_SCOPE)
  set(CPACK_COMPONENT_${key}_DESCRIPTION "${ARG_DESCRIPTION}" PARENT_SCOPE)
  set(CPACK_COMPONENT_${key}_DEPENDS ${ARG_NEEDS} PARENT_SCOPE)
  set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} ${component} PARENT_SCOPE)
endfunction()

set(about "The library gives a camera's frames a synthetic shallow depth of field.
It takes NV21 frames with the disparity map of a stereo depth chip, or with
ready blur weights, and renders with OpenGL ES 2.0. It needs neither a GPU
nor a display.")
set(CPACK_COMPONENTS_ALL "")
zuqel_package(
  library libzuqelrt-gl SECTION libs MULTI_ARCH same
  DESCRIPTION "synthetic shallow depth of field - shared library\n${about}")
# What draws where there is no GPU; libraries only recommend it.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_DEPENDS libgl1-mesa-dri)
zuqel_package(
  development libzuqelrt-gl-dev SECTION libdevel MULTI_ARCH same NEEDS library
  DESCRIPTION "synthetic shallow depth of field - development files
${about}\n.\nThis package has the C headers, a CMake package and a pkg-config file.")
zuqel_package(
  program zuqel SECTION graphics MULTI_ARCH foreign NEEDS library
  DESCRIPTION "synthetic shallow depth of field for photos with depth
It renders portrait photos, and pictures and videos with maps of disparity,
depth or blur weights: into files, into pipes, or in a window. It also shows
the depth that a photo brings along, and compares renderings in reports.")
get_cmake_property(installed COMPONENTS)
if(python IN_LIST installed)
  zuqel_package(
    python python3-zuqel SECTION python NEEDS library
    DESCRIPTION "synthetic shallow depth of field from Python
The library takes and gives NumPy arrays: frames with disparity or weights,
and refocus maps. Photos are read with their depth by the program zuqel, where
that and Pillow are installed.")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "python3 (>= 3.11), python3-numpy")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS "python3-pil, zuqel")
endif()

# What a program that is linked with the library depends on. A library without a
# version in its name can only be given by its symbols.
file(STRINGS ${PROJECT_SOURCE_DIR}/src/api/exports.map symbols REGEX "^ +[A-Za-z0-9_]+;$")
list(TRANSFORM symbols REPLACE "^ +(.+);$" " \\1@Base ${PROJECT_VERSION}\n")
list(JOIN symbols "" symbols)
set(folder ${CMAKE_CURRENT_BINARY_DIR}/packages)
file(CONFIGURE OUTPUT ${folder}/symbols
     CONTENT "libzuQelRT_GL.so libzuqelrt-gl #MINVER#\n@symbols@" @ONLY)
file(CONFIGURE OUTPUT ${folder}/triggers CONTENT "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${folder}/symbols ${folder}/triggers)

include(CPack)
