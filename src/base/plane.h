// A view of one image plane: rows of `width` samples, without padding.
#ifndef ZUQEL_BASE_PLANE_H_
#define ZUQEL_BASE_PLANE_H_

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "base/image_size.h"

namespace zuqel {

// `width` and `height` are never negative. Owns nothing.
template <typename T>
struct Plane {
  T* data = nullptr;
  int32_t width = 0;
  int32_t height = 0;

  [[nodiscard]] size_t size() const {
    return static_cast<size_t>(width) * static_cast<size_t>(height);
  }
  [[nodiscard]] ImageSize extent() const { return {width, height}; }
  [[nodiscard]] T* row(int32_t y) const {
    return data + static_cast<size_t>(y) * static_cast<size_t>(width);
  }

  // NOLINTNEXTLINE(google-explicit-constructor): like T* to const T*.
  operator Plane<const T>() const requires(!std::is_const_v<T>) {
    return {data, width, height};
  }
};

// The value at the linear index x + y * width, which a caller's position means:
// past a row's end it is in the next row, outside the plane it is 0. `x` and
// `y` have 32 bits, with or without a sign.
template <typename T>
std::remove_const_t<T> ValueAt(Plane<T> plane, int64_t x, int64_t y) {
  const int64_t index = x + y * plane.width;
  const bool is_inside =
      index >= 0 && index < static_cast<int64_t>(plane.size());
  return is_inside ? plane.data[index] : std::remove_const_t<T>{};
}

}  // namespace zuqel

#endif  // ZUQEL_BASE_PLANE_H_
