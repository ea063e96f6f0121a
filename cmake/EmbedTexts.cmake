# Writes every text file as a named string constant: pass_through.vert becomes
# kPassThroughVert. A line #include "file" is replaced with that file from the
# text's folder. Run with -DOUTPUT=<header> -DNAMESPACE=<of the constants>
# -DTEXTS=<files, separated by |>.
string(REPLACE "|" ";" TEXTS "${TEXTS}")

function(read_with_includes file result)
  file(READ "${file}" source)
  get_filename_component(folder "${file}" DIRECTORY)
  while(source MATCHES "#include \"([^\"\n]+)\"\n")
    set(line "${CMAKE_MATCH_0}")
    file(READ "${folder}/${CMAKE_MATCH_1}" included)
    string(REPLACE "${line}" "${included}" source "${source}")
  endwhile()
  set(${result} "${source}" PARENT_SCOPE)
endfunction()

set(text "// Made from text files by the build.\n#pragma once\n\n")
string(APPEND text "namespace ${NAMESPACE} {\n")
foreach(file IN LISTS TEXTS)
  get_filename_component(name "${file}" NAME)
  string(REGEX MATCHALL "[a-z0-9]+" words "${name}")
  set(constant "k")
  foreach(word IN LISTS words)
    string(SUBSTRING "${word}" 0 1 initial)
    string(SUBSTRING "${word}" 1 -1 rest)
    string(TOUPPER "${initial}" initial)
    string(APPEND constant "${initial}${rest}")
  endforeach()
  read_with_includes("${file}" source)
  string(APPEND text "inline constexpr char ${constant}[] = R\"text(${source})text\";\n")
endforeach()
string(APPEND text "}  // namespace ${NAMESPACE}\n")
file(WRITE "${OUTPUT}" "${text}")
