# The target `zuqel_options` carries the compiler settings of the whole project.
add_library(zuqel_options INTERFACE)

if(PROJECT_IS_TOP_LEVEL)
  target_compile_options(zuqel_options INTERFACE -Wall -Wextra -Wpedantic
                                                 -Wconversion)
else()
  # In another project, whose warnings and kind of arithmetic are not for here.
  target_compile_options(zuqel_options INTERFACE -w -fno-fast-math)
endif()
# The same bits on every processor: no fused multiply-add.
target_compile_options(zuqel_options INTERFACE -ffp-contract=off)

# Puts the path of one of Clang's runtime libraries into the variable.
function(zuqel_find_clang_runtime variable name)
  execute_process(
    COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
    OUTPUT_VARIABLE path
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(${variable} ${path} PARENT_SCOPE)
endfunction()

if(ZUQEL_SANITIZE)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "ZUQEL_SANITIZE is for Clang: use the preset asan")
  endif()
  # The runtime is shared by the library and its callers, Java among them.
  zuqel_find_clang_runtime(ZUQEL_SANITIZER_RUNTIME
                           libclang_rt.asan-${CMAKE_SYSTEM_PROCESSOR}.so)
  cmake_path(GET ZUQEL_SANITIZER_RUNTIME PARENT_PATH runtime_folder)
  set(ZUQEL_SANITIZERS -fsanitize=address,undefined -fno-sanitize-recover=all
                       -fno-omit-frame-pointer -shared-libasan)
  # GoogleTest too: libc++ marks the unused part of a vector, and all code that
  # changes the vector has to keep the marks.
  add_compile_options(${ZUQEL_SANITIZERS})
  add_link_options(${ZUQEL_SANITIZERS} -Wl,-rpath,${runtime_folder})
endif()
