// Fills holes from their neighbours in two scans. `IsHole` is a predicate for
// one kind of map.
#include "depth/hole_filling.h"

#include <algorithm>
#include <cstddef>

#include "depth/statistics.h"

namespace zuqel {
namespace {

struct IsInvalidDisparity {
  bool operator()(uint16_t value) const { return value >= kInvalidDisparity; }
};
struct IsNoDistance {
  bool operator()(uint16_t value) const { return value == 0; }
};

// Most pixels are valid: runs of this many are tested for holes at once. With a
// constant count the test is a few vector instructions without a branch.
constexpr int32_t kRun = 32;

template <typename IsHole>
bool HasHole(const uint16_t* values, int32_t count) {
  uint16_t found = 0;
  for (int32_t x = 0; x < count; ++x) {
    found = static_cast<uint16_t>(found | (IsHole()(values[x]) ? 1 : 0));
  }
  return found != 0;
}

// Offsets from a pixel to the corners of its neighbourhood inside the image.
struct Window {
  int32_t left, top, right, bottom;

  bool operator==(const Window&) const = default;
};

// Fills one hole; false when it has no valid neighbour.
template <typename IsHole>
bool FillFrom(Plane<uint16_t> plane, int32_t x, int32_t y, Window window) {
  uint32_t sum = 0;
  uint32_t count = 0;
  for (int32_t dy = window.top; dy <= window.bottom; ++dy) {
    for (int32_t dx = window.left; dx <= window.right; ++dx) {
      const uint16_t value = plane.row(y + dy)[x + dx];
      if (IsHole()(value)) continue;
      sum += value;
      ++count;
    }
  }
  if (count == 0) return false;
  plane.row(y)[x] = static_cast<uint16_t>(sum / count);
  return true;
}

template <typename IsHole>
bool FillHole(Plane<uint16_t> plane, int32_t x, int32_t y) {
  const Window inside = {x > 0 ? -1 : 0, y > 0 ? -1 : 0,
                         x + 1 < plane.width ? 1 : 0,
                         y + 1 < plane.height ? 1 : 0};
  // A constant window turns the loops into straight code.
  constexpr Window kWhole = {-1, -1, 1, 1};
  return inside == kWhole ? FillFrom<IsHole>(plane, x, y, kWhole)
                          : FillFrom<IsHole>(plane, x, y, inside);
}

// One scan over all pixels, in raster order or in the reverse of it. A hole
// that gets a value is a valid neighbour from then on, so scanning in place
// visits the same holes with the same values as a list made beforehand. True
// when no hole is left.
template <typename IsHole>
bool Scan(Plane<uint16_t> plane, bool reverse) {
  const auto place = [reverse](int32_t step, int32_t steps) {
    return reverse ? steps - 1 - step : step;
  };
  bool filled = true;
  for (int32_t i = 0; i < plane.height; ++i) {
    const int32_t y = place(i, plane.height);
    const uint16_t* row = plane.row(y);
    for (int32_t begin = 0; begin < plane.width; begin += kRun) {
      const int32_t count = std::min(kRun, plane.width - begin);
      const int32_t first = reverse ? plane.width - begin - count : begin;
      const bool has_hole = count == kRun ? HasHole<IsHole>(row + first, kRun)
                                          : HasHole<IsHole>(row + first, count);
      if (!has_hole) continue;
      for (int32_t j = 0; j < count; ++j) {
        const int32_t x = first + place(j, count);
        if (IsHole()(row[x]) && !FillHole<IsHole>(plane, x, y)) filled = false;
      }
    }
  }
  return filled;
}

template <typename IsHole>
void FillHoles(Plane<uint16_t> plane) {
  const bool filled = Scan<IsHole>(plane, /*reverse=*/false);
  if (!filled) Scan<IsHole>(plane, /*reverse=*/true);
}

}  // namespace

void FillDisparityHoles(Plane<uint16_t> disparity) {
  FillHoles<IsInvalidDisparity>(disparity);
}

void FillDistanceHoles(Plane<uint16_t> distance) {
  FillHoles<IsNoDistance>(distance);
}

}  // namespace zuqel
