// Sizes of images in pixels.
#ifndef ZUQEL_BASE_IMAGE_SIZE_H_
#define ZUQEL_BASE_IMAGE_SIZE_H_

#include <cstdint>

namespace zuqel {

// A size as given by a caller: negative counts as 0.
inline int32_t NonNegative(int32_t size) {
  return size < 0 ? 0 : size;
}

struct ImageSize {
  int32_t width = 0;
  int32_t height = 0;
};

}  // namespace zuqel

#endif  // ZUQEL_BASE_IMAGE_SIZE_H_
