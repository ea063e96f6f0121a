// Sizes of images in pixels.
#ifndef ZUQEL_BASE_IMAGE_SIZE_H_
#define ZUQEL_BASE_IMAGE_SIZE_H_

#include <cstddef>
#include <cstdint>

namespace zuqel {

// Neither side is negative, and both are 0 where one is: there are no empty
// rows to walk.
struct ImageSize {
  int32_t width = 0;
  int32_t height = 0;

  // Of a size that is not negative.
  [[nodiscard]] size_t pixel_count() const {
    return static_cast<size_t>(width) * static_cast<size_t>(height);
  }
  bool operator==(const ImageSize&) const = default;
};

// A side as given by a caller: negative counts as 0.
inline int32_t NonNegative(int32_t side) {
  return side < 0 ? 0 : side;
}

// A size as given by a caller.
inline ImageSize SizeFrom(int32_t width, int32_t height) {
  return width <= 0 || height <= 0 ? ImageSize{} : ImageSize{width, height};
}

// A coordinate on an axis of `from` pixels, on an axis of `to` pixels: the
// product wraps at 32 bits, the quotient is truncated, and an axis without
// pixels gives 0. `Coordinate`, int32_t or uint32_t, decides about signs.
template <typename Coordinate>
Coordinate ScaleCoordinate(Coordinate at, int32_t from, int32_t to) {
  const auto product = static_cast<Coordinate>(static_cast<uint32_t>(at) *
                                               static_cast<uint32_t>(to));
  return from == 0 ? 0 : product / static_cast<Coordinate>(from);
}

}  // namespace zuqel

#endif  // ZUQEL_BASE_IMAGE_SIZE_H_
