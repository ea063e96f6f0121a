# Compares the names that LIBRARY exports, as NM lists them, with the functions
# that HEADER declares and the methods of the test activity, which the Java side
# declares.
execute_process(
  COMMAND ${NM} -D --defined-only ${LIBRARY}
  OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^ \n]+\n" exported "${symbols}")
list(TRANSFORM exported STRIP)

file(READ ${HEADER} declarations)
string(REGEX MATCHALL "\nuint32_t [A-Za-z0-9_]+\\(" declared "${declarations}")
list(TRANSFORM declared REPLACE "\nuint32_t (.*)\\(" "\\1")
foreach(method initGL closeGL startGL)
  list(APPEND declared Java_com_example_lvglrefocusing_MainActivity_${method})
endforeach()

list(SORT exported)
list(SORT declared)
if(NOT declared OR NOT exported STREQUAL declared)
  message(FATAL_ERROR "exported: ${exported}\ndeclared: ${declared}")
endif()
