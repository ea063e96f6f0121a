// The device log. A macro, so that the compiler checks formats and arguments.
#ifndef ZUQEL_BASE_LOG_H_
#define ZUQEL_BASE_LOG_H_

#include <android/log.h>

#include <cstdint>

#define ZUQEL_LOG(...) \
  __android_log_print(ANDROID_LOG_ERROR, "System.out", __VA_ARGS__)

namespace zuqel {

// Log lines show the low 32 bits of a pointer.
inline uint32_t Low32(const void* pointer) {
  return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(pointer));
}

}  // namespace zuqel

#endif  // ZUQEL_BASE_LOG_H_
