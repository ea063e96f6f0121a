// Pictures for the tests, the same in every run.
#ifndef TESTS_TEST_SCENE_H_
#define TESTS_TEST_SCENE_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zuqel {

class Noise {
 public:
  explicit Noise(uint32_t seed) : state_(seed) {}
  uint8_t operator()() {
    state_ = state_ * 1664525U + 1013904223U;
    return static_cast<uint8_t>(state_ >> 24);
  }

 private:
  uint32_t state_;
};

enum class Pattern { kNoise, kBlocks, kRamp, kFlat };

// Rows of `row_bytes` bytes. Blocks have hard edges and flat insides, some of
// them equal; ramps are smooth.
inline std::vector<uint8_t> PatternBytes(Pattern pattern, int row_bytes,
                                         int rows, uint32_t seed) {
  std::vector<uint8_t> bytes;
  bytes.reserve(static_cast<size_t>(row_bytes) * static_cast<size_t>(rows));
  Noise noise(seed);
  for (int y = 0; y < rows; ++y) {
    for (int x = 0; x < row_bytes; ++x) {
      const int block = (x / 24 + y / 7 + static_cast<int>(seed)) % 4;
      switch (pattern) {
        case Pattern::kNoise:
          bytes.push_back(noise());
          break;
        case Pattern::kBlocks:
          bytes.push_back(static_cast<uint8_t>(block * 85));
          break;
        case Pattern::kRamp:
          bytes.push_back(
              static_cast<uint8_t>(x * 200 / row_bytes + y * 55 / rows));
          break;
        case Pattern::kFlat:
          bytes.push_back(static_cast<uint8_t>(77 + seed));
          break;
      }
    }
  }
  return bytes;
}

// Disparities between `low` and `high`: planes at several distances, a slope
// across the middle, a little noise, and holes (1023).
inline std::vector<uint16_t> DisparityScene(int width, int height, int low,
                                            int high) {
  std::vector<uint16_t> disparity;
  Noise noise(9);
  const int range = high - low;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const bool is_slope = y * 3 / height == 1;
      const int step = x * 5 / width * range / 5;
      const int value = low + (is_slope ? x * range / width : step);
      const bool is_hole = noise() < 6;
      disparity.push_back(
          static_cast<uint16_t>(is_hole ? 1023 : value + noise() % 3));
    }
  }
  return disparity;
}

}  // namespace zuqel

#endif  // TESTS_TEST_SCENE_H_
