# The target `zuqel_options` carries the compiler settings of the whole project.
add_library(zuqel_options INTERFACE)

target_compile_options(
  zuqel_options
  INTERFACE -Wall
            -Wextra
            -Wpedantic
            -Wconversion
            -Werror
            # The same bits on every processor: no fused multiply-add.
            -ffp-contract=off)

if(ZUQEL_SANITIZE)
  set(ZUQEL_SANITIZERS -fsanitize=address,undefined -fno-sanitize-recover=all
                       -fno-omit-frame-pointer)
  target_compile_options(zuqel_options INTERFACE ${ZUQEL_SANITIZERS})
  target_link_options(zuqel_options INTERFACE ${ZUQEL_SANITIZERS})
endif()

# x86-64-v3 (AVX2) where this machine runs it; other processors' baseline else.
if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
  include(CheckCXXSourceRuns)
  check_cxx_source_runs(
    "int main() {
       return __builtin_cpu_supports(\"avx2\") && __builtin_cpu_supports(\"fma\")
           && __builtin_cpu_supports(\"bmi2\") ? 0 : 1; }"
    ZUQEL_MACHINE_HAS_X86_64_V3)
  option(ZUQEL_X86_64_V3 "Use x86-64-v3 instructions"
         ${ZUQEL_MACHINE_HAS_X86_64_V3})
  if(ZUQEL_X86_64_V3)
    target_compile_options(zuqel_options INTERFACE -march=x86-64-v3)
  endif()
endif()
