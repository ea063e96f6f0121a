// Compares what the GPU made with what plain arithmetic makes.
#ifndef TESTS_COMPARE_H_
#define TESTS_COMPARE_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string>

namespace zuqel {

// At least `share` of the pixels are within `levels` in every channel.
struct Tolerance {
  int levels;
  double share;
};
inline constexpr Tolerance kExact = {0, 1.0};
// An average may fall on either side of a half.
inline constexpr Tolerance kRounding = {1, 1.0};
// Several rounded stages, filtered with the precision that the driver has.
inline constexpr Tolerance kRendered = {2, 0.995};

// A failure names the first sample outside the tolerance. Rows have `width`
// pixels of `channels` bytes.
inline testing::AssertionResult IsNear(const std::string& name,
                                       std::span<const uint8_t> actual,
                                       std::span<const uint8_t> expected,
                                       int width, int channels,
                                       Tolerance tolerance) {
  if (actual.size() != expected.size()) {
    return testing::AssertionFailure()
           << name << ": " << actual.size() << " bytes instead of "
           << expected.size();
  }
  const auto stride = static_cast<size_t>(channels);
  const size_t pixels = actual.size() / stride;
  int largest = 0;
  size_t inside = 0;
  size_t first = actual.size();  // sample outside the tolerance
  for (size_t pixel = 0; pixel < pixels; ++pixel) {
    int of_pixel = 0;
    for (size_t i = pixel * stride; i < (pixel + 1) * stride; ++i) {
      const int difference = std::abs(actual[i] - expected[i]);
      if (difference > tolerance.levels) first = std::min(first, i);
      of_pixel = std::max(of_pixel, difference);
    }
    largest = std::max(largest, of_pixel);
    if (of_pixel <= tolerance.levels) ++inside;
  }
  const double share =
      static_cast<double>(inside) / static_cast<double>(pixels);
  if (largest > 0)
    std::printf("%s: largest difference %d, %.3f %% within %d\n", name.c_str(),
                largest, 100 * share, tolerance.levels);
  if (share >= tolerance.share) return testing::AssertionSuccess();
  const size_t pixel = first / stride;
  const auto row = static_cast<size_t>(width);
  return testing::AssertionFailure()
         << name << ": only " << 100 * share << " % within " << tolerance.levels
         << " levels; first outside: x " << pixel % row << ", y " << pixel / row
         << ", channel " << first % stride << ": "
         << static_cast<int>(actual[first]) << " instead of "
         << static_cast<int>(expected[first]);
}

}  // namespace zuqel

#endif  // TESTS_COMPARE_H_
