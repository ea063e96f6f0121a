// Pictures for the tests, the same in every run.
#ifndef ZUQEL_TESTING_TEST_SCENE_H_
#define ZUQEL_TESTING_TEST_SCENE_H_

#include <cstdint>
#include <vector>

namespace zuqel {

// The next number of a sequence.
inline int Noise(uint32_t& state) {
  state = state * 1664525U + 1013904223U;
  return static_cast<int>(state >> 24);
}

struct TestRandom {
  uint64_t state = 1;

  // The next number, 0 to `count` - 1.
  int operator()(int count) {
    state = state * 6364136223846793005U + 1442695040888963407U;
    return static_cast<int>((state >> 33) % static_cast<uint64_t>(count));
  }
};

// A scene has blocks with hard edges and flat insides above noise. A mask is
// noise whose reds are black or white.
enum class Pattern { kNoise, kMask, kRamp, kScene };

// Rows of `row_bytes` bytes.
inline std::vector<uint8_t> PatternBytes(Pattern pattern, int row_bytes,
                                         int rows, int seed) {
  std::vector<uint8_t> bytes;
  auto state = static_cast<uint32_t>(seed);
  for (int y = 0; y < rows; ++y) {
    for (int x = 0; x < row_bytes; ++x) {
      int value = Noise(state);
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
  uint32_t state = 9;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const int steps = y * 3 / height == 1 ? width : 5;
      const int value = low + x * steps / width * (high - low) / steps;
      const bool is_hole = Noise(state) < 6;
      disparity.push_back(
          static_cast<uint16_t>(is_hole ? 1023 : value + Noise(state) % 3));
    }
  }
  return disparity;
}

}  // namespace zuqel

#endif  // ZUQEL_TESTING_TEST_SCENE_H_
