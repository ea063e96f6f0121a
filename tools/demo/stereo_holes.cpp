// The gaps that a stereo depth chip leaves in its map.
#include "demo/stereo_holes.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace zuqel::tools {
namespace {

// A pixel occludes another only if it is nearer by more than this, so that
// slanted ground does not occlude itself.
constexpr int kMargin = 40;

int ColumnInSecondView(int x, int disparity, float shift_px, int width) {
  const float moved =
      static_cast<float>(x) - static_cast<float>(disparity) * shift_px / 1000;
  return std::clamp(static_cast<int>(std::lround(moved)), 0, width - 1);
}

}  // namespace

void MarkStereoHoles(float shift_px, DisparityMap& map) {
  std::vector<int> seen(static_cast<size_t>(map.width));
  for (int y = 0; y < map.height; ++y) {
    std::fill(seen.begin(), seen.end(), 0);
    for (int x = 0; x < map.width; ++x) {
      const int disparity = map.At(x, y);
      int& nearest = seen[static_cast<size_t>(
          ColumnInSecondView(x, disparity, shift_px, map.width))];
      nearest = std::max(nearest, disparity);
    }
    for (int x = 0; x < map.width; ++x) {
      uint16_t& disparity = map.At(x, y);
      const int nearest = seen[static_cast<size_t>(
          ColumnInSecondView(x, disparity, shift_px, map.width))];
      if (nearest > disparity + kMargin) disparity = kUnknownDisparity;
    }
  }
}

}  // namespace zuqel::tools
