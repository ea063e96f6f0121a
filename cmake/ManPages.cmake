# Writes manual pages from the program's help. Run with -DPROGRAM=<file>
# -DHELP2MAN=<file> -DVERSION=<text> -DFOLDER=<output folder>
# "-DCOMMANDS=<command|...>", where a command of a command has a space in its name.
string(REPLACE "|" ";" COMMANDS "${COMMANDS}")

# The same page from the same help, whenever it is made.
set(ENV{SOURCE_DATE_EPOCH} 0)

function(zuqel_write_page command)
  string(REPLACE " " ";" words "${command}")
  execute_process(COMMAND ${PROGRAM} ${words} --help OUTPUT_VARIABLE help
                  COMMAND_ERROR_IS_FATAL ANY)
  set(page zuqel)
  if(words)
    list(PREPEND words zuqel)
    list(JOIN words "-" page)
  endif()

  # help2man would fill the lines of examples, and knows no notes.
  string(REGEX MATCH "^(.)([^\n]*)" summary "${help}")
  string(TOLOWER "${CMAKE_MATCH_1}" initial)
  set(summary "${initial}${CMAKE_MATCH_2}")
  set(examples "")
  string(FIND "${help}" "\n\nExamples:\n" start)
  if(start GREATER -1)
    math(EXPR after "${start} + 12")
    string(SUBSTRING "${help}" ${after} -1 examples)
    string(REPLACE "\\" "\\e" examples "${examples}")
    string(REPLACE "-" "\\-" examples "${examples}")
    set(examples "[>EXAMPLES]\n.nf\n${examples}.fi\n")
    string(SUBSTRING "${help}" 0 ${start} help)
  endif()
  string(REPLACE "\nCommands:\n" "\n*COMMANDS*\n" help "${help}")
  # What follows the last list.
  string(REGEX MATCH "^(.*\n(Options:|[*]COMMANDS[*])\n(  [^\n]*\n?)+)\n(.*)$" notes
                     "${help}")
  if(notes)
    set(help "${CMAKE_MATCH_1}\n*NOTES*\n${CMAKE_MATCH_4}")
  endif()

  set(others "")
  foreach(other IN LISTS pages)
    if(NOT other STREQUAL page)
      string(APPEND others ".BR ${other} (1),\n")
    endif()
  endforeach()
  string(REGEX REPLACE ",\n$" "\n" others "${others}")
  file(WRITE "${FOLDER}/${page}.help" "${help}\n")
  file(WRITE "${FOLDER}/${page}.include"
       "[NAME]\n${page} \\- ${summary}\n\n${examples}\n[SEE ALSO]\n${others}")
  execute_process(
    COMMAND ${HELP2MAN} --no-info --source "zuqel ${VERSION}" --version-string ${VERSION}
            --help-option ${FOLDER}/${page}.help --include ${FOLDER}/${page}.include cat
    OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)
  string(REPLACE "\"January 1970\"" "\"\"" text "${text}")
  file(WRITE "${FOLDER}/${page}.1" "${text}")
endfunction()

set(pages zuqel)
foreach(command IN LISTS COMMANDS)
  string(REPLACE " " "-" page "zuqel-${command}")
  list(APPEND pages ${page})
endforeach()
zuqel_write_page("")
foreach(command IN LISTS COMMANDS)
  zuqel_write_page("${command}")
endforeach()
