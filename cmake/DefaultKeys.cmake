# The device maker's keys, from files with 64 hex digits to a generated header.
# They are the maker's secret: keep both the files and the build folder out of
# any repository.

# Sets `result` in the caller to the bytes of the key in `file` as a C++ list;
# empty without a file.
function(zuqel_read_key setting file result)
  set(bytes "")
  if(NOT file STREQUAL "")
    if(NOT EXISTS "${file}" OR IS_DIRECTORY "${file}")
      message(FATAL_ERROR "${setting}: there is no file ${file}")
    endif()
    file(READ "${file}" digits)
    string(STRIP "${digits}" digits)
    string(LENGTH "${digits}" length)
    if(NOT length EQUAL 64 OR NOT digits MATCHES "^[0-9A-Fa-f]+$")
      message(FATAL_ERROR "${setting}: ${file} is not a line of 64 hex digits")
    endif()
    string(REGEX REPLACE "(..)" "0x\\1, " bytes "${digits}")
  endif()
  set(${result} "${bytes}" PARENT_SCOPE)
endfunction()

# Writes default_keys.h into `folder`, an absent key as an empty array, and
# configures again when a file changes.
function(zuqel_embed_default_keys folder general_file kind4_file)
  zuqel_read_key(ZUQEL_DEFAULT_KEY_FILE "${general_file}" kGeneralKey)
  zuqel_read_key(ZUQEL_KIND4_DEFAULT_KEY_FILE "${kind4_file}" kKind4Key)
  set(text "// Made by the build; may hold secrets.\n#pragma once\n\n")
  string(APPEND text "#include <array>\n#include <cstdint>\n\n")
  string(APPEND text "namespace zuqel::calib {\n\n")
  foreach(key kGeneralKey kKind4Key)
    string(REGEX MATCHALL "0x" found "${${key}}")
    list(LENGTH found size)
    string(APPEND text "inline constexpr std::array<uint8_t, ${size}> ${key} = {"
           "${${key}}};\n")
  endforeach()
  string(APPEND text "\n}  // namespace zuqel::calib\n")
  file(CONFIGURE OUTPUT "${folder}/default_keys.h" CONTENT "${text}" @ONLY)
  file(CHMOD "${folder}/default_keys.h" PERMISSIONS OWNER_READ OWNER_WRITE)
  if(NOT CMAKE_SCRIPT_MODE_FILE)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
                                           ${general_file} ${kind4_file})
  endif()
endfunction()
