// The difference between two frames or pictures.
#include "look/frame_difference.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <vector>

namespace zuqel::tools {
namespace {

// Compares every `step`th byte, from `first` on.
PlaneDifference ComparePlane(const char* name, const std::vector<uint8_t>& a,
                             const std::vector<uint8_t>& b, size_t first,
                             size_t step) {
  PlaneDifference difference = {name, 0, 0};
  int64_t squares = 0;
  for (size_t i = first; i < a.size(); i += step) {
    const int distance = std::abs(a[i] - b[i]);
    difference.largest = std::max(difference.largest, distance);
    squares += int64_t{distance} * distance;
  }
  const double mean =
      static_cast<double>(squares * static_cast<int64_t>(step)) /
      static_cast<double>(a.size());
  difference.psnr_db = mean > 0 ? 10 * std::log10(255.0 * 255.0 / mean)
                                : std::numeric_limits<double>::infinity();
  return difference;
}

}  // namespace

std::array<PlaneDifference, 3> Compare(const Nv21Frame& a, const Nv21Frame& b) {
  return {ComparePlane("Y", a.luma, b.luma, 0, 1),
          ComparePlane("U", a.chroma, b.chroma, 1, 2),
          ComparePlane("V", a.chroma, b.chroma, 0, 2)};
}

PlaneDifference Compare(const Picture& a, const Picture& b) {
  return ComparePlane("RGB", a.rgb, b.rgb, 0, 1);
}

Picture ShowDifference(const Nv21Frame& a, const Nv21Frame& b) {
  return ShowDifference(ToPicture(a), ToPicture(b));
}

Picture ShowDifference(Picture a, const Picture& b) {
  std::transform(a.rgb.begin(), a.rgb.end(), b.rgb.begin(), a.rgb.begin(),
                 [](int one, int two) {
                   return static_cast<uint8_t>(
                       std::min(kDifferenceGain * std::abs(one - two), 255));
                 });
  return a;
}

}  // namespace zuqel::tools
