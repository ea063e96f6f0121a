# The target `zuqel_options` carries the compiler settings of the whole project.
add_library(zuqel_options INTERFACE)

target_compile_options(
  zuqel_options
  INTERFACE -Wall
            -Wextra
            -Wpedantic
            -Wconversion
            # The same bits on every processor: no fused multiply-add.
            -ffp-contract=off)

if(ZUQEL_SANITIZE)
  set(ZUQEL_SANITIZERS -fsanitize=address,undefined -fno-sanitize-recover=all
                       -fno-omit-frame-pointer)
  target_compile_options(zuqel_options INTERFACE ${ZUQEL_SANITIZERS})
  target_link_options(zuqel_options INTERFACE ${ZUQEL_SANITIZERS})
endif()

# The baseline unless asked otherwise, so that a build runs on machines other
# than the one that made it.
if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
  option(ZUQEL_X86_64_V3 "Require x86-64-v3 (AVX2), for faster CPU kernels" OFF)
  if(ZUQEL_X86_64_V3)
    target_compile_options(zuqel_options INTERFACE -march=x86-64-v3)
  endif()
endif()
