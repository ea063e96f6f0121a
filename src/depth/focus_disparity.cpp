// Histogram of the neighbourhood of the focus point.
#include "depth/focus_disparity.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "depth/disparity_range.h"

namespace zuqel {
namespace {

// min(width, height) / 45, rounded, of which the low 8 bits count.
int32_t NeighbourhoodRadius(int32_t width, int32_t height) {
  const int64_t side = std::min(width, height);
  return static_cast<uint8_t>((8 * side + 180) / 360);
}

}  // namespace

uint16_t GetFocusDisp(Plane<const uint16_t> disparity, uint16_t x, uint16_t y) {
  const int32_t radius = NeighbourhoodRadius(disparity.width, disparity.height);
  const int32_t left = std::max(x - radius, 0);
  const int32_t right = std::min(x + radius, disparity.width - 1);
  const int32_t top = std::max(y - radius, 0);
  const int32_t bottom = std::min(y + radius, disparity.height - 1);

  std::array<uint16_t, kInvalidDisparity + 1> histogram = {};
  for (int32_t row = top; row <= bottom; ++row) {
    const uint16_t* values = disparity.row(row);
    for (int32_t column = left; column <= right; ++column) {
      ++histogram[std::min(values[column], kInvalidDisparity)];
    }
  }
  // No measurement is no candidate; it is also the answer when all counts are
  // 0.
  histogram[0] = 0;
  const auto* most = std::max_element(histogram.begin(), histogram.end());
  return static_cast<uint16_t>(most - histogram.begin());
}

}  // namespace zuqel
