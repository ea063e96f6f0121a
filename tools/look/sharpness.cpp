// How much fine detail a frame has, in focus and elsewhere.
#include "look/sharpness.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace zuqel::tools {
namespace {

struct Sum {
  [[nodiscard]] double Mean() const {
    return count == 0 ? 0
                      : static_cast<double>(total) / static_cast<double>(count);
  }

  int64_t total = 0, count = 0;
};

// Neighbours at this distance along rows and, as pixels in memory, columns.
struct Distance {
  int x;
  ptrdiff_t y;
};

// Of the columns from `begin` to before `end`, which all have neighbours.
void AddRow(const uint8_t* row, Distance distance, int begin, int end,
            Sum& sum) {
  int64_t total = 0;
  for (int x = begin; x < end; ++x) {
    total += std::abs(4 * row[x] - row[x - distance.x] - row[x + distance.x] -
                      row[x - distance.y] - row[x + distance.y]);
  }
  sum.total += total;
  sum.count += std::max(end - begin, 0);
}

}  // namespace

Sharpness MeasureSharpness(const Nv21Frame& frame, Size picture,
                           FocusPoint focus) {
  const int side = std::min(picture.width, picture.height);
  const int reach = side / 32, step = std::max(side / 240, 1);
  const Distance distance = {step, ptrdiff_t{step} * frame.width};
  const int end = std::max(picture.width - step, step);
  const int left = std::clamp(focus.x - reach, step, end);
  const int right = std::clamp(focus.x + reach + 1, step, end);
  Sum inside, outside;
  for (int y = step; y + step < picture.height; ++y) {
    const uint8_t* const row = &frame.luma[PixelCount(frame.width, y)];
    if (std::abs(y - focus.y) > reach) {
      AddRow(row, distance, step, end, outside);
      continue;
    }
    AddRow(row, distance, step, left, outside);
    AddRow(row, distance, left, right, inside);
    AddRow(row, distance, right, end, outside);
  }
  return {inside.Mean(), outside.Mean()};
}

}  // namespace zuqel::tools
