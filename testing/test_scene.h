// Pictures for the tests, the same in every run.
#ifndef ZUQEL_TESTING_TEST_SCENE_H_
#define ZUQEL_TESTING_TEST_SCENE_H_

#include <cstdint>
#include <vector>

#include "random.h"

namespace zuqel {

// A scene has blocks with hard edges and flat insides above noise. A mask is
// noise whose reds are black or white.
enum class Pattern { kNoise, kMask, kRamp, kScene };

// Rows of `row_bytes` bytes.
inline std::vector<uint8_t> PatternBytes(Pattern pattern, int row_bytes,
                                         int rows, int seed) {
  std::vector<uint8_t> bytes;
  Random random(static_cast<uint64_t>(seed));
  for (int y = 0; y < rows; ++y) {
    for (int x = 0; x < row_bytes; ++x) {
      int value = static_cast<int>(random.Below(256));
      if (pattern == Pattern::kMask && x % 4 == 0) value = value / 128 * 255;
      if (pattern == Pattern::kRamp)
        value = x * 200 / row_bytes + y * 55 / rows;
      if (pattern == Pattern::kScene && y < rows / 2) {
        value = (x / 24 + y / 7 + seed) % 4 * 85;
      }
      bytes.push_back(static_cast<uint8_t>(value));
    }
  }
  return bytes;
}

// Disparities between `low` and `high`: planes at several distances, a slope
// across the middle, a little noise, and holes (1023).
inline std::vector<uint16_t> DisparityScene(int width, int height, int low,
                                            int high) {
  std::vector<uint16_t> disparity;
  Random random(9);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const int steps = y * 3 / height == 1 ? width : 5;
      const int value = low + x * steps / width * (high - low) / steps;
      const bool is_hole = random.Chance(2);
      disparity.push_back(
          static_cast<uint16_t>(is_hole ? 1023 : value + random.Between(0, 2)));
    }
  }
  return disparity;
}

}  // namespace zuqel

#endif  // ZUQEL_TESTING_TEST_SCENE_H_
