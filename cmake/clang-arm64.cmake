# Cross build for 64-bit Arm with Clang, LLD and libc++, as for the device. C
# library and startup files are those of the GCC cross compiler; scripts/setup
# unpacks libc++ into the build folder.
include(${CMAKE_CURRENT_LIST_DIR}/linux-arm64.cmake)
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET aarch64-linux-gnu)
set(CMAKE_CXX_COMPILER_TARGET aarch64-linux-gnu)

set(libcxx ${CMAKE_CURRENT_LIST_DIR}/../build/libcxx-arm64/usr/lib/aarch64-linux-gnu)
set(CMAKE_CXX_FLAGS_INIT -stdlib=libc++)
foreach(kind IN ITEMS EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-fuse-ld=lld -L${libcxx}")
endforeach()
list(APPEND CMAKE_CROSSCOMPILING_EMULATOR -E LD_LIBRARY_PATH=${libcxx})
