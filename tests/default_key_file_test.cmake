# Which files the build takes for a default key. Run with -DFOLDER=<scratch>
# -DMODULE=<DefaultKeys.cmake>; runs itself with -DKEY_FILE for each file, since
# a refusal ends the run.
if(DEFINED KEY_FILE)
  include(${MODULE})
  zuqel_embed_default_keys(${FOLDER} "${KEY_FILE}" "")
  return()
endif()

string(REPEAT "0123456789abCDef" 4 digits)
string(SUBSTRING "${digits}" 1 -1 short)

function(expect outcome name)
  execute_process(
    COMMAND ${CMAKE_COMMAND} -DFOLDER=${FOLDER} -DMODULE=${MODULE}
            "-DKEY_FILE=${FOLDER}/${name}" -P ${CMAKE_CURRENT_LIST_FILE}
    RESULT_VARIABLE result ERROR_VARIABLE message)
  # CMake breaks its messages into lines.
  string(REGEX REPLACE "[ \n]+" " " message "${message}")
  if(outcome STREQUAL "taken")
    if(NOT result EQUAL 0)
      message(SEND_ERROR "${name} is refused: ${message}")
    endif()
  elseif(result EQUAL 0 OR NOT message MATCHES "${outcome}")
    message(SEND_ERROR "${name} should say '${outcome}': ${message}")
  endif()
  if(message MATCHES "23456789")
    message(SEND_ERROR "${name}: the key is shown: ${message}")
  endif()
endfunction()

foreach(good "${digits}" "${digits}\n" " ${digits}\r\n")
  file(WRITE ${FOLDER}/good "${good}")
  expect(taken good)
endforeach()
foreach(bad "" "${short}" "${digits}0" "${short}g" "0x${digits}" "${short};"
            "${digits}\n${digits}")
  file(WRITE ${FOLDER}/bad "${bad}")
  expect("bad is not a line of 64 hex digits" bad)
endforeach()
expect("there is no file" missing)
