// Counts pixels that differ.
#ifndef ZUQEL_TESTING_DIFFERENCE_H_
#define ZUQEL_TESTING_DIFFERENCE_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

namespace zuqel {

// The lowest and the highest values that are right.
struct Bounds {
  std::span<const uint8_t> lowest, highest;
};

// Of two images of one size and `channels` bytes a pixel.
struct Difference {
  size_t pixels = 0;      // some byte of which is too far away
  size_t first_byte = 0;  // of those
  double share_within = 0;
};

inline Difference FindDifference(std::span<const uint8_t> a,
                                 const Bounds& expected, int levels,
                                 size_t channels) {
  Difference found;
  size_t past_last = 0;  // byte after the last pixel counted
  for (size_t i = 0; i < a.size(); ++i) {
    const int away =
        std::max(expected.lowest[i] - a[i], a[i] - expected.highest[i]);
    if (i < past_last || away <= levels) continue;
    if (found.pixels++ == 0) found.first_byte = i;
    past_last = (i / channels + 1) * channels;
  }
  found.share_within = 1 - static_cast<double>(found.pixels * channels) /
                               static_cast<double>(a.size());
  return found;
}

inline Difference FindDifference(std::span<const uint8_t> a,
                                 std::span<const uint8_t> b, int levels,
                                 size_t channels) {
  return FindDifference(a, Bounds{b, b}, levels, channels);
}

}  // namespace zuqel

#endif  // ZUQEL_TESTING_DIFFERENCE_H_
