// Sizes of images in pixels.
#ifndef ZUQEL_BASE_IMAGE_SIZE_H_
#define ZUQEL_BASE_IMAGE_SIZE_H_

#include <cstdint>

namespace zuqel {

// Neither side is negative, and both are 0 where one is: there are no empty
// rows to walk.
struct ImageSize {
  int32_t width = 0;
  int32_t height = 0;
};

// A side as given by a caller: negative counts as 0.
inline int32_t NonNegative(int32_t side) {
  return side < 0 ? 0 : side;
}

// A size as given by a caller.
inline ImageSize SizeFrom(int32_t width, int32_t height) {
  return width <= 0 || height <= 0 ? ImageSize{} : ImageSize{width, height};
}

}  // namespace zuqel

#endif  // ZUQEL_BASE_IMAGE_SIZE_H_
