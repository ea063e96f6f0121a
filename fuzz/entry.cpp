// Where libFuzzer enters a target. What the library logs and prints stays out
// of its report.
#include <android/log.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "input.h"

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
  __android_log_set_logger([](const __android_log_message*) {});
  return std::freopen("/dev/null", "w", stdout) == nullptr ? 1 : 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  zuqel::fuzz::Input input(bytes, size);
  zuqel::fuzz::Run(input);
  return 0;
}
