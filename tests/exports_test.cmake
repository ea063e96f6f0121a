# Compares the names that LIBRARY exports, as NM lists them, with the functions
# that HEADER declares.
execute_process(
  COMMAND ${NM} -D --defined-only ${LIBRARY}
  OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^ \n]+\n" exported "${symbols}")
list(TRANSFORM exported STRIP)

file(READ ${HEADER} declarations)
string(REGEX MATCHALL "\nuint32_t [A-Za-z0-9_]+\\(" declared "${declarations}")
list(TRANSFORM declared REPLACE "\nuint32_t (.*)\\(" "\\1")

list(SORT exported)
list(SORT declared)
if(NOT declared OR NOT exported STREQUAL declared)
  message(FATAL_ERROR "exported: ${exported}\ndeclared: ${declared}")
endif()
