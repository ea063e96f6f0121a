// Where to focus when nobody says.
#include "photo/auto_focus.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

namespace zuqel::tools {
namespace {

constexpr Size kSearched = {320, 240};  // at most
constexpr size_t kSmallestShare = 50;   // one of so many pixels
constexpr int kSteps = 64;              // from the nearest to the farthest

// The value in the middle of each pixel of a smaller map.
DisparityMap Shrink(const DisparityMap& map) {
  DisparityMap small(std::min(map.width, kSearched.width),
                     std::min(map.height, kSearched.height));
  for (int y = 0; y < small.height; ++y) {
    for (int x = 0; x < small.width; ++x) {
      small.At(x, y) = map.At((2 * x + 1) * map.width / (2 * small.width),
                              (2 * y + 1) * map.height / (2 * small.height));
    }
  }
  return small;
}

using Mask = Map<uint8_t>;
using Part = std::vector<FocusPoint>;

// What is connected to a pixel, side by side, and as near as `farthest`. Takes
// it out of `left`.
Part TakePart(const DisparityMap& map, uint16_t farthest, FocusPoint from,
              Mask& left) {
  Part part;
  const auto take = [&](int x, int y) {
    if (x < 0 || y < 0 || x >= map.width || y >= map.height) return;
    const uint16_t value = map.At(x, y);
    if (value < farthest || value == kUnknownDisparity) return;
    if (std::exchange(left.At(x, y), 0) != 0) part.push_back({x, y});
  };
  take(from.x, from.y);
  size_t done = 0;
  while (done < part.size()) {
    const FocusPoint at = part[done++];
    take(at.x - 1, at.y);
    take(at.x + 1, at.y);
    take(at.x, at.y - 1);
    take(at.x, at.y + 1);
  }
  return part;
}

// The largest part of what is at least as near; empty if none is large.
Part LargestPart(const DisparityMap& map, uint16_t farthest) {
  Mask left(map.width, map.height);
  std::fill(left.values.begin(), left.values.end(), uint8_t{1});
  Part largest;
  for (int y = 0; y < map.height; ++y) {
    for (int x = 0; x < map.width; ++x) {
      Part part = TakePart(map, farthest, {x, y}, left);
      if (part.size() > largest.size()) largest = std::move(part);
    }
  }
  if (largest.size() * kSmallestShare < map.values.size()) largest.clear();
  return largest;
}

// The place with the most steps, along rows and columns, to the nearest pixel
// outside; of several, the one nearest to the centre of gravity.
FocusPoint Middle(const Part& part, Size size) {
  Map<int> steps(size.width + 2, size.height + 2);  // outside all around
  int64_t sum_x = 0, sum_y = 0;
  for (const FocusPoint& at : part) {
    steps.At(at.x + 1, at.y + 1) = 1;
    sum_x += at.x;
    sum_y += at.y;
  }
  for (int y = 1; y <= size.height; ++y) {
    for (int x = 1; x <= size.width; ++x) {
      int& here = steps.At(x, y);
      here *= 1 + std::min(steps.At(x - 1, y), steps.At(x, y - 1));
    }
  }
  for (int y = size.height; y >= 1; --y) {
    for (int x = size.width; x >= 1; --x) {
      int& here = steps.At(x, y);
      here =
          std::min(here, 1 + std::min(steps.At(x + 1, y), steps.At(x, y + 1)));
    }
  }
  const auto count = static_cast<int64_t>(part.size());
  const auto rank = [&](const FocusPoint& at) {
    const int64_t off_x = at.x - sum_x / count, off_y = at.y - sum_y / count;
    return std::pair(-steps.At(at.x + 1, at.y + 1),
                     off_x * off_x + off_y * off_y);
  };
  return *std::min_element(part.begin(), part.end(),
                           [&](const FocusPoint& a, const FocusPoint& b) {
                             return rank(a) < rank(b);
                           });
}

}  // namespace

std::optional<FocusPoint> FindNearestSurface(const DisparityMap& map,
                                             Size picture) {
  const DisparityMap small = Shrink(map);
  std::vector<uint16_t> known = small.values;
  std::erase(known, kUnknownDisparity);
  if (known.empty()) return std::nullopt;
  const auto [least, most] = std::minmax_element(known.begin(), known.end());
  for (int step = 1; step <= kSteps; ++step) {
    const int farthest = *most - (*most - *least) * step / kSteps;
    const Part part = LargestPart(small, static_cast<uint16_t>(farthest));
    if (part.empty()) continue;
    const FocusPoint at = Middle(part, SizeOf(small));
    return FocusPoint{(2 * at.x + 1) * picture.width / (2 * small.width),
                      (2 * at.y + 1) * picture.height / (2 * small.height)};
  }
  return std::nullopt;
}

}  // namespace zuqel::tools
