# Run by CPack on the installed files of all components, each in a folder of its
# own: adds what only a package has.
function(compress)
  # Without name and time, so that the same text gives the same bytes.
  execute_process(COMMAND gzip -9nf ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} key)
  set(package ${CPACK_DEBIAN_${key}_PACKAGE_NAME})
  set(share ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/copyright ${share}/doc/${package}/copyright
                 COPYONLY)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/changelog.in
                 ${share}/doc/${package}/changelog.Debian @ONLY)
  file(GLOB pages ${share}/man/man*/*.[1-9])
  compress(${share}/doc/${package}/changelog.Debian ${pages})
  set(overrides ${CMAKE_CURRENT_LIST_DIR}/${package}.lintian-overrides)
  if(EXISTS ${overrides})
    configure_file(${overrides} ${share}/lintian/overrides/${package} COPYONLY)
  endif()
  if(component STREQUAL "development")
    file(COPY ${CPACK_ZUQEL_EXAMPLE} DESTINATION ${share}/doc/${package}/examples)
  endif()
endforeach()
