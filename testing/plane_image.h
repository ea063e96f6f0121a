// Images that tests and benchmarks make and compare.
#ifndef ZUQEL_TESTING_PLANE_IMAGE_H_
#define ZUQEL_TESTING_PLANE_IMAGE_H_

#include <cstdint>
#include <vector>

#include "base/plane.h"
#include "guarded_memory.h"
#include "random.h"

namespace zuqel {

struct Size {
  int32_t width, height;
};

// Zeros, unless values are given.
template <typename T>
struct Image {
  int32_t width = 0, height = 0;
  std::vector<T> values =
      std::vector<T>(Plane<T>{nullptr, width, height}.size());

  [[nodiscard]] Plane<const T> View() const {
    return {values.data(), width, height};
  }
  Plane<T> View() { return {values.data(), width, height}; }
  // Null outside.
  T* At(int32_t x, int32_t y) {
    const bool is_inside = x >= 0 && y >= 0 && x < width && y < height;
    return is_inside ? values.data() + x + int64_t{y} * width : nullptr;
  }
  // Calls visit(x, y, value) in raster order.
  void Visit(auto visit) {
    for (int32_t y = 0; y < height; ++y) {
      for (int32_t x = 0; x < width; ++x) visit(x, y, *At(x, y));
    }
  }
  bool operator==(const Image&) const = default;
};

// Any values.
template <typename T>
Image<T> NoiseImage(int32_t width, int32_t height, uint64_t seed) {
  return {width, height,
          Random(seed).Values<T>(Plane<T>{nullptr, width, height}.size())};
}

// A copy of an image that ends where a protected page begins.
template <typename T>
class GuardedImage {
 public:
  explicit GuardedImage(const Image<T>& image)
      : width_(image.width), height_(image.height), memory_(image.values) {}

  [[nodiscard]] Plane<T> View() const {
    return {memory_.data(), width_, height_};
  }
  [[nodiscard]] Image<T> Copy() const {
    return {width_, height_, {memory_.span().begin(), memory_.span().end()}};
  }

 private:
  int32_t width_, height_;
  GuardedMemory<T> memory_;
};

}  // namespace zuqel

#endif  // ZUQEL_TESTING_PLANE_IMAGE_H_
