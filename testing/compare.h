// Compares what the GPU made with what plain arithmetic makes.
#ifndef ZUQEL_TESTING_COMPARE_H_
#define ZUQEL_TESTING_COMPARE_H_

#include <GLES2/gl2.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

#include "difference.h"
#include "gl_driver.h"
#include "reference_render.h"

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

// Compares pixels of `channels` bytes. A failure names the first byte outside.
inline testing::AssertionResult IsNear(std::span<const uint8_t> actual,
                                       const Bounds& expected,
                                       Tolerance tolerance,
                                       size_t channels = 4) {
  if (actual.empty() || actual.size() != expected.lowest.size() ||
      actual.size() != expected.highest.size()) {
    return testing::AssertionFailure() << "of " << actual.size() << " bytes";
  }
  const Difference found =
      FindDifference(actual, expected, tolerance.levels, channels);
  if (found.share_within >= tolerance.share) {
    return testing::AssertionSuccess();
  }
  const size_t i = found.first_byte;
  return testing::AssertionFailure()
         << "only " << 100 * found.share_within << " % within "
         << tolerance.levels << " levels; first pixel outside: " << i / channels
         << ", channel " << i % channels << ": " << int{actual[i]}
         << " instead of " << int{expected.lowest[i]} << " to "
         << int{expected.highest[i]};
}

inline testing::AssertionResult IsNear(std::span<const uint8_t> actual,
                                       std::span<const uint8_t> expected,
                                       Tolerance tolerance,
                                       size_t channels = 4) {
  return IsNear(actual, Bounds{expected, expected}, tolerance, channels);
}

// What a driver may draw in place of Draw, whose filter errs by so much.
struct DrawnRange {
  reference::Image lowest, highest;

  operator Bounds() const { return {lowest.rgba, highest.rgba}; }
};

inline DrawnRange DrawRange(
    reference::Size target, reference::Size viewport, reference::Turn turn,
    const std::function<reference::Rgba(reference::Point)>& shader,
    const GlDriver& driver = CurrentGlDriver()) {
  const reference::Image exact = Draw(target, viewport, turn, shader);
  DrawnRange range = {exact, exact};
  if (driver.place_error == 0) return range;
  for (const unsigned corner : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U}) {
    const double s =
        (corner & 1U) == 0 ? -driver.place_error : driver.place_error;
    const double t =
        (corner & 2U) == 0 ? -driver.place_error : driver.place_error;
    const double cut = (corner & 4U) == 0 ? 0 : driver.value_error;
    const reference::Image image =
        Draw(target, viewport, turn, [&](reference::Point at) {
          return shader({at.s + s, at.t + t, cut});
        });
    for (size_t i = 0; i < image.rgba.size(); ++i) {
      range.lowest.rgba[i] = std::min(range.lowest.rgba[i], image.rgba[i]);
      range.highest.rgba[i] = std::max(range.highest.rgba[i], image.rgba[i]);
    }
  }
  return range;
}

// Reads a framebuffer of the current context.
inline reference::Image ReadPixels(GLuint framebuffer, reference::Size size) {
  reference::Image image(size);
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  glReadPixels(0, 0, size.width, size.height, GL_RGBA, GL_UNSIGNED_BYTE,
               image.rgba.data());
  return image;
}

}  // namespace zuqel

#endif  // ZUQEL_TESTING_COMPARE_H_
