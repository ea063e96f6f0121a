// A view of one image plane: rows of `width` samples, without padding.
#ifndef ZUQEL_BASE_PLANE_H_
#define ZUQEL_BASE_PLANE_H_

#include <cstddef>
#include <cstdint>
#include <type_traits>

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
  [[nodiscard]] T* row(int32_t y) const {
    return data + static_cast<size_t>(y) * static_cast<size_t>(width);
  }

  // NOLINTNEXTLINE(google-explicit-constructor): like T* to const T*.
  operator Plane<const T>() const requires(!std::is_const_v<T>) {
    return {data, width, height};
  }
};

}  // namespace zuqel

#endif  // ZUQEL_BASE_PLANE_H_
