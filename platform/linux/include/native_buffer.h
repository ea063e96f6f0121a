// Stands in for a device's native buffer: a texture of the current context.
#ifndef PLATFORM_LINUX_NATIVE_BUFFER_H_
#define PLATFORM_LINUX_NATIVE_BUFFER_H_

namespace zuqel {

struct NativeBuffer {
  unsigned texture = 0;
  int width = 0;
  int height = 0;
};

}  // namespace zuqel

#endif  // PLATFORM_LINUX_NATIVE_BUFFER_H_
