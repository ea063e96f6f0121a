# Run by CPack on the packages: mends what it cannot be told. They become the same
# bytes whenever they are built, with the time of the changelog's last entry.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
  file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/changelog.in signature REGEX "^ -- ")
  string(REGEX REPLACE "^ -- .*  " "" date "${signature}")
  execute_process(COMMAND date --date=${date} +%s OUTPUT_VARIABLE seconds
                  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(ENV{SOURCE_DATE_EPOCH} ${seconds})
endif()

set(tree ${CPACK_TEMPORARY_DIRECTORY}/unpacked)
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  file(REMOVE_RECURSE ${tree})
  execute_process(COMMAND dpkg-deb --raw-extract ${package} ${tree}
                  COMMAND_ERROR_IS_FATAL ANY)
  # They call ldconfig, for which there is a trigger.
  file(REMOVE ${tree}/DEBIAN/postinst ${tree}/DEBIAN/postrm)

  file(READ ${tree}/DEBIAN/control control)
  foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} key)
    if(CPACK_ZUQEL_${key}_MULTI_ARCH)
      set(name "Package: ${CPACK_DEBIAN_${key}_PACKAGE_NAME}\n")
      string(REPLACE "${name}" "${name}Multi-Arch: ${CPACK_ZUQEL_${key}_MULTI_ARCH}\n"
                     control "${control}")
    endif()
  endforeach()
  file(WRITE ${tree}/DEBIAN/control "${control}")

  execute_process(COMMAND dpkg-deb --root-owner-group -Zxz --build ${tree} ${package}
                  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endforeach()
file(REMOVE_RECURSE ${tree})
