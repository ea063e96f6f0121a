# Installs the library as the build systems of a device read it: a prefab package
# with a manifest, which zipped is an Android archive, and an Android.bp and an
# Android.mk that name the same files.
foreach(fact IN ITEMS ANDROID_ABI ANDROID_PLATFORM_LEVEL ANDROID_NDK_MAJOR ANDROID_STL)
  if("${${fact}}" STREQUAL "")
    message(FATAL_ERROR "${fact} is not set; the NDK's toolchain file sets it")
  endif()
endforeach()

set(module prefab/modules/zuQelRT_GL)
set(libraries ${module}/libs/android.${ANDROID_ABI})
set(ZUQEL_DEVICE_HEADERS ${module}/include)
set(ZUQEL_DEVICE_LIBRARY ${libraries}/libzuQelRT_GL.so)

install(
  TARGETS zuQelRT_GL
  LIBRARY DESTINATION ${libraries} COMPONENT library
  FILE_SET HEADERS DESTINATION ${ZUQEL_DEVICE_HEADERS} COMPONENT development)

# A text of the tree, from this folder's template into a folder of the tree.
function(zuqel_install_text name folder)
  set(text ${CMAKE_CURRENT_BINARY_DIR}/device/${name})
  configure_file(${CMAKE_CURRENT_FUNCTION_LIST_DIR}/${name}.in ${text} @ONLY)
  install(FILES ${text} DESTINATION ${folder} COMPONENT development)
endfunction()

zuqel_install_text(Android.bp .)
zuqel_install_text(Android.mk .)
zuqel_install_text(AndroidManifest.xml .)
zuqel_install_text(prefab.json prefab)
zuqel_install_text(module.json ${module})
zuqel_install_text(abi.json ${libraries})
